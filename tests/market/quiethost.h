// The least of a host that the settings and the log need: files in memory, and lines that are kept.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/host.h"
#include "platform/logger.h"

namespace market_tests {

class MemoryFiles : public platform::Files {
public:
    std::map<std::string, std::string> contents;
    std::set<std::string> directories;
    bool writable = true, removable = true;

    bool exists(const std::string& path) const override {
        return contents.contains(path) || directories.contains(path);
    }
    bool makeDirectory(const std::string& path) override {
        if (writable) directories.insert(path);
        return writable;
    }
    std::optional<std::string> read(const std::string& path) const override {
        const auto found = contents.find(path);
        return found != contents.end() ? std::optional(found->second) : std::nullopt;
    }
    std::optional<std::string> readtail(const std::string& path, std::size_t most) const override {
        auto text = read(path);
        if (text && text->size() > most) text->erase(0, text->size() - most);
        return text;
    }
    bool replace(const std::string& path, std::string_view content) override {
        if (writable) contents[path] = content;
        return writable;
    }
    bool remove(const std::string& path) override {
        if (removable) contents.erase(path);
        return !contents.contains(path);
    }
    std::vector<std::string> list(const std::string&) const override { return {}; }
};

class KeptLines : public platform::LogSink {
public:
    std::vector<std::string> lines;  // "title level message", with the level as a number

    void write(std::string_view title, platform::LogLevel level, std::string_view message, int,
               const std::string&) override {
        lines.push_back(fmt::format("{} {} {}", title, static_cast<int>(level), message));
    }
    void setDefaultFile(const std::string&, bool) override {}
    bool openFile(const std::string&, bool) override { return true; }
};

// Installed for as long as it lives.
struct QuietHost {
    MemoryFiles files;
    KeptLines log;
    platform::Host services;

    QuietHost() {
        services.files = &files;
        services.log = &log;
        platform::installhost(&services);
    }
    ~QuietHost() { platform::installhost(nullptr); }
    QuietHost(const QuietHost&) = delete;
    QuietHost& operator=(const QuietHost&) = delete;
};

}  // namespace market_tests
