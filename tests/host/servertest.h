// A server with the market in it, in manual mode unless its test wants another, in a directory of its own.
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

class ServerTest : public testing::Test {
protected:
    explicit ServerTest(bool manual = true) {
        auto options = manually(directory);
        options.manual = manual;
        server = std::make_unique<host::Server>(std::move(options));
        server->start();
    }
    ~ServerTest() override { server->stop(); }

    Directory directory;
    std::unique_ptr<host::Server> server;
};

}  // namespace coretests
