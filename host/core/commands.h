// The command registry and its parser. Server thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/core/overload.h"
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

// What a client needs to help with the typing of a command.
struct CommandDescription {
    std::string name, description;
    platform::CommandPermissionLevel level = platform::CommandPermissionLevel::Any;
    std::vector<const Parameters*> overloads;
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
    // By name; good until something is registered.
    [[nodiscard]] std::vector<CommandDescription> described() const;
    [[nodiscard]] const Enums& enums() const;
    [[nodiscard]] std::uint64_t revision() const { return revision_; }  // grows with each change
    // Forgets everything: the code behind it is about to leave the process.
    void clear();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
    std::uint64_t revision_ = 1;
};

}  // namespace host
