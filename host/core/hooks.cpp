// The table behind find and replace; hooks.h tells how a function gets into it.
#include "host/core/hooks.h"

#include <algorithm>

namespace host {

void* Hooks::find(const char* decoratedname) {
    const auto found = functions_.find(decoratedname);
    return found == functions_.end() ? nullptr : found->second.address;
}

int Hooks::replace(void* target, void** original, void* replacement) {
    const auto found =
        std::find_if(functions_.begin(), functions_.end(), [&](const auto& f) { return f.second.address == target; });
    if (found == functions_.end() || replacement == nullptr) return -1;
    if (original != nullptr) *original = found->second.get();
    found->second.set(replacement);
    return 0;
}

void Hooks::add(const std::string& decoratedname, Entry entry) {
    entry.set(entry.original);
    functions_[decoratedname] = entry;
}

void Hooks::restore() {
    for (const auto& [name, function] : functions_) function.set(function.original);
}

}  // namespace host
