// The server's log: console and files, and a ring of the last lines for whoever wants to read them. Lines titled
// "Server" are the server's own and go to server.log, not to the default file, which a plug-in sets.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/backup/frozenfiles.h"
#include "platform/logger.h"

namespace host {

struct LogLine {
    std::uint64_t number = 0;  // from 1, without gaps
    std::string time, title, message;
    platform::LogLevel level = platform::LogLevel::info;
    bool onconsole = true;                   // false: the console level kept it to the file
    [[nodiscard]] std::string text() const;  // "2026-01-31 12:00:00 [Ordomart][Info] text"
};

class Log : public platform::LogSink {
public:
    // `root` is the server directory; time stamps come from `clock`, Unix milliseconds.
    Log(std::string root, bool quiet, std::function<std::int64_t()> clock, FrozenFiles* frozen = nullptr);
    ~Log() override;
    void write(std::string_view title, platform::LogLevel level, std::string_view message, int consolelevel,
               const std::string& file) override;
    void setDefaultFile(const std::string& path, bool append) override;
    bool openFile(const std::string& path, bool append) override;
    // Closes the files; later lines reach console, ring and watchers only. Any thread.
    void close();

    static constexpr std::size_t mostkept = 5000;
    // The lines that are kept with a number above `after`, of these the last `most`. Any thread.
    [[nodiscard]] std::vector<LogLine> lines(std::uint64_t after = 0, std::size_t most = mostkept) const;
    // Called for each line, on the thread that wrote it, outside of the log's lock, until the handle is dropped.
    [[nodiscard]] std::shared_ptr<void> watch(std::function<void(const LogLine&)> watcher);
    // Where console lines go, which must not make the caller wait; nowhere at first.
    void setconsole(std::function<void(const std::string&)> out);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
