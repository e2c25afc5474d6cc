// A stack that fits is sent as it is; of another one a new and smaller tree is made.
#include "plugin/chestmenu/fitting.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

namespace ordomart {

using namespace platform;

namespace {

constexpr std::size_t shortesttext = 64;                    // is not cut any further
constexpr std::size_t roomfortexts = moststackbytes - 512;  // beside keys and numbers
constexpr const char* shownnumbers[] = {"Damage", "Unbreakable", "minecraft:item_lock"};

// A length stands in front of a text.
std::size_t weight(const std::string& text) { return text.size() + 2; }

std::size_t weight(const std::vector<std::string>& texts) {
    std::size_t all = 0;
    for (const auto& text : texts) all += weight(text);
    return all;
}

std::size_t weight(const NetworkItem& item) {
    const auto names = weight(item.canplaceon) + weight(item.candestroy);
    if (!item.userdata) return names;
    try {
        return names + item.userdata->toBinary().size();
    } catch (const std::length_error&) {
        return std::numeric_limits<std::size_t>::max();  // the wire has no room for one of its texts
    }
}

void fit(std::string& name, std::vector<std::string>& lines) {
    const auto all = [&] { return weight(name) + weight(lines); };
    for (auto most = roomfortexts; most >= shortesttext && all() > roomfortexts; most /= 2) {
        shorten(name, most);
        for (auto& line : lines) shorten(line, most);
    }
    auto over = all();
    auto first = lines.begin();
    for (; first != lines.end() && over > roomfortexts; ++first) over -= weight(*first);
    lines.erase(lines.begin(), first);
}

CompoundTag shownpart(const CompoundTag& data) {
    CompoundTag part;
    for (const auto* key : shownnumbers)
        if (const auto* number = data.get(key); number != nullptr && number->type() <= TagType::Double)
            part.put(key, *number);
    if (data.getList("ench") != nullptr) part.list("ench");  // it shines

    const auto* const display = data.getCompound("display");
    if (display == nullptr) return part;
    auto name = display->getString("Name");
    std::vector<std::string> lines;
    if (const auto* lore = display->getList("Lore"))
        for (const auto& line : lore->items())
            if (const auto* text = line.as<std::string>()) lines.push_back(*text);
    fit(name, lines);
    auto& shown = part.compound("display");
    if (!name.empty()) shown.putString("Name", name);
    auto& lore = shown.list("Lore");
    for (auto& line : lines) lore.add(std::move(line));
    return part;
}

}  // namespace

void shorten(std::string& text, std::size_t most) {
    constexpr std::string_view ellipsis = "…";
    if (text.size() <= most) return;
    const auto iscontinued = [&](std::size_t i) { return (static_cast<unsigned char>(text[i]) & 0xc0) == 0x80; };
    auto end = most - ellipsis.size();
    while (end > 0 && iscontinued(end)) --end;
    text.replace(end, std::string::npos, ellipsis);
}

NetworkItem fitted(const ItemStack& stack) {
    auto item = tonetwork(stack);
    if (weight(item) <= moststackbytes) return item;
    item.canplaceon.clear();
    item.candestroy.clear();
    if (item.userdata) item.userdata = shownpart(*item.userdata);
    return item;
}

}  // namespace ordomart
