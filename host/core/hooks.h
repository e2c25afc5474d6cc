// The server functions that a plug-in may replace, by decorated name. Each is called through a trampoline: a plain
// function whose address stands for the server function and which goes to the original until it is replaced.
// Trampolines are static, so there is one set of them per process; registering a function again makes it the original
// once more. Server thread.
#pragma once

#include <map>
#include <stdexcept>
#include <string>

#include "platform/hook.h"

namespace host {

// Trampoline<&handleclose>::call(handler, id, packet) reaches whatever stands for handleclose at that moment.
template <auto Original>
struct Trampoline;

template <class R, class... A, R (*Original)(A...)>
struct Trampoline<Original> {
    using Function = R (*)(A...);
    static inline Function current = Original;
    static R call(A... a) { return current(static_cast<A&&>(a)...); }
    static void* get() { return reinterpret_cast<void*>(current); }
    static void set(void* function) { current = reinterpret_cast<Function>(function); }
};

class Hooks : public platform::HookTable {
public:
    ~Hooks() override { restore(); }
    [[nodiscard]] void* find(const char* decoratedname) override;
    int replace(void* target, void** original, void* replacement) override;

    // hooks.registerfunction<&handleclose>(platform::symbols::handleContainerClose)
    template <auto Original>
    void registerfunction(const std::string& decoratedname) {
        using T = Trampoline<Original>;
        add(decoratedname, {reinterpret_cast<void*>(&T::call), reinterpret_cast<void*>(Original), &T::get, &T::set});
    }
    // What a call of the function reaches now. Throws std::out_of_range for a name that nobody registered.
    template <class Function>
    [[nodiscard]] Function current(const std::string& decoratedname) const {
        return reinterpret_cast<Function>(functions_.at(decoratedname).get());
    }
    // Every function goes to its original again: the replacements' code is about to leave the process.
    void restore();

private:
    struct Entry {
        void* address = nullptr;
        void* original = nullptr;
        void* (*get)() = nullptr;
        void (*set)(void*) = nullptr;
    };
    void add(const std::string& decoratedname, Entry entry);
    std::map<std::string, Entry> functions_;
};

}  // namespace host
