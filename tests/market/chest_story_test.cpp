// Random stories of clicks: whatever two players press, throw and swap on open menus, their real stacks, their money
// and the shops stay as they are. A menu that stands is one of the pictures that there are, and what it shows is what a
// click chooses, and where a press leads; without a menu each of them sees what he has, in his own game type. A story
// that fails is told again with fewer steps. ORDOMART_SEED and ORDOMART_STORIES tell others, and more of them.
#include <cstdlib>
#include <random>
#include <regex>

#include "plugin/base/language.h"
#include "tests/market/chest_ways.h"

using namespace chest;

namespace {

enum class act { open, click, pair, creativepick, close, strayclose, ticks, rest, dismiss, die };
constexpr const char* actnames[] = {"open",       "click", "pair", "creativepick", "close",
                                    "strayclose", "ticks", "rest", "dismiss",      "die"};
constexpr int weights[] = {14, 50, 20, 2, 3, 2, 6, 3, 10, 1};

struct place {
    int container, slot;
};
// What a person may press on, and some that nobody should.
constexpr place sources[] = {{29, 9}, {29, 9}, {29, 10}, {29, 20}, {29, 35}, {28, 0},  {28, 0},  {28, 2}, {28, 3},
                             {28, 5}, {28, 6}, {28, 8},  {28, 8},  {34, 1},  {34, 1},  {34, 0},  {6, 0},  {6, 0},
                             {6, 1},  {6, 2},  {59, 0},  {59, 0},  {12, 8},  {12, 20}, {60, 50}, {7, 1},  {99, 200}};
constexpr place targets[] = {{59, 0}, {59, 0}, {29, 12}, {28, 0}, {28, 3}, {28, 4}, {28, 8}, {34, 1}, {6, 1}};
constexpr int types[] = {0, 0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 5};

struct step {
    act what;
    int who, number;  // which menu, how many ticks
    int type;         // of a click
    place from, to;
};

std::string told(const std::vector<step>& steps) {
    std::string text;
    for (const auto& s : steps)
        text += fmt::format("  {{act::{}, {}, {}, {}, {{{}, {}}}, {{{}, {}}}}},\n", actnames[static_cast<int>(s.what)],
                            s.who, s.number, s.type, s.from.container, s.from.slot, s.to.container, s.to.slot);
    return text;
}

std::vector<step> invents(std::uint64_t seed, int length) {
    std::mt19937_64 random(seed);
    const auto below = [&](std::size_t n) { return static_cast<int>(random() % n); };
    const auto oneof = [&](const auto& all) { return all[below(std::size(all))]; };
    std::discrete_distribution<int> what(std::begin(weights), std::end(weights));
    std::vector<step> steps;
    for (int i = 0; i < length; ++i)
        steps.push_back(
            {static_cast<act>(what(random)), below(2), below(8), oneof(types), oneof(sources), oneof(targets)});
    return steps;
}

class Theatre {
public:
    Theatre() {
        // No two prices are alike.
        stage_.writeshop(bob, goods(30), json::array({commission("stone", 301, 20), commission("apple", 302, 9)}));
        stage_.writeshop(ada, ownshop(401, 28), ownshop(451, 3));
        stage_.writeshop(lin, ownshop(501, 2), ownshop(551, 28));
        stage_.writeshop("systemshop", {good("bread", 601, 5)}, {commission("bread", 602, 5)});
        for (int who = 0; who < 2; ++who) {
            Actor* const actor = actors_[who];
            actor->setmoney(1000).gives(0, "diamond_sword", 1).gives(8, "apple", 64).gives(9, "stone", 5);
            actor->gives(20, "oak_sign", 3).gives(35, "book", 1).gives(36, "diamond_helmet", 1).gives(40, "shield", 1);
            actor->look([&](client::ModelClient& c) {
                for (int slot = 0; slot < 36; ++slot)
                    realids_[{who, slot < 9 ? 28 : 29, slot}] = realids_[{who, 12, slot}] =
                        c.slot(inventoryid, slot).stackid;
                realids_[{who, 6, 0}] = c.slot(armorid, 0).stackid;
                realids_[{who, 34, 1}] = c.slot(offhandid, 0).stackid;
            });
        }
    }

    [[nodiscard]] int forms() const { return forms_; }
    // What went wrong, or nothing.
    std::string play(const std::vector<step>& steps) {
        const auto before = truth();
        for (const auto& each : steps) {
            perform(each);
            for (std::size_t who = 0; who < std::size(actors_); ++who) look(who);
            if (!wrong_.empty()) return wrong_;
        }
        for (Actor* actor : actors_) leavesthestage(*actor);
        if (const auto after = truth(); after != before) return "before " + before + "\nafter  " + after;
        for (Actor* actor : actors_)
            complainunless(screen(*actor) == belongings(*actor), *actor, "is shown what he has not");
        return wrong_;
    }

private:
    // Goods and commissions at once, of which every text that a dialog shows names the price.
    static json ownshop(int firstprice, int n) {
        json records = json::array();
        for (int price = firstprice; price < firstprice + n; ++price) {
            const auto named = fmt::format(
                R"({{Count:{}b,Damage:0s,Name:"minecraft:stone",tag:{{display:{{Name:"piece {}"}}}}}})", 1, price);
            json record = good(named, price, 10);
            record.update(commission("stone", price, 10));
            record["itemnbt"] = named;
            record["recycleditemnbtlist"] = json::array({fmt::format("{{Count:1b,Name:\"piece {}\"}}", price)});
            records.push_back(std::move(record));
        }
        return records;
    }
    void perform(const step& s) {
        static constexpr const char* menus[] = {"ordomart ordomenu", "ordomart buy",      "ordomart recycle",
                                                "ordomart myshop",   "ordomart myreshop", "ordomart buybyshop",
                                                "ordomart rebyshop"};
        Actor& actor = *actors_[s.who];
        const auto from = static_cast<ContainerName>(s.from.container), to = static_cast<ContainerName>(s.to.container);
        // With the numbers of the real stacks, so that the server itself would do what is asked.
        const auto clicked = [&] {
            auto made = action(static_cast<ActionType>(s.type), from, s.from.slot, to, s.to.slot);
            for (auto* place : {&made.source, &made.destination})
                place->stackid = realids_[{s.who, place->container, place->slot}].value_or(0);
            return made;
        };
        const auto onmenu = [&](std::vector<std::vector<platform::ItemStackRequestAction>> batch) {
            // Without a menu the same request moves real stacks, as it should.
            if (actor.menuopen()) presses(s, std::move(batch));
        };
        switch (s.what) {
            case act::open:
                actor.types(menus[s.number % std::size(menus)]);
                since_[s.who] = now_;
                ticks(s.number);
                break;
            case act::click:
                onmenu({{clicked()}});
                break;
            case act::pair:
                onmenu({{action(ActionType::swap, ContainerName::cursor, 0, to, s.to.slot)}, {clicked()}});
                break;
            case act::creativepick:
                onmenu({{action(ActionType::creativepick, {}, 0), action(ActionType::craftresult, {}, 0),
                         action(static_cast<ActionType>(s.type % 4), ContainerName::createdoutput, 50)}});
                break;
            case act::close:
                actor.closes();
                break;
            case act::strayclose:
                // Of a menu that he has no more, or that he never had.
                closesraw(stage_, actor, std::max(0, menus_[s.who] + (s.number < 4 ? -1 : s.number)));
                break;
            case act::ticks:
                ticks(s.number);
                break;
            case act::rest:
                rests(stage_);
                break;
            case act::dismiss:
                if (actor.form().is_null()) break;
                actor.answers(nullptr);
                since_[s.who] = now_;  // its view comes back
                break;
            case act::die:
                if (std::exchange(dead_[s.who], !dead_[s.who]))
                    actor.revives();
                else
                    actor.dies();
                break;
        }
    }

    // ---- what is shown, against what a click does

    void complainunless(bool right, const Actor& actor, const std::string& what) {
        if (!right && wrong_.empty())
            wrong_ =
                fmt::format("{} {}: sees {}\nand has {}\n", actor.who().name, what, screen(actor), belongings(actor));
    }
    void ticks(int n) {
        stage_.ticks(n);
        now_ += n;
    }
    static constexpr int paintticks = 6;
    // Long enough open, and with no other on its way, to be painted.
    [[nodiscard]] bool stands(std::size_t who) const {
        return actors_[who]->menuopen() && now_ - since_[who] >= paintticks;
    }

    void look(std::size_t who) {
        const Actor& actor = *actors_[who];
        actor.look([&](client::ModelClient& c) {
            const int open = c.container() ? c.container()->id : menus_[who];
            if (std::exchange(menus_[who], open) != open) since_[who] = now_;
        });
        if (!actor.menuopen())
            complainunless(screen(actor) == belongings(actor), actor, "has no menu and is shown one");
        const auto view = viewof(actor);
        complainunless(!stands(who) || view != nullptr, actor, "has a menu that is none");
        const bool creative = view != nullptr && view == std::string_view("myrecycleshop.onreshop.helper1");
        if (!actor.menuopen() || stands(who))
            complainunless(gametype(actor) == (actor.menuopen() && creative ? 1 : 0), actor, "has another's game type");
    }

    // On these a press means nothing, and is not heard.
    static bool isdead(const char* view, const step& s) {
        const std::string_view in = view;
        if (s.from.container == 6) return s.from.slot == (in.starts_with("my") ? 1 : 0);
        return s.from.container == 28 && s.type == 3 && in.find(".on") != in.npos;
    }

    // What the first text field holds: in a dialog about a stack of one's own, the item's name.
    static std::string firstinput(const json& form) {
        for (const auto& element : form["content"])
            if (element["type"] == "input") return element["default"];
        return {};
    }

    // What a text says of a price; empty when nothing.
    static std::string price(const std::string& text) {
        std::smatch found;
        return std::regex_search(text, found, std::regex("([0-9]+) LLmoney|piece ([0-9]+)"))
                   ? found[1].str() + found[2].str()
                   : std::string();
    }
    // The same of a dialog, which may have it in a field of its own.
    static std::string formprice(const std::string& text) {
        const auto found = price(text);
        if (!found.empty()) return found;
        const json form = json::parse(text);
        const bool hasfield = form["type"] == "custom_form" && form["content"].size() > 3;
        return hasfield && form["content"][3].contains("default") ? form["content"][3]["default"].get<std::string>()
                                                                  : "";
    }

    void presses(const step& s, std::vector<std::vector<platform::ItemStackRequestAction>> batch) {
        Actor& actor = *actors_[s.who];
        const char* const view = viewof(actor);
        const auto* const slot = std::find_if(std::begin(visible), std::end(visible), [&](const auto& each) {
            return each.container == s.from.container && s.from.slot >= each.first && s.from.slot <= each.last;
        });
        const bool stood = stands(static_cast<std::size_t>(s.who)), seen = slot != std::end(visible);
        const int place = seen ? s.from.slot - slot->shift : 0;
        const auto stack = seen ? actor.shown(slot->painted, place) : std::string();
        const auto shownprice = seen ? price(lore(actor, slot->painted, place)) : std::string();
        const auto forms = [&] {
            std::size_t open = 0;
            actor.look([&](client::ModelClient& c) { open = c.forms().size(); });
            return open;
        };
        const auto before = forms();
        actor.look([](client::ModelClient& c) { c.sounds.clear(); });
        sends(stage_, actor, std::move(batch));

        const bool offered = forms() > before, reacted = offered || !actor.menuopen() || !actor.sounds().empty();
        // The lists of shops are painted a tick later than all others.
        if (stood && viewof(actor) == nullptr) since_[s.who] = now_ - (paintticks - 1);
        const bool press = s.what != act::creativepick && (s.type <= 1 || s.type == 3);
        const bool counts = stood && press && !dead_[s.who] && view != nullptr && !stack.empty() && !isdead(view, s);
        complainunless(!counts || reacted, actor, "sees " + stack + ", and it is dead");
        if (offered) ++forms_;
        if (offered) return judgeoffer(s, view, stack, shownprice);
        const auto* const door = wayfrom(doors, view, s.from);
        // Not each time, so that a press may also come before the picture.
        if (!counts || door == nullptr || s.number % 2 == 0) return;
        ticks(2);
        const auto* const now = viewof(actor);
        complainunless(!actor.menuopen() || (now != nullptr && now == std::string_view(door->to)), actor,
                       fmt::format("presses on {} in {} and does not get to {}", stack, view, door->to));
    }

    void judgeoffer(const step& s, const char* view, const std::string& stack, const std::string& shownprice) {
        const Actor& actor = *actors_[s.who];
        std::string text;
        actor.look([&](client::ModelClient& c) { text = c.forms().back().json; });
        const json form = json::parse(text);
        const auto istitled = [&](const char* key) { return form["title"] == ordomart::tr(actor.who().language, key); };
        // A history comes when it has been read.
        if (istitled(eventlog)) return;
        bool right = false;
        if (const auto* const dialog = wayfrom(dialogs, view, s.from); s.what == act::creativepick)
            right = istitled("myrecycleshop.onreshop.form.menutitle");
        else if (dialog == nullptr)
            right = (s.from.container == 28 && stack == "minecraft:recovery_compass*1") ||
                    (!shownprice.empty() && formprice(text) == shownprice);
        else if (std::string_view(dialog->from).find(".on") != std::string_view::npos)
            right = istitled(dialog->to) && stack.starts_with("minecraft:" + firstinput(form) + "*");
        else
            right = istitled(dialog->to) && (dialog->container != 29 || stack.empty() || formprice(text) == shownprice);
        complainunless(right, actor,
                       fmt::format("presses on {} for {} in {} and is offered {}", stack, shownprice,
                                   view != nullptr ? view : "no view", text));
    }

    // Every opening comes to its end, and a form that is closed opens its view again.
    void leavesthestage(Actor& actor) {
        actor.revives();
        stage_.ticks(6);
        for (int i = 0; i < 100 && (actor.menuopen() || !actor.form().is_null()); ++i) {
            actor.closes();
            if (!actor.form().is_null()) actor.answers(nullptr);
            stage_.ticks(6);
        }
    }

    std::string truth() {
        std::string all;
        for (const auto& xuid : {bob, ada, lin}) all += stage_.shopfile(xuid).dump();
        for (Actor* actor : actors_) all += fmt::format("\n{} {}", actor->money(), belongings(*actor));
        return all;
    }

    // The places of a press that show something, and where.
    static constexpr struct {
        int container, first, last;
        std::uint32_t painted;
        int shift;
    } visible[] = {
        {28, 0, 8, inventoryid, 0}, {29, 9, 35, inventoryid, 0}, {6, 0, 3, armorid, 0}, {34, 1, 1, offhandid, 1}};

    inline static const std::string lin = "2535400000000004";
    Stage stage_;
    std::string wrong_;
    int now_ = 0, since_[2] = {}, menus_[2] = {};  // ticks; the last change; the container that was last seen
    bool dead_[2] = {};
    int forms_ = 0;                                                      // that a selection led to
    std::map<std::array<int, 3>, std::optional<std::int32_t>> realids_;  // by player, container and slot
    Actor* actors_[2] = {&stage_.join("Alice", ada), &stage_.join("Lin", lin, "zh_CN", touch)};
};

struct Outcome {
    std::string wrong;
    int forms;
};
Outcome tells(const std::vector<step>& steps) {
    Theatre theatre;
    auto wrong = theatre.play(steps);
    return {std::move(wrong), theatre.forms()};
}

// Leaves out ever smaller pieces as long as the story still fails.
std::vector<step> shortened(std::vector<step> steps) {
    for (std::size_t piece = steps.size() / 2; piece > 0; piece /= 2) {
        for (std::size_t at = 0; at + piece <= steps.size();) {
            auto fewer = steps;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(at),
                        fewer.begin() + static_cast<std::ptrdiff_t>(at + piece));
            if (tells(fewer).wrong.empty())
                at += piece;
            else
                steps = std::move(fewer);
        }
    }
    return steps;
}

}  // namespace

TEST(ChestStory, WhateverIsClickedTheRealStacksStay) {
    const auto number = [](const char* name, std::uint64_t otherwise) {
        const char* given = std::getenv(name);
        return given != nullptr ? std::strtoull(given, nullptr, 10) : otherwise;
    };
    const auto first = number("ORDOMART_SEED", 1021), stories = number("ORDOMART_STORIES", 8);
    int offered = 0;
    for (auto seed = first; seed < first + stories; ++seed) {
        const auto steps = invents(seed, 400);
        const auto [wrong, forms] = tells(steps);
        offered += forms;
        if (wrong.empty()) continue;
        const auto fewer = shortened(steps);
        ADD_FAILURE() << "seed " << seed << ":\n" << wrong << "\n" << told(fewer) << tells(fewer).wrong;
    }
    EXPECT_GT(offered, 0) << "these are stories in which nothing happens";
}
