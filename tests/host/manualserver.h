// A server in manual mode with the market in it, in a directory of its own.
#pragma once

#include <functional>
#include <memory>

#include "host/server.h"
#include "tests/host/coretools.h"

namespace coretests {

[[nodiscard]] inline host::ServerOptions manually(const Directory& directory,
                                                  std::function<void(platform::Host&)> adjust = {}) {
    host::ServerOptions options;
    options.directory = directory.path.string();
    options.module = MODULE_PATH;
    options.moneylibrary = LLMONEY_PATH;
    options.manual = true;
    options.quiet = true;
    options.adjust = std::move(adjust);
    return options;
}

class ManualServer : public testing::Test {
protected:
    ManualServer() { server->start(); }
    ~ManualServer() override { server->stop(); }

    Directory directory;
    std::unique_ptr<host::Server> server = std::make_unique<host::Server>(manually(directory));
};

}  // namespace coretests
