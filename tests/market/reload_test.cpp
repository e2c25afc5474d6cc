// Settings and texts that are read again while the market goes on.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include "tests/market/forms_stage.h"

using namespace forms;
using testing::HasSubstr;

TEST(Reload, SettingsAndTextsChangeWholeOrNotAtAll) {
    const std::string base = "plugins/Ordomart/", config = base + "config.json", extras = base + "extras.json",
                      langs = base + "langs.json", sellform = base + "sellform.json";
    Stage stage({.config = {{"moneymode", 1}, {"tax", 10}}});
    stage.writeshop(ada, {good("apple", 10, 10, "Red apples")});
    Actor& olga = stage.join("Olga", "2535400000000999", "en_US", desktop, 1);
    Actor& carl = stage.join("Carl", bob);
    const auto reloads = [&] {
        olga.forgets().types("ordomart reload");
        stage.ticks(60);
        return olga.replies() + "\n" + olga.chat();
    };
    const auto change = [&](const std::string& path, const std::function<void(json&)>& how) {
        auto content = json::parse(stage.file(path));
        how(content);
        stage.write(path, content.dump());
    };
    const auto all = json::parse(stage.file(langs));
    const auto texts = all["en_US"].size() + all["zh_CN"].size();
    const auto nothing = fmt::format("read again. New settings: 0, new texts: 0 of {}.", texts);
    EXPECT_THAT(reloads(), HasSubstr(nothing));
    EXPECT_EQ(carl.types("ordomart reload").replies(), "permission denied");

    change(config, [](json& c) {
        c.update({{"tax", 50}, {"moneymode", 0}, {"banshopitem", {"minecraft:bread"}}, {"scoremoneyname", "gold"}});
        c.erase("maxfreeslot");
    });
    change(extras, [](json& c) { c["ledgerdays"] = 30; });
    change(langs, [](json& c) {
        c["en_US"]["ledger.prices.empty"] = "Show something";
        c["zh_CN"].erase("ledger.prices.empty");
    });
    const json changed = {json::parse(stage.file(config)), json::parse(stage.file(extras))};
    const auto before = stage.file(config);
    // Each of these is in the way of all of it.
    const struct {
        std::string path, content, told;
    } faults[] = {
        {config, "{\"tax\": 5,}", config + ": [json.exception.parse_error"},
        {config, "{\"tax\": \"5\", \"maxfreeslot\": []}",
         config + ": key \"tax\": [json.exception.type_error.302] type must be number, but is string\n" + config +
             ": key \"maxfreeslot\": [json.exception.type_error"},
        {config, "{\"scoremoneyname\": \"金钱\"}", config + ": key \"scoremoneyname\": must be ASCII"},
        {extras, "{\"ledgerdays\": 0}", extras + ": key \"ledgerdays\": 0 is not between 1 and 36500"},
        {extras, "[]", extras + ": the settings must be an object, but they are array"},
        {langs, "{\"en_US\": {\"a\": 1}}", langs + ": \"en_US\", key \"a\": must be a text"},
        {langs, "{\"en_US\"", langs + ": is no JSON"},
        {sellform, "[{\"titlename\": \"x\"}]", sellform + ": [0]: [json.exception.out_of_range"},
    };
    for (const auto& [path, content, why] : faults) {
        const auto was = stage.file(path);
        stage.write(path, content);
        const auto said = reloads();
        EXPECT_THAT(said, HasSubstr("Nothing has changed, since something is wrong in the files:\n" + why));
        EXPECT_EQ(stage.file(path), content);
        stage.write(path, was.empty() ? "[]" : was);
        EXPECT_THAT(carl.forgets().types("ordomart prices").replies(), HasSubstr("Take an item in your hand"));
    }
    const auto said = reloads();
    for (const std::string line : {"tax: 10 -> 50\n", "banshopitem: [\"minecraft:clock\"] -> [\"minecraft:bread\"]\n",
                                   "ledgerdays: 400 -> 30\n", "moneymode: 1 -> 0 takes effect at the next start.\n",
                                   "scoremoneyname: \"money\" -> \"gold\" takes effect at the next start.\n"})
        EXPECT_THAT(said, HasSubstr(line));
    EXPECT_THAT(said, HasSubstr(fmt::format("read again. New settings: 3, new texts: 1 of {}.", texts)));
    EXPECT_EQ(stage.file(config), before);
    EXPECT_EQ(carl.forgets().types("ordomart prices").replies(), "Show something");
    EXPECT_THAT(reloads(), HasSubstr("moneymode: 1 -> 0 takes effect"));
    // The fee of a trade is the new one, and the money still the library's.
    carl.setmoney(100)
        .types("ordomart formmenu")
        .presses("Selling shops (form)")
        .presses("Red apples")
        .fills({{"quantity", "1"}})
        .dismisses();
    EXPECT_EQ(stage.money(ada), 5);
    EXPECT_EQ(carl.money(), 90);
}
