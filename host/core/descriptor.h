// An open file that closes itself, and writing to it until everything is written; and the three that a program is
// given.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace host {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}  // takes over an open one
    Descriptor(const char* path, int flags, mode_t mode = 0666) : number_(::open(path, flags | O_CLOEXEC, mode)) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    [[nodiscard]] bool isopen() const { return number_ >= 0; }
    [[nodiscard]] int number() const { return number_; }
    bool write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const auto n = ::write(number_, bytes.data(), bytes.size());
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(n));
        }
        return true;
    }
    // False when the system reports a failure that it had kept back.
    bool close() { return number_ < 0 || ::close(std::exchange(number_, -1)) == 0; }

private:
    int number_ = -1;
};

// Those of terminal and errors that were closed by whoever started the program lead nowhere, so that no file of the
// server gets their number, is read as what somebody types, or has lines written into it.
inline void keepstandardfiles() {
    int number = -1;
    do number = ::open("/dev/null", O_RDWR);
    while (number >= 0 && number <= STDERR_FILENO);
    if (number >= 0) ::close(number);
}

}  // namespace host
