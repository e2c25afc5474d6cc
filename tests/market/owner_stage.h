// What the stories about owners have in common: Alice with her two shops, those who trade with her, the dialogs of her
// chest views, and one picture of everything that a refusal must leave alone.
#pragma once

#include <sstream>

#include "tests/market/chest_stage.h"

namespace owner {

using namespace chest;

struct Counter {
    explicit Counter(bool llmoney = true, const json& config = {}) : stage({.config = config, .llmoney = llmoney}) {
        alice.setmoney(1000).gives(0, "apple", 64).gives(9, "apple", 10);
        carl.setmoney(1000);
    }
    void formmenu(Actor& who, const std::string& button) {
        who.dismisses().types("ordomart formmenu").presses("My shop (form)").presses(button);
    }
    void chestmenu(const std::string& command) { chestmenu(alice, command); }
    void chestmenu(Actor& who, const std::string& command) {
        who.dismisses();
        rests(stage);
        opens(stage, who, command);
        stage.ticks(1);
    }
    json goods() { return stage.shopfile(ada)["sell"]["items"]; }
    json commissions() { return stage.shopfile(ada)["recycles"]["recycleitems"]; }

    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    Actor& carl = stage.join("Carl", bob);
};

// Money, stacks, shop files, payments. What it cannot show is a shop's revision; see Witness.
inline std::string photograph(Stage& stage, std::initializer_list<const Actor*> actors) {
    std::string all;
    for (const auto* actor : actors)
        all += fmt::format("{} {} {}\n", actor->who().name, actor->money(), belongings(*actor));
    for (const auto& xuid : {ada, bob}) all += stage.shopfile(xuid).dump(1) + "\n";
    std::istringstream log(stage.file("plugins/Ordomart/simpletrade.log"));
    for (std::string line; std::getline(log, line);)
        if (line.find("[Ordomartlogger]") != std::string::npos) all += line;
    return all;
}

inline const std::string root = "2535400000000009";
using Answers = std::vector<std::pair<std::string, json>>;
struct spot {
    ContainerName container;
    int slot;
};
// A dialog of the chest: the way to it, and what is answered.
struct deed {
    const char *name, *command;
    std::vector<spot> way;
    Answers answers;
    bool picks = false;     // at the end of the way, an item out of the creative list
    bool confirms = false;  // "yes" instead of a form to fill
};

struct Stall : Counter {
    Stall() : Counter(true, {{"banshopitem", {"minecraft:tnt"}}}) {
        auto wanted = commission("bread", 3, 90);
        wanted["nowhasrecyclenum"] = 2;
        wanted["recycleditemnbtlist"] = {snbt("bread", 2)};
        stage.writeshop(ada, {good("apple", 5, 90), good("stone", 7, 10)}, {wanted});
        stage.writeshop(bob, {good("stone", 1, 1)});
        dora.setmoney(0).gives(0, "bread", 64);
        alice.gives(20, "stone", 7).gives(36, "diamond_helmet", 1);
    }
    void opensdialog(Actor& who, const deed& what) {
        chestmenu(who, what.command);
        for (const auto& at : what.way) {
            who.clicks(at.container, at.slot);
            stage.ticks(1);
        }
        if (what.picks) {
            who.look([](client::ModelClient& c) { c.pickcreative(c.creative().begin()->first); });
            stage.server().settle();
        }
        rests(stage);
        who.forgets();
    }
    void answers(Actor& who, const deed& what) {
        if (what.confirms)
            who.presses("yes");
        else
            who.fills(what.answers);
        stage.server().settle();
    }
    std::string truth() { return photograph(stage, {&alice, &carl, &dora, &admin}); }
    void bans(bool whether) {
        for (const char* kind : {"sell", "recycle"})
            admin.types(fmt::format("ordomart {} {} Alice", whether ? "ban" : "unban", kind));
    }
    void may(int level) {
        stage.onserver([&] { stage.server().world().setpermission("Root", level); });
    }

    Actor& dora = stage.join("Dora", "2535400000000003");
    Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
};

// What others were offered before: a good and a commission of Alice's, each dialog good for her shop's present revision
// alone. So it tells whether a revision has moved, behind which every dialog of that shop is stale.
class Witness {
public:
    explicit Witness(Stall& c) : buyer_(c.carl), seller_(c.dora) {
        buyer_.types("ordomart formmenu").presses("Selling shops (form)").presses("apple");
        seller_.types("ordomart formmenu").presses("Recycle shops (form)").presses("bread");
    }
    // Ends both dialogs.
    bool sayssame() {
        const auto apples = buyer_.counts("minecraft:apple"), loaves = seller_.counts("minecraft:bread");
        buyer_.fills({{"quantity", "1"}}).dismisses();
        seller_.fills({{"0", 1}}).dismisses();
        return buyer_.counts("minecraft:apple") == apples + 1 && seller_.counts("minecraft:bread") == loaves - 1;
    }

private:
    Actor &buyer_, &seller_;
};

}  // namespace owner
