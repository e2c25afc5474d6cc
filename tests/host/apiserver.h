// A server with the control API in front of it, and somebody who calls.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/api/api.h"
#include "host/bustle/bustle.h"
#include "host/clients.h"
#include "platform/level.h"
#include "tests/host/apicaller.h"
#include "tests/host/servertest.h"

namespace coretests {

class ApiTest : public ServerTest {
protected:
    explicit ApiTest(bool manual = true) : ServerTest(manual) {
        api.start();
        caller = std::make_unique<ApiCaller>(api.port(), api.token());
    }

    void joins(const std::string& name) { ASSERT_EQ(caller->post("/api/players", {{"name", name}}).status, 200); }
    nlohmann::json state() { return caller->get("/api/players/Alice").body; }
    std::string shown(const char* area, std::size_t slot) {
        const nlohmann::json item = state()["slots"][area][slot];
        return item.is_null() ? "" : item["name"].get<std::string>() + "*" + item["count"].dump();
    }
    void says(const std::vector<std::string>& lines) {
        server->run([&] {
            for (const auto& line : lines) server->services().level->getAllPlayers().at(0)->sendText(line);
        });
    }
    std::vector<std::string> heard(const std::string& kind) {
        std::vector<std::string> texts;
        const nlohmann::json now = state();
        for (const nlohmann::json& what : now["heard"])
            if (what["kind"] == kind) texts.push_back(what["text"]);
        return texts;
    }

    host::Clients clients{*server};
    host::Bustle bustle{*server, clients};
    host::ControlApi api{*server, clients, bustle, {.port = 0}};
    std::unique_ptr<ApiCaller> caller;
};

}  // namespace coretests
