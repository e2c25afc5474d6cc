#include "host/console/output.h"

#include <fmt/format.h>
#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string_view>
#include <utility>

namespace host {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto patience = 1s;      // of a stop
constexpr auto lookagain = 100ms;  // at whether there is a stop meanwhile
// A pipe that can be written to takes so much without waiting.
constexpr std::size_t atonce = PIPE_BUF;

}  // namespace

struct Output::Parts {
    explicit Parts(int where) : descriptor(where) {}

    const int descriptor;
    std::mutex mutex;
    std::condition_variable changed;
    std::string waiting, aside;
    std::function<void()> told;  // empty: nothing is set aside
    std::int64_t dropped = 0;    // lines, all of them after what waits
    bool stopping = false, over = false;
    Clock::time_point end;  // of a stop

    void take(std::string_view text) {
        if (over) return;
        // Behind the first text that was dropped nothing is taken in, so that the count stands where they are missing.
        if (dropped > 0 || waiting.size() + text.size() > mostwaiting)
            dropped += std::ranges::count(text, '\n');
        else
            waiting += text;
        changed.notify_all();
    }
    bool late() {
        const std::lock_guard lock(mutex);
        return stopping && Clock::now() >= end;
    }
    // False when nobody will ever read it, or when there is no time left.
    bool send(std::string_view text) {
        while (!text.empty()) {
            pollfd ready{descriptor, POLLOUT, 0};
            const int found = ::poll(&ready, 1, static_cast<int>(lookagain.count()));
            if (late()) return false;
            if (found <= 0) continue;
            const ssize_t put = ::write(descriptor, text.data(), std::min(text.size(), atonce));
            if (put < 0 && (errno == EPIPE || errno == EBADF)) return false;
            if (put < 0 && errno != EINTR) std::this_thread::sleep_for(lookagain);  // a disk that is full, for one
            if (put > 0) text.remove_prefix(static_cast<std::size_t>(put));
        }
        return true;
    }
};

Output::Output(int descriptor) : parts_(std::make_shared<Parts>(descriptor)) {
    thread_ = std::thread([parts = parts_] { write(*parts); });
}

Output::~Output() { stop(); }

void Output::print(std::string text) {
    if (!text.ends_with('\n')) text += '\n';
    const std::lock_guard lock(parts_->mutex);
    if (!parts_->told || parts_->aside.size() + text.size() > mostwaiting) return parts_->take(text);
    parts_->aside += text;
    parts_->told();
}

int Output::descriptor() const { return parts_->descriptor; }

void Output::put(std::string_view bytes) {
    const std::lock_guard lock(parts_->mutex);
    parts_->take(bytes);
}

void Output::setaside(std::function<void()> told) {
    const std::lock_guard lock(parts_->mutex);
    parts_->told = std::move(told);
    if (!parts_->told) parts_->take(std::exchange(parts_->aside, {}));
}

std::string Output::takeaside() {
    const std::lock_guard lock(parts_->mutex);
    return std::exchange(parts_->aside, {});
}

void Output::stop() {
    if (!thread_.joinable()) return;
    std::unique_lock lock(parts_->mutex);
    parts_->stopping = true;
    parts_->end = Clock::now() + patience;
    parts_->changed.notify_all();
    const bool over = parts_->changed.wait_until(lock, parts_->end + patience / 4, [this] { return parts_->over; });
    lock.unlock();
    over ? thread_.join() : thread_.detach();
}

void Output::write(Parts& parts) {
    for (;;) {
        std::unique_lock lock(parts.mutex);
        parts.changed.wait(lock, [&] { return parts.stopping || !parts.waiting.empty(); });
        std::string text = std::exchange(parts.waiting, {});
        if (const auto dropped = std::exchange(parts.dropped, 0); dropped > 0)
            text += fmt::format("({} lines were dropped here: nobody read them)\n", dropped);
        if (text.empty()) break;
        lock.unlock();
        if (!parts.send(text)) break;
    }
    const std::lock_guard lock(parts.mutex);
    parts.over = true;
    parts.changed.notify_all();
}

}  // namespace host
