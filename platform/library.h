// A shared library found by name, such as "LLmoney.dll"; the host decides which file that is on its system.
#pragma once

#include <string>

namespace platform {

class Libraries {
public:
    virtual ~Libraries() = default;
    // A handle that stays open until the server ends, or null.
    virtual void* load(const std::string& name) = 0;
    [[nodiscard]] virtual void* symbol(void* library, const char* name) = 0;  // null when it is missing
};

}  // namespace platform
