// The one place where the load asks the server for a function and tells when it does not get it.
#include "plugin/base/hooking.h"

#include <cstdio>

#include "platform/hook.h"

namespace ordomart {

void installhook(const char* decoratedname, void** original, void* replacement) {
    void* const target = platform::dlsym_real(decoratedname);
    if (target == nullptr)
        std::printf("FailedToHook: %p\n", static_cast<const void*>(decoratedname));
    else if (platform::HookFunction(target, original, replacement) != 0)
        std::printf("FailedToHook: %s\n", decoratedname);
}

}  // namespace ordomart
