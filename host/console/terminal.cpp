#include "host/console/terminal.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "host/console/console.h"
#include "host/console/lineeditor.h"

namespace host {

Terminal::Terminal(Console& console, Output& output, int input, std::filesystem::path directory,
                   std::function<void()> stopped)
    : console_(console),
      output_(output),
      input_(input),
      directory_(std::move(directory)),
      stopped_(std::move(stopped)),
      wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (wake_ < 0) throw std::system_error(errno, std::generic_category(), "the console cannot be opened");
    thread_ = std::thread([this] {
        if (!LineEditor::suits(input_, output_.descriptor()) || !edit()) read();
    });
}

Terminal::~Terminal() {
    stop();
    ::close(wake_);
}

void Terminal::stop() {
    if (!thread_.joinable()) return;
    over_ = true;
    const std::uint64_t one = 1;
    if (::write(wake_, &one, sizeof one) < 0) return;
    thread_.join();
}

void Terminal::read() {
    std::string typed;
    std::array<char, 4096> buffer;
    for (;;) {
        std::array<pollfd, 2> waiting{pollfd{input_, POLLIN, 0}, pollfd{wake_, POLLIN, 0}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return;
        if (waiting[1].revents != 0) return;
        if (waiting[0].revents == 0) continue;
        const ssize_t got = ::read(input_, buffer.data(), buffer.size());
        if (got <= 0) return;
        typed.append(buffer.data(), static_cast<std::size_t>(got));
        for (std::size_t end; (end = typed.find('\n')) != std::string::npos; typed.erase(0, end + 1))
            if (!console_.line(typed.substr(0, end))) return stopped_();
    }
}

// False when there is no editor for this terminal.
bool Terminal::edit() {
    std::optional<LineEditor> editor;
    try {
        editor.emplace(LineEditor::Place{.input = input_,
                                         .output = output_,
                                         .wake = wake_,
                                         .isover = [this] { return over_.load(); },
                                         .typedlines = directory_ / "console.history",
                                         .complete = [this](const auto& typed) { return console_.complete(typed); }});
    } catch (const std::runtime_error& e) {
        console_.print(e.what());
        return false;
    }
    while (const auto line = editor->next())
        if (!console_.line(*line)) {
            editor.reset();
            stopped_();
            break;
        }
    return true;
}

}  // namespace host
