// The command registry and its parser. Server thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/command.h"

namespace host {

struct CommandMessage {
    bool success = true;
    std::string text;
};

struct CommandResult {
    int successcount = 0;
    std::vector<CommandMessage> messages;
};

// What can stand at the end of a line that is being typed.
struct Completion {
    std::string text;  // the word to insert, or empty for a free value
    std::string hint;  // "[playerxuid|playername: string]"
};

class Commands : public platform::CommandRegistry {
public:
    Commands();
    ~Commands() override;
    void registerCommand(const std::string& name, const std::string& description,
                         platform::CommandPermissionLevel level, int flag1, int flag2) override;
    void registerEnum(const std::string& name, const std::vector<std::pair<std::string, int>>& members) override;
    void registerOverload(const std::string& command, std::function<std::unique_ptr<platform::Command>()> make,
                          std::vector<platform::CommandParameter> parameters) override;

    // The line with or without its slash. A line that no overload takes gives one error that names the word that was
    // not understood, in the game's way: "Syntax error: Unexpected "x": at "ordomart >>x<< y"".
    [[nodiscard]] CommandResult execute(const std::string& line, platform::ServerPlayer* player,
                                        platform::CommandPermissionLevel level);
    [[nodiscard]] std::vector<Completion> complete(const std::string& line,
                                                   platform::CommandPermissionLevel level) const;
    // One line per overload: "/ordomart <Operation: baseoperation1> [playerxuid|playername: string]".
    [[nodiscard]] std::vector<std::string> usage() const;
    // Forgets everything: the code behind it is about to leave the process.
    void clear();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
