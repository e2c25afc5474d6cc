// How a host presents a hardware fault to a plug-in. The embedded host raises none; plug-ins catch the type.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace platform {

class seh_exception : public std::exception {
public:
    explicit seh_exception(std::string what) : what_(std::move(what)) {}
    [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }

private:
    std::string what_;
};

}  // namespace platform
