// What the gateway is told of the server, once at its login and of the commands whenever they change.
#pragma once

#include <string>
#include <vector>

namespace host {

class Commands;

// The packets that every client is sent behind its StartGame.
[[nodiscard]] const std::vector<std::string>& startpackets();
[[nodiscard]] std::string announcement(const std::string& motd, bool offline);
[[nodiscard]] std::string announcement(const Commands& commands);  // server thread

}  // namespace host
