// The plug-in's module in this process.
#pragma once

#include <filesystem>
#include <string>

namespace host {

class PluginModule {
public:
    // Loads the file. With a directory given, a copy in it is loaded in its stead and unlinked at once: the dynamic
    // loader hands out a file that it holds already, and a copy gets global objects of its own. Throws StartError.
    explicit PluginModule(const std::filesystem::path& file, const std::filesystem::path& copyin = {});
    // Unloads it; the destructors of its global objects run here.
    ~PluginModule();
    PluginModule(const PluginModule&) = delete;
    PluginModule& operator=(const PluginModule&) = delete;

    // Calls the entry; what that throws is turned into a StartError.
    void enter();

private:
    const std::filesystem::path file_;
    void* handle_ = nullptr;
};

}  // namespace host
