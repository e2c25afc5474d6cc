// What the stories about owners have in common: Alice with her two shops, those who trade with her, the dialogs of her
// chest views, and the books of all of them.
#pragma once

#include "tests/market/books.h"
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
        stage.writeshop(root, nullptr);
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
    // Of all who are here, with whoever Alice is by now.
    books truth(const Actor* owner = nullptr) {
        return {stage, {owner != nullptr ? owner : &alice, &carl, &dora, &admin}};
    }
    // A piece of each of Alice's records.
    void trades() {
        carl.types("ordomart formmenu").presses("Selling shops (form)").presses("apple").fills({{"quantity", "1"}});
        dora.types("ordomart formmenu").presses("Recycle shops (form)").presses("bread").fills({{"0", 1}});
        for (auto* each : {&carl, &dora}) each->dismisses();
    }

    Actor& dora = stage.join("Dora", "2535400000000003");
    Actor& admin = stage.join("Root", root, "en_US", desktop, 1);
};

}  // namespace owner
