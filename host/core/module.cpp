// Loading by the system's dynamic loader, every name bound at once and none shared with other modules.
#include "host/core/module.h"

#include <dlfcn.h>

#include <atomic>

#include "host/core/guarded.h"
#include "host/server.h"

namespace host {

namespace {

namespace fs = std::filesystem;

void* load(const fs::path& file, const fs::path& original) {
    void* handle = ::dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle != nullptr) return handle;
    throw StartError(original.string() + ": the plug-in cannot be loaded: " + ::dlerror());
}

void* loadcopy(const fs::path& file, const fs::path& directory) {
    static std::atomic<int> copies = 0;
    const auto copy = directory / (".module-" + std::to_string(++copies) + ".so");
    std::error_code error;
    fs::copy_file(file, copy, fs::copy_options::overwrite_existing, error);
    if (error) throw StartError(copy.string() + ": the plug-in cannot be copied here: " + error.message());
    struct Unlink {
        const fs::path& path;
        ~Unlink() {
            std::error_code ignored;
            fs::remove(path, ignored);
        }
    } const unlink{copy};
    return load(copy, file);
}

}  // namespace

PluginModule::PluginModule(const fs::path& file, const fs::path& copyin)
    : file_(file), handle_(copyin.empty() ? load(file, file) : loadcopy(file, copyin)) {}

PluginModule::~PluginModule() { ::dlclose(handle_); }

void PluginModule::enter() {
    const auto entry = reinterpret_cast<void (*)()>(::dlsym(handle_, platform::entrypoint));
    if (entry == nullptr) {
        throw StartError(file_.string() + ": this is no plug-in, it has no \"" + platform::entrypoint + "\"");
    }
    if (const auto failure = failureof(entry)) throw StartError(file_.filename().string() + ": " + *failure);
}

}  // namespace host
