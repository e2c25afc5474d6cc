// Registered commands, and one line at a time carried out. The overload that understands most of a line tells what is
// wrong with it when none takes it.
#include "host/core/commands.h"

#include <algorithm>
#include <stdexcept>

#include "host/core/guarded.h"
#include "host/core/overload.h"
#include "platform/logger.h"

namespace host {

namespace {

using Level = platform::CommandPermissionLevel;

struct Overload {
    std::function<std::unique_ptr<platform::Command>()> make;
    Parameters parameters;
};

struct RegisteredCommand {
    std::string description;
    Level level = Level::Any;
    std::vector<Overload> overloads;
};

class Origin : public platform::CommandOrigin {
public:
    Origin(platform::ServerPlayer* player, Level level) : player_(player), level_(level) {}
    [[nodiscard]] platform::ServerPlayer* getPlayer() const override { return player_; }
    [[nodiscard]] Level getPermissionsLevel() const override { return level_; }

private:
    platform::ServerPlayer* player_;
    Level level_;
};

class Output : public platform::CommandOutput {
public:
    explicit Output(CommandResult& result) : result_(result) {}
    void success(const std::string& text) override {
        ++result_.successcount;
        result_.messages.push_back({true, text});
    }
    void error(const std::string& text) override { result_.messages.push_back({false, text}); }
    void addMessage(const std::string& text) override { result_.messages.push_back({true, text}); }

private:
    CommandResult& result_;
};

CommandResult failure(const std::string& text) { return {0, {{false, text}}}; }

std::string unknowncommand(const std::string& name) {
    return "Unknown command: " + name +
           ". Please check that the command exists and that you have permission to use it.";
}

// Whether a word at this parameter could be meant for the next one: not when this one takes the same words.
bool mayskip(const Parameters& parameters, std::size_t i) {
    const auto& parameter = parameters[i];
    return parameter.optional && parameter.kind != platform::CommandParameter::Kind::String &&
           i + 1 < parameters.size() && parameters[i + 1].kind != parameter.kind;
}

}  // namespace

struct Commands::Parts {
    std::map<std::string, RegisteredCommand> commands;
    Enums enums;

    [[nodiscard]] const RegisteredCommand* find(const std::string& name, Level level) const {
        const auto found = commands.find(name);
        return found == commands.end() || level < found->second.level ? nullptr : &found->second;
    }
};

Commands::Commands() : parts_(std::make_unique<Parts>()) {}

Commands::~Commands() = default;

// The flags tell a client how to show the command; the model client shows all of them.
void Commands::registerCommand(const std::string& name, const std::string& description, Level level, int /*flag1*/,
                               int /*flag2*/) {
    auto& command = parts_->commands[name];
    command.description = description;
    command.level = level;
    ++revision_;
}

void Commands::registerEnum(const std::string& name, const EnumMembers& members) {
    parts_->enums[name] = members;
    ++revision_;
}

void Commands::registerOverload(const std::string& command, std::function<std::unique_ptr<platform::Command>()> make,
                                Parameters parameters) {
    const auto found = parts_->commands.find(command);
    if (found == parts_->commands.end()) {
        throw std::invalid_argument("an overload for the command \"" + command + "\", which is not registered");
    }
    for (const auto& parameter : parameters) {
        if (parameter.kind == platform::CommandParameter::Kind::Enum && parts_->enums.count(parameter.enumname) == 0) {
            throw std::invalid_argument("command \"" + command + "\", parameter \"" + parameter.name +
                                        "\": no enumeration \"" + parameter.enumname + "\"");
        }
    }
    found->second.overloads.push_back({std::move(make), std::move(parameters)});
    ++revision_;
}

void Commands::clear() {
    *parts_ = {};
    ++revision_;
}

CommandResult Commands::execute(const std::string& line, platform::ServerPlayer* player, Level level) {
    const auto split = splitline(line);
    const auto& words = split.words;
    if (words.empty()) return failure(split.unexpected(0));
    const auto* command = parts_->find(words[0].text, level);
    if (command == nullptr) return failure(unknowncommand(words[0].text));

    std::size_t understood = 1;
    for (const auto& overload : command->overloads) {
        const auto filling = fill(overload.parameters, parts_->enums, words, words.size());
        if (!isfilled(filling, overload.parameters, words.size())) {
            understood = std::max(understood, filling.nextword);
            continue;
        }
        CommandResult result;
        Output output(result);
        const auto complain = [&](const std::string& text) {
            platform::Logger("Server").error("{}", text);
            output.error("An unknown error occurred while attempting to perform this command");
        };
        guarded(complain, "The command \"" + split.line + "\" failed", [&] {
            const auto object = overload.make();
            for (const auto& [parameter, value] : filling.values) overload.parameters[parameter].store(*object, value);
            object->execute(Origin(player, level), output);
        });
        return result;
    }
    return failure(split.unexpected(understood));
}

std::vector<Completion> Commands::complete(const std::string& line, Level level) const {
    auto split = splitline(line);
    auto& words = split.words;
    // The last word is still being typed unless a blank stands behind it.
    const bool newword =
        words.empty() || (std::string_view(" \t").find(line.back()) != std::string_view::npos && words.back().closed);
    const std::string begun = newword ? "" : words.back().text;
    const auto complete = words.size() - (newword ? 0 : 1);

    std::vector<Completion> found;
    const auto offer = [&](const std::string& text, const std::string& hint) {
        const bool known =
            std::any_of(found.begin(), found.end(), [&](const auto& c) { return c.text == text && c.hint == hint; });
        if (!known) found.push_back({text, hint});
    };
    if (complete == 0) {
        for (const auto& [name, command] : parts_->commands) {
            if (level >= command.level && name.rfind(begun, 0) == 0) offer(name, command.description);
        }
        return found;
    }
    const auto* command = parts_->find(words[0].text, level);
    if (command == nullptr) return found;
    for (const auto& [make, parameters] : command->overloads) {
        const auto filling = fill(parameters, parts_->enums, words, complete);
        if (filling.nextword != complete) continue;
        for (auto i = filling.nextparameter; i < parameters.size(); ++i) {
            for (const auto& text : continuations(parameters[i], parts_->enums, begun))
                offer(text, hint(parameters[i]));
            if (!mayskip(parameters, i)) break;
        }
    }
    return found;
}

std::vector<CommandDescription> Commands::described() const {
    std::vector<CommandDescription> all;
    for (const auto& [name, command] : parts_->commands) {
        auto& one = all.emplace_back(CommandDescription{name, command.description, command.level, {}});
        for (const auto& overload : command.overloads) one.overloads.push_back(&overload.parameters);
    }
    return all;
}

const Enums& Commands::enums() const { return parts_->enums; }

std::vector<std::string> Commands::usage() const {
    std::vector<std::string> lines;
    for (const auto& [name, command] : parts_->commands) {
        for (const auto& overload : command.overloads) {
            std::string line = "/" + name;
            for (const auto& parameter : overload.parameters) line += " " + hint(parameter);
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

}  // namespace host
