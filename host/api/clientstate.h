// What a model client shows, and what else several calls tell, as JSON; and back, what a caller asks a client to do.
#pragma once

#include <nlohmann/json.hpp>

#include "client/modelclient.h"
#include "host/core/log.h"

namespace host {

// {"open": null or {id, type, x, y, z}, "gametype", "form": null or {id, json},
//  "slots": {"inventory": [36], "armor": [4], "offhand": [1], "cursor": [1]}}; an empty slot is null.
[[nodiscard]] nlohmann::json clientstate(const client::ModelClient& client);
[[nodiscard]] nlohmann::json itemstate(const client::ModelClient& client, const platform::NetworkItem& item);

// {"number", "time", "title", "level", "message"}
[[nodiscard]] nlohmann::json linestate(const LogLine& line);
// {"name", "xuid", "language", "touch", "permission"}, of whoever has these.
template <class Who>
[[nodiscard]] nlohmann::json whostate(const Who& who) {
    return {{"name", who.name},
            {"xuid", who.xuid},
            {"language", who.language},
            {"touch", who.devicetype != 7},
            {"permission", who.permission}};
}

// "inventory", "hotbar", "armor", "offhand", "cursor", "createdoutput", or a number. Throws std::runtime_error.
[[nodiscard]] platform::ContainerName containerof(const nlohmann::json& name);
// [{"actions": [{"type": "take" or a number, "count", "source": {"container", "slot", "stackid"}, "destination",
//  "entry", "results": [{"item", "count", "aux"}], "times"}]}]. Throws std::runtime_error.
[[nodiscard]] std::vector<platform::ItemStackRequest> requestsof(const nlohmann::json& requests);

}  // namespace host
