// What the tests of the server's parts share: a directory of their own, and complaints that are kept.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/core/guarded.h"

namespace coretests {

class Directory {
public:
    Directory() : path(std::filesystem::path(testing::TempDir()) / ("core" + std::to_string(::getpid()))) {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~Directory() { std::filesystem::remove_all(path); }

    void put(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((path / name).parent_path());
        std::ofstream(path / name, std::ios::binary) << content;
    }
    [[nodiscard]] std::string get(const std::string& name) const {
        std::ostringstream content;
        content << std::ifstream(path / name, std::ios::binary).rdbuf();
        return content.str();
    }
    [[nodiscard]] std::vector<std::string> names(const std::string& below = {}) const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path / below)) {
            found.push_back(entry.path().filename().string());
        }
        return found;
    }

    const std::filesystem::path path;
};

// No file of this process grows as long as it lives.
class FullDisk {
public:
    FullDisk() : handler_(::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit none = {0, limit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() {
        ::setrlimit(RLIMIT_FSIZE, &limit_);
        ::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*handler_)(int);
    rlimit limit_{};
};

struct Complaints {
    std::vector<std::string> lines;
    host::Complain complain = [this](const std::string& line) { lines.push_back(line); };
};

}  // namespace coretests
