// The files' lines are read as README.md beside them says. They are part of the program, so that what does not fit is a
// broken build and ends it.
#include "host/world/gamedata.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <stdexcept>
#include <unordered_map>

namespace host {

namespace {

template <class T>
T number(std::string_view text, int base = 10) {
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::logic_error(fmt::format("the game's tables: \"{}\" is no number", text));
    return value;
}

std::string_view cut(std::string_view& rest, char at) {
    const std::string_view piece = rest.substr(0, rest.find(at));
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    return piece;
}

// Calls for each line with its full name and the rest.
template <class Each>
void eachline(std::string_view file, Each each) {
    for (std::string_view rest = gamefile(file); !rest.empty();) {
        std::string_view line = cut(rest, '\n');
        const auto name = fmt::format("minecraft:{}", cut(line, ' '));
        each(name, line);
    }
}

std::string unhex(std::string_view digits) {
    std::string bytes;
    for (; digits.size() >= 2; digits.remove_prefix(2))
        bytes += static_cast<char>(number<std::uint8_t>(digits.substr(0, 2), 16));
    return bytes;
}

std::vector<GameItem> readitems() {
    std::vector<GameItem> items;
    eachline("items.txt", [&](const std::string& name, std::string_view rest) {
        const auto id = number<std::int32_t>(cut(rest, ' '));
        items.push_back({name, id, rest == "component"});
    });
    return items;
}

std::map<std::string, GameBlock, std::less<>> readblocks() {
    std::map<std::string, GameBlock, std::less<>> blocks;
    std::int32_t next = 0;
    eachline("blocks.txt", [&](const std::string& name, std::string_view rest) {
        GameBlock block{next, {}};
        next += number<std::int32_t>(cut(rest, ' '));
        while (!rest.empty()) {
            std::string_view pair = cut(rest, ' ');
            const auto aux = number<std::size_t>(cut(pair, ':'));
            if (block.byaux.size() <= aux) block.byaux.resize(aux + 1, block.first);
            block.byaux[aux] = block.first + number<std::int32_t>(pair);
        }
        blocks.emplace(name, std::move(block));
    });
    return blocks;
}

std::vector<CreativeItem> readcreative() {
    std::vector<CreativeItem> items;
    eachline("creative.txt", [&](const std::string& name, std::string_view rest) {
        const auto aux = number<std::int16_t>(cut(rest, ' '));
        items.push_back({name, aux, unhex(rest)});
    });
    return items;
}

}  // namespace

std::string_view gamefile(std::string_view name) {
    const auto found = std::ranges::find(gamefiles(), fmt::format("/{}", name), &EmbeddedFile::path);
    if (found == gamefiles().end()) throw std::logic_error(fmt::format("the game's tables lack {}", name));
    return found->content;
}

std::span<const GameItem> gameitems() {
    static const auto items = readitems();
    return items;
}

const GameItem* gameitem(std::string_view name) {
    static const auto byname = [] {
        std::unordered_map<std::string_view, const GameItem*> found;
        for (const GameItem& item : gameitems()) found.emplace(item.name, &item);
        return found;
    }();
    const auto found = byname.find(name);
    return found == byname.end() ? nullptr : found->second;
}

const GameBlock* gameblock(std::string_view name) {
    static const auto blocks = readblocks();
    const auto found = blocks.find(name);
    return found == blocks.end() ? nullptr : &found->second;
}

std::span<const CreativeItem> creativeitems() {
    static const auto items = readcreative();
    return items;
}

}  // namespace host
