// The command "ordomart": the way into every menu, and the operators' tool for bans and for managing other players'
// shops. A caller who is no player is refused. Server thread; no envelope stands around it, the menus catch what
// concerns them.
#pragma once

#include <optional>
#include <string>

#include "platform/command.h"

namespace ordomart {

void registerordomart(platform::CommandRegistry& registry);

// The owner of a shop file, by player name or xuid; empty when there is none.
[[nodiscard]] std::string resolveshopowner(const std::string& target);

// What was typed. The grammar fills in what was given.
class OrdomartCommand : public platform::Command {
public:
    void execute(const platform::CommandOrigin& origin, platform::CommandOutput& output) override;

    std::optional<int> operation, searchtype;
    std::optional<std::string> target;
    std::optional<int> bantime;  // seconds
    std::optional<std::string> banreason;
    std::string filtertext;
    bool searchintag = false, searchindescription = false;
    std::optional<std::string> item, file;
    int number = 0, option = 0;
};

}  // namespace ordomart
