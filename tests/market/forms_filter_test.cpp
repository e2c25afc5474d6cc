// The standing filter and the search: their forms, what an answer may hold, and the lists behind them.
#include "tests/market/forms_stage.h"

using namespace forms;

namespace {

constexpr const char* saved = "command.reload.success";  // a key without a text
constexpr const char* limits[] = {"has sold", "sales volume", "the shop has recycled", "Least total paid"};

// What the form shows in a field.
std::string standing(Actor& player, const std::string& label) {
    player.dismisses().types("ordomart filter");
    const json shown = player.form();
    for (const auto& element : shown["content"])
        if (element["text"].get<std::string>().find(label) != std::string::npos)
            return element["default"].get<std::string>();
    throw std::runtime_error("no field " + label);
}

}  // namespace

TEST(FilterForm, ShowsWhatTheFilterHolds) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    alice.types("ordomart filter");
    const json form = alice.form();
    EXPECT_EQ(form["title"], "Filter Settings");
    const char* const labels[] = {"owner's name", "Shop description", "Item name", "Item description", "Item tag",
                                  limits[0],      limits[1],          limits[2],   limits[3]};
    ASSERT_EQ(form["content"].size(), std::size(labels));
    json answer = json::array();
    for (std::size_t i = 0; i < std::size(labels); ++i) {
        const auto& element = form["content"][i];
        const bool istext = i < 5;
        EXPECT_EQ(element["type"], "input");
        EXPECT_NE(element["text"].get<std::string>().find(labels[i]), std::string::npos) << element;
        EXPECT_EQ(element["placeholder"], istext ? "input string" : "input number");
        EXPECT_EQ(element["default"], istext ? "" : "-1");
        answer.push_back(fmt::format("{}", i));
    }
    alice.answers(answer);
    EXPECT_EQ(alice.chat(), saved);
    EXPECT_EQ(alice.sounds(), std::vector<std::string>{"mob.villager.yes"});

    alice.leaves();
    Actor& again = stage.join("Alice", ada);  // it stays for the run of the server
    for (std::size_t i = 0; i < std::size(labels); ++i) EXPECT_EQ(standing(again, labels[i]), answer[i]);
    again.answers(nullptr);
    EXPECT_EQ(again.chat(), "");
}

TEST(FilterForm, ABadLimitAndADeadPlayerChangeNothing) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    const struct {
        const char *typed, *read;  // read: null when it is refused
    } cases[] = {{"-1", "-1"},
                 {"-2", nullptr},
                 {"abc", "0"},
                 {"", "0"},
                 {"12 apples", "12"},
                 {"99999998", "99999998"},
                 {"99999999", nullptr},
                 {"4294967295", nullptr},
                 {"-99999999999", nullptr}};
    for (const char* limit : limits)
        for (const auto& each : cases) {
            SCOPED_TRACE(fmt::format("{}: {}", limit, each.typed));
            const bool isread = each.read != nullptr;
            const auto before = standing(alice, limit), owner = standing(alice, "owner's name");
            alice.forgets().fills({{limit, each.typed}, {"owner's name", each.typed}});
            EXPECT_EQ(alice.chat(), isread ? saved : "Wrong input value, please re-enter!");
            EXPECT_EQ(alice.sounds().size(), isread ? 1U : 0U);
            EXPECT_EQ(standing(alice, limit), isread ? each.read : before);
            EXPECT_EQ(standing(alice, "owner's name"), isread ? each.typed : owner);
        }
    alice.forgets().dies().fills({{"Item name", "nothing"}});
    EXPECT_EQ(alice.chat(), deadtext);
    EXPECT_EQ(standing(alice.revives(), "Item name"), "");
}

TEST(FilterForm, HoldsForEveryListUntilItIsChanged) {
    Stage stage;
    stage.writeshop(bob, rubies(), {commission("bread", 3, 5), commission("apple", 3, 5)},
                    {{"ownername", "Bob"}, {"sellcount", 10}}, {{"recyclecost", 70}});
    Actor& alice = stage.join("Alice", ada);
    const struct {
        std::vector<std::pair<std::string, json>> set;
        const char *sells, *recycles;
    } cases[] = {{{{"Item name", "ruby{||}bread$"}}, "ruby one bread ", "bread "},
                 {{{"Item name", ""}, {"Item tag", "ruby"}}, "stone ", ""},
                 {{{"Item tag", ""}, {"has sold", "10"}, {"owner's name", "Bob"}}, "ruby one bread stone ", ""},
                 {{{"owner's name", ""}, {"has sold", "11"}, {"Least total paid", "70"}}, "", "bread apple "},
                 {{{"has sold", "-1"}, {"Least total paid", "71"}}, "ruby one bread stone ", ""}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.set.front().first);
        alice.types("ordomart filter").fills(each.set);
        EXPECT_EQ(formrows(alice, "Selling shops"), each.sells);
        EXPECT_EQ(formrows(alice, "Recycle shops"), each.recycles);
    }
    alice.types("ordomart filter").fills({{"Item description", "red"}});
    opens(stage, alice, "ordomart search sell ruby true true");
    EXPECT_EQ(chestrows(alice), "bread ") << "a search narrows it further";
}

TEST(Search, TheForm) {
    Stage stage;
    Actor& alice = stage.join("Alice", ada);
    alice.types("ordomart search ruby");  // a text without a kind is dropped
    EXPECT_EQ(alice.form(), json::parse(R"({"type": "custom_form", "title": "Search", "content": [
        {"type": "input", "text": "Enter what to search for", "placeholder": "", "default": ""},
        {"type": "dropdown", "text": "Where to search", "options": ["Sell", "Recycle"], "default": 0},
        {"type": "toggle", "text": "Search item tags too", "default": true},
        {"type": "toggle", "text": "Search item descriptions too", "default": false}]})"));
    alice.answers(nullptr);
    EXPECT_EQ(alice.chat(), "");
    alice.types("ordomart search ruby").dies().answers({"ruby", 0, true, true});
    EXPECT_EQ(alice.chat(), deadtext);
    stage.ticks(6);
    EXPECT_FALSE(alice.menuopen());
}

TEST(Search, LooksAtNamesAlwaysAndElsewhereWhenTold) {
    Stage stage;
    stage.writeshop(bob, rubies(), {commission("bread", 3, 5, "ruby bread"), commission("apple", 3, 5)});
    Actor& alice = stage.join("Alice", ada);
    const char* form = "ordomart search nothing";
    const struct {
        const char* command;
        json answer;  // to the form, where the command opens one
        const char* found;
    } cases[] = {{form, {"ruby", 0, false, false}, "apple "},
                 {"ordomart search sell ruby", nullptr, "apple "},
                 {form, {"ruby", 0, true, false}, "apple stone "},
                 {"ordomart search sell ruby true", nullptr, "apple stone "},
                 {form, {"ruby", 0, false, true}, "apple bread "},
                 {"ordomart search sell ruby false true", nullptr, "apple bread "},
                 {form, {"ruby", 0, true, true}, "apple bread stone "},
                 {form, {"", 0, true, true}, ""},
                 {form, {"ruby", 1, false, false}, "bread "},
                 {"ordomart search recycle ruby", nullptr, "bread "},
                 {"ordomart search sell pearl", nullptr, ""}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.command + each.answer.dump());
        alice.types(each.command);
        if (!each.answer.is_null()) alice.answers(each.answer);
        stage.ticks(6);
        EXPECT_TRUE(alice.menuopen());
        EXPECT_EQ(chestrows(alice), each.found);
        alice.closes();
        EXPECT_EQ(formrows(alice, "Selling shops"), "ruby one bread stone ") << "it lasts for one list";
        rests(stage);
    }
}

// The refused one narrows nothing, and does not take away what the one before it was to narrow.
TEST(Search, OneThatOpensNoListLeavesNothingBehind) {
    Stage stage;
    stage.writeshop(bob, rubies(), {commission("bread", 3, 5, "ruby bread"), commission("apple", 3, 5)});
    Actor& alice = stage.join("Alice", ada);
    alice.types("ordomart search sell ruby true true");
    alice.types("ordomart search recycle nothing");
    EXPECT_EQ(alice.chat(), " Execution times are too frequent ");
    stage.ticks(6);
    EXPECT_EQ(chestrows(alice), "apple bread stone ");
    alice.closes();
    EXPECT_EQ(formrows(alice, "Recycle shops"), "ruby bread apple ");
}
