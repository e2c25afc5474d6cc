#include "host/bustle/visits.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <string_view>

namespace host {

using nlohmann::json;
using platform::ContainerName;

namespace {

// ---- reading what stands there

// The number that begins at a place of a text, 0 when none does.
int numberat(std::string_view text, std::size_t place) {
    int number = 0;
    if (place < text.size()) std::from_chars(text.data() + place, text.data() + text.size(), number);
    return number;
}

// Money is what the market writes in yellow; the last of a text.
constexpr std::string_view yellow = "\u00a7e";
int moneyin(std::string_view text) {
    const std::size_t at = text.rfind(yellow);
    return at == std::string_view::npos ? 0 : numberat(text, at + yellow.size());
}

bool isnext(std::string_view button) { return button.starts_with("Next page"); }
bool isprevious(std::string_view button) { return button.find("Last page") != std::string_view::npos; }

const Ware* wareof(std::span<const Ware> wares, const Held& held) {
    constexpr std::size_t prefix = 10;  // of "minecraft:"
    const auto found = std::ranges::find_if(wares, [&](const Ware& ware) {
        return held.item.size() > prefix && held.item.substr(prefix) == ware.item && held.aux == ware.aux;
    });
    return found == wares.end() ? nullptr : &*found;
}

const Ware* anyware(const Held& held) {
    for (const Craft& craft : crafts())
        if (const Ware* ware = wareof(craft.wares, held)) return ware;
    return nullptr;
}

int pick(Person& person, const std::vector<int>& places) {
    return places[static_cast<std::size_t>(person.dice.below(static_cast<int>(places.size())))];
}

// ---- answers to forms; nothing gives the visit up

using Given = std::optional<Answers>;
using Answer = Given (*)(Person&, const Sight&);

template <Answer Fits>
Deed answers(Person& person, const Sight& sight) {
    if (!sight.asked) return Waits{};
    if (const Given given = Fits(person, sight)) return *given;
    return GivesUp{};
}

template <int Button>
Given presses(Person&, const Sight& sight) {
    if (sight.form["type"] != "form" || sight.form["buttons"].size() <= Button) return std::nullopt;
    return Answers{Button};
}

// A row of the list, and now and then another page first.
Given row(Person& person, const Sight& sight, const std::function<bool(const std::string&)>& wanted) {
    if (sight.form["type"] != "form") return std::nullopt;
    std::vector<int> rows, pages;
    int number = 0;
    for (const json& button : sight.form["buttons"]) {
        const std::string text = button["text"];
        if (isnext(text) || isprevious(text))
            pages.push_back(number);
        else if (wanted(text))
            rows.push_back(number);
        ++number;
    }
    if (!pages.empty() && person.dice.oneof(rows.empty() ? 1 : 2) && !person.dice.oneof(4))
        return Answers{pick(person, pages), true};
    if (rows.empty()) return std::nullopt;
    return Answers{pick(person, rows)};
}

bool issome(const std::string& text) { return text.find(":0   ") == std::string::npos; }
Given somegood(Person& person, const Sight& sight) { return row(person, sight, issome); }
Given anyrow(Person& person, const Sight& sight) {
    return row(person, sight, [](const std::string&) { return true; });
}
// Of what is wanted, something that he has.
Given fittingwish(Person& person, const Sight& sight) {
    return row(person, sight, [&](const std::string& text) {
        return issome(text) && std::ranges::any_of(sight.slots, [&](const Held& held) {
                   return !held.item.empty() && text.find("\u00a7a" + held.title + "\u00a7f") != std::string::npos;
               });
    });
}

// The slot of a stack, which is the number of its button in the market's lists of slots.
Given slotof(Person& person, const Sight& sight, const std::function<bool(const Held&)>& wanted) {
    std::vector<int> places;
    for (std::size_t slot = 0; slot < sight.slots.size(); ++slot)
        if (wanted(sight.slots[slot])) places.push_back(static_cast<int>(slot));
    if (sight.form["type"] != "form" || places.empty()) return std::nullopt;
    const int chosen = pick(person, places);
    person.chosen = sight.slots[static_cast<std::size_t>(chosen)];
    return Answers{chosen};
}
Given slotofown(Person& person, const Sight& sight) {
    return slotof(person, sight, [&](const Held& held) { return wareof(person.craft->wares, held) != nullptr; });
}
Given slotofother(Person& person, const Sight& sight) {
    return slotof(person, sight, [&](const Held& held) {
        return anyware(held) != nullptr && wareof(person.craft->wares, held) == nullptr;
    });
}

// A form of elements: texts into its inputs in order, and the sliders as asked; the rest stays as it is.
using Slide = std::function<int(int most)>;
Given filled(const Sight& sight, const std::vector<std::string>& texts, const Slide& slide = {}) {
    if (sight.form["type"] != "custom_form") return std::nullopt;
    json all = json::array();
    std::size_t input = 0;
    for (const json& element : sight.form["content"]) {
        const std::string type = element["type"];
        json value = element.contains("default") ? element["default"] : json(nullptr);
        if (type == "input" && input < texts.size())
            value = texts[input++];
        else if (type == "slider" && slide)
            value = slide(element["max"].get<int>());
        all.push_back(std::move(value));
    }
    return Answers{std::move(all)};
}

// What the labels of a form say in yellow: his money in the first one, the price of a piece in the last.
std::pair<int, int> moneyandprice(const json& form) {
    int money = -1, price = 0;
    for (const json& element : form["content"]) {
        const std::string text = element["type"] == "label" ? element["text"].get<std::string>() : "";
        if (text.find(yellow) == std::string::npos) continue;
        (money < 0 ? money : price) = moneyin(text);
    }
    return {money, price};
}

// Nobody spends more than an eighth of his money at once, but for the little that everybody can afford.
Given quantity(Person& person, const Sight& sight) {
    if (sight.form["type"] != "custom_form") return std::nullopt;
    const auto [money, price] = moneyandprice(sight.form);
    const int budget = std::max(money / 8, std::min(money, 40));
    if (price < 1 || price > budget) return std::nullopt;
    return filled(sight, {std::to_string(1 + person.dice.below(std::min(budget / price, 12)))});
}

// Of the first stack some, of the others none.
Given amounts(Person& person, const Sight& sight) {
    if (sight.form["type"] != "custom_form") return std::nullopt;
    bool some = false;
    const Given given = filled(
        sight, {}, [&](int most) { return std::exchange(some, true) ? 0 : 1 + person.dice.below(std::min(most, 16)); });
    return some ? given : std::nullopt;
}

Given refill(Person&, const Sight& sight) {
    bool some = false;
    const Given given = filled(sight, {}, [&](int most) {
        some = some || most > 0;
        return most;
    });
    return some ? given : std::nullopt;
}

int priced(Person& person, const Ware& ware, int percent) {
    return std::max(1, (ware.value * percent * (90 + person.dice.below(21)) + 5000) / 10000);
}

Given uploaded(Person& person, const Sight& sight) {
    const Ware* ware = anyware(person.chosen);
    if (ware == nullptr) return std::nullopt;
    return filled(sight, {person.chosen.title, person.craft->praise.in(person.chinese),
                          std::to_string(priced(person, *ware, person.dear)), person.craft->tag.in(person.chinese)});
}

Given commissioned(Person& person, const Sight& sight) {
    const Ware* ware = anyware(person.chosen);
    if (ware == nullptr) return std::nullopt;
    constexpr int deposit = 400;
    const int offer = priced(person, *ware, person.dear - 15);
    static constexpr Said wanted{"wanted", "收购"}, always{"any amount", "多多益善"};
    return filled(
        sight, {person.chosen.title, always.in(person.chinese), std::to_string(offer),
                std::to_string(std::clamp(deposit / offer, 1, 64 + person.dice.below(65))), wanted.in(person.chinese)});
}

// The price moves a little, the name stays.
Given adjusted(Person& person, const Sight& sight) {
    if (sight.form["type"] != "custom_form") return std::nullopt;
    std::vector<std::string> texts;
    for (const json& element : sight.form["content"])
        if (element["type"] == "input") texts.push_back(element["default"]);
    if (texts.size() < 3) return std::nullopt;
    const int old = numberat(texts[2], 0);
    const int step = std::max(1, old / 12);
    texts[2] = std::to_string(std::max(1, old + (person.dice.oneof(2) ? step : -step)));
    return filled(sight, texts);
}

Given discounted(Person& person, const Sight& sight) {
    return filled(sight, {person.craft->tag.in(person.chinese), fmt::format("%{}", 70 + 5 * person.dice.below(5)),
                          std::to_string(600 + 300 * person.dice.below(5))});
}

Given named(Person& person, const Sight& sight) {
    const std::string shop = person.chinese ? fmt::format("{}的{}", person.who.name, person.craft->house.chinese)
                                            : fmt::format("{}'s {}", person.who.name, person.craft->house.english);
    return filled(sight, {shop, person.craft->praise.in(person.chinese),
                          fmt::format("minecraft:{}", person.craft->wares.front().item)});
}

Given agrees(Person&, const Sight& sight) {
    if (sight.form["type"] != "modal") return std::nullopt;
    return Answers{true};
}

// ---- commands and clicks

Deed formmenu(Person&, const Sight&) { return Says{"ordomart formmenu"}; }
Deed ownshop(Person&, const Sight&) { return Says{"ordomart myshop"}; }
Deed searches(Person& person, const Sight&) {
    const Craft& craft = crafts()[static_cast<std::size_t>(person.dice.below(static_cast<int>(crafts().size())))];
    return Says{fmt::format("ordomart search sell {} true", craft.tag.in(person.chinese))};
}
Deed asksprices(Person& person, const Sight&) {
    const auto& wares = person.craft->wares;
    return Says{fmt::format("ordomart prices {}",
                            wares[static_cast<std::size_t>(person.dice.below(static_cast<int>(wares.size())))].item)};
}

// A menu is painted a moment after it opens.
constexpr std::int64_t painted = 30;
bool isshown(const Person& person, const Sight& sight) { return sight.menu && person.waited >= painted; }

Deed clicksgood(Person& person, const Sight& sight) {
    if (!isshown(person, sight)) return Waits{};
    constexpr int first = 9, behind = 35;
    std::vector<int> places;
    for (int slot = first; slot < behind; ++slot)
        if (!sight.slots[static_cast<std::size_t>(slot)].item.empty()) places.push_back(slot);
    if (places.empty()) return GivesUp{};
    return Clicks{ContainerName::inventory, pick(person, places)};
}
Deed clicksdiscount(Person& person, const Sight& sight) {
    constexpr int button = 4;
    if (!isshown(person, sight)) return Waits{};
    return Clicks{ContainerName::hotbar, button};
}

// ---- the visits, by the buttons of the market's menus

enum mainbutton { goods, wishes, ownmenu };
enum ownbutton { edit, history, adjust, add, third, othershop };

constexpr Step buying[] = {&formmenu, &answers<&presses<goods>>, &answers<&somegood>, &answers<&quantity>};
constexpr Step searching[] = {&searches, &clicksgood, &answers<&quantity>};
constexpr Step selling[] = {&formmenu, &answers<&presses<wishes>>, &answers<&fittingwish>, &answers<&amounts>};
constexpr Step asking[] = {&asksprices};
constexpr Step naming[] = {&formmenu, &answers<&presses<ownmenu>>, &answers<&presses<edit>>, &answers<&named>};
constexpr Step namingother[] = {&formmenu, &answers<&presses<ownmenu>>, &answers<&presses<othershop>>,
                                &answers<&presses<edit>>, &answers<&named>};
constexpr Step uploading[] = {&formmenu, &answers<&presses<ownmenu>>, &answers<&presses<add>>, &answers<&slotofown>,
                              &answers<&uploaded>};
constexpr Step restocking[] = {&formmenu, &answers<&presses<ownmenu>>, &answers<&presses<third>>, &answers<&anyrow>,
                               &answers<&refill>};
constexpr Step adjusting[] = {&formmenu, &answers<&presses<ownmenu>>, &answers<&presses<adjust>>, &answers<&anyrow>,
                              &answers<&adjusted>};
constexpr Step commissioning[] = {&formmenu,
                                  &answers<&presses<ownmenu>>,
                                  &answers<&presses<othershop>>,
                                  &answers<&presses<add>>,
                                  &answers<&slotofother>,
                                  &answers<&commissioned>};
constexpr Step collecting[] = {&formmenu,
                               &answers<&presses<ownmenu>>,
                               &answers<&presses<othershop>>,
                               &answers<&presses<third>>,
                               &answers<&anyrow>,
                               &answers<&agrees>};
constexpr Step discounting[] = {&ownshop, &clicksdiscount, &answers<&discounted>};

constexpr Visit visits[] = {
    {"names his shop", 0, true, false, true, naming},
    {"names his recycle shop", 0, true, false, true, namingother},
    {"uploads", 4, true, false, true, uploading},
    {"publishes a commission", 3, true, false, true, commissioning},
    {"buys", 12, false, true, true, buying},
    {"sells", 9, false, true, true, selling},
    {"searches and buys", 5, false, true, false, searching},
    {"asks for prices", 1, false, false, false, asking},
    {"restocks", 4, true, false, true, restocking},
    {"changes a price", 2, true, false, true, adjusting},
    {"picks up", 2, true, false, true, collecting},
    {"publishes a discount", 1, true, false, false, discounting},
};
constexpr const Visit &nameshop = visits[0], &nameother = visits[1], &upload = visits[2], &commission = visits[3];

bool fits(const Visit& visit, const Person& person, bool hurried) {
    return (person.keepsshop || !visit.ownersonly) && (visit.byform || !hurried);
}

}  // namespace

Person::Person(const Figure& figure, std::string xuid, const Craft& his, std::uint64_t seed)
    : who{.name = figure.name, .xuid = std::move(xuid), .language = figure.chinese ? "zh_CN" : "en_US", .extra = true},
      chinese(figure.chinese),
      dice(seed),
      craft(&his),
      keepsshop(dice.below(5) < 3),
      dear(80 + dice.below(46)) {}

std::deque<const Visit*> firstvisits(const Person& person) {
    if (!person.keepsshop) return {};
    return {&nameshop, &nameother, &upload, &upload, &upload, &commission};
}

const Visit* nextvisit(Person& person, bool hurried) {
    if (!person.planned.empty()) {
        const Visit* next = person.planned.front();
        person.planned.pop_front();
        return next;
    }
    int all = 0;
    for (const Visit& visit : visits)
        if (fits(visit, person, hurried)) all += visit.weight;
    int left = person.dice.below(all);
    for (const Visit& visit : visits)
        if (fits(visit, person, hurried) && (left -= visit.weight) < 0) return &visit;
    return nullptr;
}

}  // namespace host
