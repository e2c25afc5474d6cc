// What the stories about owners have in common: Alice with her two shops, Carl who trades with her, and one picture of
// everything that a refusal must leave alone.
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

}  // namespace owner
