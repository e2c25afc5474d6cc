// The shared libraries that a plug-in may bind by name. Only names that the server was told of are found. Any thread.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "host/core/guarded.h"
#include "platform/library.h"

namespace host {

class World;

class BoundLibraries : public platform::Libraries {
public:
    using Step = std::function<void(void* library)>;

    explicit BoundLibraries(Complain complain) : complain_(std::move(complain)) {}
    ~BoundLibraries() override { close(); }
    // `prepare` is called once, before the handle is given out, `finish` before the library is closed.
    void offer(const std::string& name, const std::string& file, Step prepare = {}, Step finish = {});

    // What prepare throws comes to the caller: a library that is there and does not work is no missing library.
    void* load(const std::string& name) override;
    [[nodiscard]] void* symbol(void* library, const char* name) override;
    // Handles that were given out are void from here on.
    void close();

private:
    struct Offer {
        std::string file;
        Step prepare, finish;
        void* handle = nullptr;
    };
    const Complain complain_;
    std::mutex mutex_;
    std::map<std::string, Offer> offers_;
};

// "LLmoney.dll": the money library. One that leaves the writing to its host joins the world; another one has its
// accounts in `former`, which is where all libraries had them before, or where it likes. load() throws StartError for a
// file that is no database.
void offermoney(BoundLibraries& libraries, const std::string& file, World& world, const std::string& former);

}  // namespace host
