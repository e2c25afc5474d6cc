// Loggers with five streams each. A line is time stamp, title, message: "2026-01-31 12:00:00 [Ordomart][Info] text".
// In a file it ends with a carriage return and a line feed on every system.
#pragma once

#include <fmt/format.h>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

enum class LogLevel { debug, info, warn, error, fatal };

// Any thread; one line at a time. Console and file are separate: a console level of 0 silences the console only.
class LogSink {
public:
    virtual ~LogSink() = default;
    virtual void write(std::string_view title, LogLevel level, std::string_view message, int consolelevel,
                       const std::string& file) = 0;
    // The file of every logger that has none of its own.
    virtual void setDefaultFile(const std::string& path, bool append) = 0;
    // Opens a file for a logger; false, and a line is lost, when it cannot be opened.
    virtual bool openFile(const std::string& path, bool append) = 0;
};

class Logger {
public:
    explicit Logger(std::string title) : title_(std::move(title)) {}

    template <class... A>
    void debug(fmt::format_string<A...> f, A&&... a) {
        put(LogLevel::debug, fmt::format(f, std::forward<A>(a)...));
    }
    template <class... A>
    void info(fmt::format_string<A...> f, A&&... a) {
        put(LogLevel::info, fmt::format(f, std::forward<A>(a)...));
    }
    template <class... A>
    void warn(fmt::format_string<A...> f, A&&... a) {
        put(LogLevel::warn, fmt::format(f, std::forward<A>(a)...));
    }
    template <class... A>
    void error(fmt::format_string<A...> f, A&&... a) {
        put(LogLevel::error, fmt::format(f, std::forward<A>(a)...));
    }
    template <class... A>
    void fatal(fmt::format_string<A...> f, A&&... a) {
        put(LogLevel::fatal, fmt::format(f, std::forward<A>(a)...));
    }
    // A finished message, in which braces mean nothing.
    void put(LogLevel level, std::string_view message) const;

    // 0 silences the console, 1 fatal only, up to 5 everything (the start value). Any thread.
    std::atomic<int> consolelevel = 5;
    void setFile(const std::string& path, bool append);
    static void setDefaultFile(const std::string& path, bool append);

private:
    std::string title_;
    std::string file_;  // empty: the default file
};

}  // namespace platform
