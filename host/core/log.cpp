// A line is numbered, kept and written to its file under one lock; console and watchers come after it.
#include "host/core/log.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <deque>
#include <mutex>

#include "host/core/logfiles.h"
#include "host/core/watchers.h"

namespace host {

namespace {

constexpr std::string_view servertitle = "Server";
constexpr const char* levelnames[] = {"Debug", "Info", "Warn", "Error", "Fatal"};

std::string timestamp(std::int64_t unixmilliseconds) {
    const auto seconds = static_cast<std::time_t>(unixmilliseconds / 1000);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local)};
}

// The console level counts down from "everything": 1 lets only fatal lines through.
bool passesconsole(platform::LogLevel level, int consolelevel) { return consolelevel + static_cast<int>(level) >= 5; }

}  // namespace

struct Log::Parts {
    Parts(std::string root, bool silent, std::function<std::int64_t()> time, FrozenFiles* frozen)
        : files(std::move(root), frozen), quiet(silent), clock(std::move(time)) {}
    mutable std::mutex mutex;
    LogFiles files;
    const bool quiet;
    const std::function<std::int64_t()> clock;
    std::string serverfile = "server.log", defaultfile;
    std::deque<LogLine> ring;
    std::uint64_t lastnumber = 0;
    bool closed = false;
    Watchers<LogLine> watchers;
    std::function<void(const std::string&)> console;
};

std::string LogLine::text() const {
    return fmt::format("{} [{}][{}] {}", time, title, levelnames[static_cast<int>(level)], message);
}

Log::Log(std::string root, bool quiet, std::function<std::int64_t()> clock, FrozenFiles* frozen)
    : parts_(std::make_unique<Parts>(std::move(root), quiet, std::move(clock), frozen)) {}

Log::~Log() = default;

void Log::write(std::string_view title, platform::LogLevel level, std::string_view message, int consolelevel,
                const std::string& file) {
    auto& p = *parts_;
    LogLine line{
        0, timestamp(p.clock()), std::string(title), std::string(message), level, passesconsole(level, consolelevel)};
    const auto text = line.text();
    decltype(p.console) console;
    {
        const std::lock_guard lock(p.mutex);
        line.number = ++p.lastnumber;
        p.ring.push_back(line);
        if (p.ring.size() > mostkept) p.ring.pop_front();
        const auto& target = !file.empty() ? file : title == servertitle ? p.serverfile : p.defaultfile;
        if (!target.empty() && !p.closed) p.files.write(target, text + "\r\n");
        if (line.onconsole && !p.quiet) console = p.console;
    }
    if (console) console(text);
    p.watchers.tell(line);
}

void Log::setDefaultFile(const std::string& path, bool append) {
    const std::lock_guard lock(parts_->mutex);
    parts_->defaultfile = path;
    if (!parts_->closed) parts_->files.open(path, append);
}

bool Log::openFile(const std::string& path, bool append) {
    const std::lock_guard lock(parts_->mutex);
    return !parts_->closed && parts_->files.open(path, append);
}

void Log::close() {
    const std::lock_guard lock(parts_->mutex);
    parts_->closed = true;
    parts_->files.close();
}

std::vector<LogLine> Log::lines(std::uint64_t after, std::size_t most) const {
    const std::lock_guard lock(parts_->mutex);
    const auto& ring = parts_->ring;
    const auto lost = parts_->lastnumber - ring.size();  // numbers that have fallen out at the front
    const std::uint64_t known = after <= lost ? 0 : std::min<std::uint64_t>(after - lost, ring.size());
    const auto skip = std::max<std::uint64_t>(known, ring.size() - std::min(ring.size(), most));
    return {ring.begin() + static_cast<std::ptrdiff_t>(skip), ring.end()};
}

std::shared_ptr<void> Log::watch(std::function<void(const LogLine&)> watcher) {
    return parts_->watchers.add(std::move(watcher));
}

void Log::setconsole(std::function<void(const std::string&)> out) {
    const std::lock_guard lock(parts_->mutex);
    parts_->console = std::move(out);
}

}  // namespace host
