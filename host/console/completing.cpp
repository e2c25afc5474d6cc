// What can stand at the end of a typed line: by the places that the usage of a line names ("give NAME ITEM"), and
// within a player's command by what the server knows of it.
#include <algorithm>
#include <map>

#include "host/console/console.h"
#include "host/console/typed.h"
#include "host/core/commands.h"
#include "host/server.h"
#include "host/world/items.h"
#include "host/world/world.h"

namespace host {

namespace {

constexpr std::string_view gameprefix = "minecraft:";

Offer fitting(std::string begun, const std::vector<std::string>& words) {
    Offer offer{std::move(begun), {}};
    for (const std::string& word : words)
        if (word.starts_with(offer.begun)) offer.words.push_back(word);
    std::ranges::sort(offer.words);
    const auto [first, last] = std::ranges::unique(offer.words);
    offer.words.erase(first, last);
    return offer;
}

// Names as they are typed: with the game's prefix and without it.
std::vector<std::string> itemnames() {
    std::vector<std::string> names;
    for (const ItemRow& row : itemtable().rows()) {
        names.push_back(row.info.name);
        if (row.info.name.starts_with(gameprefix)) names.push_back(row.info.name.substr(gameprefix.size()));
    }
    return names;
}

}  // namespace

// The words that fit a place of a usage: "NAME", "ITEM", "[--touch]"; none for what is free.
std::vector<std::string> Console::offered(const std::string& place, const std::string& usage) {
    std::vector<std::string> words;
    if (place == "NAME")
        server_.run([&] {
            for (const PlayerSummary& player : server_.world().players()) words.push_back(player.name);
        });
    if (place == "ITEM") words = itemnames();
    if (place == "CONTAINER") words = containerwords();
    if (place == "[off|N]") words.emplace_back("off");
    if (place.starts_with("[--"))
        for (const std::string& word : split(usage))
            if (word.starts_with("[--")) words.push_back(word.substr(1, word.find(']') - 1));
    return words;
}

Offer Console::complete(const std::string& typed) {
    const std::string text = behind(typed, 0);
    const std::size_t blank = text.find_last_of(' ');
    const std::string begun = blank == std::string::npos ? text : text.substr(blank + 1);
    const std::size_t place = split(text).size() - (begun.empty() ? 0 : 1);  // where the word stands

    for (const JoinRequest& who : clients_.joined()) {
        if (!text.starts_with(who.name) || text.size() == who.name.size()) continue;
        const std::string rest = text.substr(who.name.size() + 1);
        if (text[who.name.size()] == ':') {
            std::vector<std::string> words;
            server_.run([&] {
                for (const Completion& word :
                     server_.commands().complete(rest, static_cast<platform::CommandPermissionLevel>(who.permission)))
                    if (!word.text.empty()) words.push_back(word.text);
            });
            return fitting(begun, words);
        }
        if (text[who.name.size()] != ' ') continue;
        std::vector<std::string> words;
        const std::size_t his = split(rest).size() - (begun.empty() ? 0 : 1) + 1;  // his name is the usage's first word
        for (const Line& line : playerlines()) {
            const std::vector<std::string> usage = split(line.usage);
            if (his == 1)
                words.emplace_back(line.word);
            else if (split(rest).front() == line.word && his < usage.size())
                words = offered(usage[his], line.usage);
        }
        return fitting(begun, words);
    }

    if (place == 0) {
        std::vector<std::string> words{"stop", "quit", "exit"};
        for (const Line& line : serverlines()) words.emplace_back(line.word);
        for (const JoinRequest& who : clients_.joined()) words.push_back(who.name);
        return fitting(begun, words);
    }
    const auto line =
        std::ranges::find_if(serverlines(), [&](const Line& known) { return split(text).front() == known.word; });
    if (line == serverlines().end()) return {};
    const std::vector<std::string> usage = split(line->usage);
    // A name that holds blanks goes to the end of the line.
    if (usage.size() > 1 && usage[1] == "NAME" && place > 1)
        if (Offer names = fitting(behind(text, 1), offered("NAME", line->usage)); !names.words.empty()) return names;
    if (begun.starts_with('-')) return fitting(begun, offered("[--", line->usage));
    return place < usage.size() ? fitting(begun, offered(usage[place], line->usage)) : Offer{};
}

}  // namespace host
