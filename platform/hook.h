// Replacing functions of the server, by decorated name. Used while the module loads, before any player exists.
#pragma once

#include <string>

namespace platform {

class HookTable {
public:
    virtual ~HookTable() = default;
    // The address of a server function, or null.
    [[nodiscard]] virtual void* find(const char* decoratedname) = 0;
    // From now on calls of `target` go to `replacement`; `original` takes what they went to before. 0 on success.
    virtual int replace(void* target, void** original, void* replacement) = 0;
};

[[nodiscard]] void* dlsym_real(const char* decoratedname);
int HookFunction(void* target, void** original, void* replacement);

// Decorated names of the functions that a host must offer for replacement.
namespace symbols {
inline constexpr const char* chooseLanguage =
    "?chooseLanguage@I18n@@SAXAEBV?$basic_string@DU?$char_traits@D@std@@V?$allocator@D@2@@std@@@Z";
inline constexpr const char* handleContainerClose =
    "?handle@ServerNetworkHandler@@UEAAXAEBVNetworkIdentifier@@AEBVContainerClosePacket@@@Z";
inline constexpr const char* handleItemStackRequest =
    "?handle@ServerNetworkHandler@@UEAAXAEBVNetworkIdentifier@@AEBVItemStackRequestPacket@@@Z";
}  // namespace symbols

}  // namespace platform
