// Binding by the system's dynamic loader.
#include "host/core/libraries.h"

#include <dlfcn.h>

#include <utility>

#include "host/server.h"
#include "platform/llmoney.h"

namespace host {

void BoundLibraries::offer(const std::string& name, const std::string& file, Step prepare, Step finish) {
    const std::lock_guard lock(mutex_);
    offers_[name] = {file, std::move(prepare), std::move(finish)};
}

void* BoundLibraries::load(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const auto found = offers_.find(name);
    if (found == offers_.end()) return nullptr;
    auto& offer = found->second;
    if (offer.handle != nullptr) return offer.handle;
    void* handle = ::dlopen(offer.file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        complain_(name + " cannot be loaded: " + ::dlerror());
        return nullptr;
    }
    try {
        if (offer.prepare) offer.prepare(handle);
    } catch (...) {
        ::dlclose(handle);
        throw;
    }
    return offer.handle = handle;
}

void* BoundLibraries::symbol(void* library, const char* name) {
    return library != nullptr ? ::dlsym(library, name) : nullptr;
}

void BoundLibraries::close() {
    const std::lock_guard lock(mutex_);
    for (auto& [name, offer] : offers_) {
        void* handle = std::exchange(offer.handle, nullptr);
        if (handle == nullptr) continue;
        if (offer.finish) offer.finish(handle);
        ::dlclose(handle);
    }
}

void offermoney(BoundLibraries& libraries, const std::string& file, const std::string& database) {
    namespace money = platform::llmoney;
    // A library of another make may keep its accounts where it likes, and has none of these.
    const auto prepare = [database](void* library) {
        const auto open = reinterpret_cast<money::Open*>(::dlsym(library, "LLMoneyOpen"));
        if (open == nullptr || open(database.c_str())) return;
        const auto lasterror = reinterpret_cast<money::LastError*>(::dlsym(library, "LLMoneyLastError"));
        throw StartError(lasterror != nullptr ? lasterror() : database + ": the money library cannot open it");
    };
    const auto finish = [](void* library) {
        const auto close = reinterpret_cast<money::Close*>(::dlsym(library, "LLMoneyClose"));
        if (close != nullptr) close();
    };
    libraries.offer("LLmoney.dll", file, prepare, finish);
}

}  // namespace host
