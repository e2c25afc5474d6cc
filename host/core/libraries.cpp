// Binding by the system's dynamic loader.
#include "host/core/libraries.h"

#include <dlfcn.h>

#include <filesystem>
#include <utility>

#include "host/server.h"
#include "host/world/worldparts.h"
#include "platform/llmoney.h"
#include "platform/logger.h"

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

namespace {

namespace money = platform::llmoney;

template <class Function>
Function* entry(void* library, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(library, name));
}

void require(bool opened, void* library, const std::string& path) {
    if (opened) return;
    const auto lasterror = entry<money::LastError>(library, "LLMoneyLastError");
    throw StartError(lasterror != nullptr ? lasterror() : path + ": the money library cannot open it");
}

// Under its own name a later world would take it over once more. One that was not taken over is somebody's money.
void putaway(const std::string& former, bool isunused) {
    const platform::Logger log("Server");
    if (isunused) return log.put(platform::LogLevel::warn, former + ": not used, the world has accounts of its own");
    std::string kept = former + ".moved";
    for (int number = 2; std::filesystem::exists(kept); ++number) kept = former + ".moved" + std::to_string(number);
    std::error_code failed;
    std::filesystem::rename(former, kept, failed);
    if (failed)
        log.put(platform::LogLevel::warn,
                former + ": taken over into the world, and cannot be renamed: " + failed.message());
    else
        log.put(platform::LogLevel::info, former + ": its accounts are in the world now; the file is kept as " + kept);
}

// False for a library that does not know how.
bool joinworld(void* library, World& world, const std::string& former) {
    const auto open = entry<money::OpenInHost>(library, "LLMoneyOpenInHost");
    const MoneyLibrary entries = {entry<money::HasChanges>(library, "LLMoneyHasChanges"),
                                  entry<money::WriteChanges>(library, "LLMoneyWriteChanges"),
                                  entry<money::ChangesWritten>(library, "LLMoneyChangesWritten")};
    if (open == nullptr || entries.haschanges == nullptr || entries.writechanges == nullptr ||
        entries.changeswritten == nullptr)
        return false;
    Database& file = world.parts().file;
    const bool hasaccounts = file.hastable("llmoney_account");
    require(open(file.path().c_str(), former.c_str()), library, file.path());
    if (std::filesystem::exists(former)) putaway(former, hasaccounts);
    world.join(entries);
    return true;
}

}  // namespace

void offermoney(BoundLibraries& libraries, const std::string& file, World& world, const std::string& former) {
    const auto prepare = [&world, former](void* library) {
        if (joinworld(library, world, former)) return;
        if (const auto open = entry<money::Open>(library, "LLMoneyOpen"))
            require(open(former.c_str()), library, former);
    };
    const auto finish = [](void* library) {
        if (const auto close = entry<money::Close>(library, "LLMoneyClose")) close();
    };
    libraries.offer("LLmoney.dll", file, prepare, finish);
}

}  // namespace host
