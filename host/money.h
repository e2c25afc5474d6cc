// The LLMoney accounts as the operator's side sees them, bound by name like the plug-in does it. Without the library
// every balance is 0 and setting throws.
#pragma once

#include <cstdint>
#include <string>

#include "platform/library.h"

namespace host {

class Money {
public:
    explicit Money(platform::Libraries& libraries);
    [[nodiscard]] bool there() const { return library_ != nullptr; }
    [[nodiscard]] std::int64_t get(const std::string& xuid) const;
    void set(const std::string& xuid, std::int64_t amount);  // throws std::runtime_error with the reason

private:
    platform::Libraries& libraries_;
    void* library_;
};

}  // namespace host
