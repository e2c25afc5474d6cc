// Server commands: what a plug-in registers, and what it is handed when a player or the console types one.
// Server thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/player.h"

namespace platform {

class CommandOrigin {
public:
    virtual ~CommandOrigin() = default;
    [[nodiscard]] virtual ServerPlayer* getPlayer() const = 0;  // null for the console or a command block
    [[nodiscard]] virtual CommandPermissionLevel getPermissionsLevel() const = 0;
};

class CommandOutput {
public:
    virtual ~CommandOutput() = default;
    virtual void success(const std::string& text) = 0;
    virtual void error(const std::string& text) = 0;
    virtual void addMessage(const std::string& text) = 0;
};

class Command {
public:
    virtual ~Command() = default;
    virtual void execute(const CommandOrigin& origin, CommandOutput& output) = 0;
};

// An enumeration gives its member's number, the others their own value.
using CommandValue = std::variant<int, bool, std::string>;

struct CommandParameter {
    enum class Kind { Enum, String, Int, Bool };
    std::string name;
    Kind kind = Kind::String;
    std::string enumname;  // for Kind::Enum
    bool optional = false;
    // Stores a given value in the command object; not called for an optional parameter that was left out.
    std::function<void(Command&, const CommandValue&)> store;
};

class CommandRegistry {
public:
    virtual ~CommandRegistry() = default;
    virtual void registerCommand(const std::string& name, const std::string& description, CommandPermissionLevel level,
                                 int flag1, int flag2) = 0;
    virtual void registerEnum(const std::string& name, const std::vector<std::pair<std::string, int>>& members) = 0;
    // Overloads are tried in the order of registration. A string parameter takes one word, or a text in double quotes
    // with \" and \\ as escapes.
    virtual void registerOverload(const std::string& command, std::function<std::unique_ptr<Command>()> make,
                                  std::vector<CommandParameter> parameters) = 0;
};

}  // namespace platform
