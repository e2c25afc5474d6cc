// The start of the plug-in as an operator sees it: log lines, files, and what a broken file does.
#include <gmock/gmock.h>

#include "platform/scoreboard.h"
#include "platform/text.h"
#include "tests/stage/stage.h"

using namespace stage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string base = "plugins/Ordomart/", config = base + "config.json", langs = base + "langs.json";
const std::string ada = "2535400000000001", bob = "2535400000000002";

const char* const complete = R"({
    "banshopitem": [
        "minecraft:clock"
    ],
    "debugmode": 0,
    "enablesystemshopinglobalshop": false,
    "extraslotcost": 500,
    "maxfreeslot": 36,
    "moneymode": 1,
    "scoremoneyname": "money",
    "tax": 0
})";
const std::string chinesename = "[Ordomart][warn] you should never set scoremoneyname to a Chinese name!";

// What the plug-in itself said since the server was made.
std::vector<std::string> told(Stage& stage) {
    std::istringstream all(stage.log());
    std::vector<std::string> lines;
    for (std::string line; std::getline(all, line);)
        if (!line.starts_with("[Server]")) lines.push_back(line);
    return lines;
}

// How the price of a good is written.
std::string pricelabel(Stage& stage, const std::string& language = "en_US") {
    Actor& reader = stage.join("Ada", ada, language);
    reader.types("ordomart formmenu").answers(0);
    const std::string text = reader.formtext();
    stage.clients().leave("Ada");
    const auto at = text.find("§e7 ");
    return at == std::string::npos ? text : text.substr(at + std::string("§e7 ").size());
}

}  // namespace

TEST(Start, InAFreshDirectory) {
    Stage stage;
    EXPECT_THAT(
        told(stage),
        ElementsAre(StartsWith("[Ordomart][info] "), StartsWith("[Ordomart][info] "),
                    "[Ordomart][info] Plugin Version: 1.2.0",
                    "[Ordomart][warn] Can't find direct,try create:plugins/Ordomart/ ",
                    "[Ordomart][info] create plugins/Ordomart/ success!",
                    "[Ordomart][warn] Can't open file plugins/Ordomart/config.json,try load default setting..."));
    for (const char* name : {"data", "log"}) EXPECT_TRUE(stage.exists(base + name));
    EXPECT_TRUE(stage.exists(base + "simpletrade.log"));
    EXPECT_EQ(stage.file(base + "simpletrade.log"), "") << "the log file is set once the settings are read";
    EXPECT_EQ(stage.file(config), complete);
    EXPECT_EQ(json::parse(stage.file(langs))["zh_CN"]["shop.soldout"], "售尽");

    ASSERT_EQ(stage.server().plugins().size(), 1U);
    const auto plugin = stage.server().plugins()[0];
    EXPECT_EQ(plugin.name, "Ordomart");
    EXPECT_EQ(plugin.introduction, "Implement the Ordomart of BDS version");
    EXPECT_EQ(plugin.version, (platform::LL::Version{1, 2, 0}));
    EXPECT_EQ(plugin.others, (std::map<std::string, std::string>{{"Git", ""}, {"License", ""}, {"Website", ""}}));

    stage.join("Ada", ada);
    stage.onserver([&] { EXPECT_EQ(stage.server().services().scoreboard->getObjective("money"), nullptr); });
    stage.restart();
    EXPECT_EQ(told(stage).size(), 3U) << stage.log();
}

TEST(Start, InADirectoryThatHoldsOnlySettings) {
    const std::string made = "[Ordomart][error] Can't find direct,try create:plugins/Ordomart/log/ ";
    const std::string success = "[Ordomart][info] create plugins/Ordomart/log/ success!";
    const std::string nolibrary = "[Ordomart][info] failed to find LLmoney.dll";
    struct {
        int moneymode;
        std::vector<std::string> lines;  // behind the banners and the version
    } const cases[] = {{1, {nolibrary, made, success}}, {2, {made, success}}, {0, {made, success}}};
    for (const auto& c : cases) {
        Stage stage({.config = {{"moneymode", c.moneymode}}, .llmoney = false});
        auto lines = told(stage);
        lines.erase(lines.begin(), lines.begin() + 3);
        EXPECT_EQ(lines, c.lines);
        EXPECT_FALSE(stage.exists(base + "data")) << "made with the first shop";
        EXPECT_THAT(stage.file(base + "simpletrade.log"), HasSubstr("create plugins/Ordomart/log/ success!\r\n"));
        EXPECT_EQ(json::parse(stage.file(config))["moneymode"], c.moneymode) << "the file keeps what was configured";
        EXPECT_EQ(stage.join("Ada", ada).types("ordomart getoffscores").replies(), "");
    }
}

TEST(Start, BrokenSettingsStopItAndAreLeftAlone) {
    struct {
        const char* content;
        const char* said;
    } const cases[] = {
        {R"({"tax": "5"})", ": key \"tax\": [json.exception.type_error.302] type must be number, but is string"},
        {R"({"moneymode": null})", ": key \"moneymode\": [json.exception.type_error.302] type must be number, but is "},
        {R"({"maxfreeslot": {}})", ": key \"maxfreeslot\": "},
        {R"({"banshopitem": "x"})",
         ": key \"banshopitem\": [json.exception.type_error.302] type must be array, but is string"},
        {R"({"banshopitem": [1]})",
         ": key \"banshopitem\": [json.exception.type_error.302] type must be string, but is number"},
        {R"({"scoremoneyname": 1})",
         ": key \"scoremoneyname\": [json.exception.type_error.302] type must be string, but is number"},
        {R"({"enablesystemshopinglobalshop": 1})", ": key \"enablesystemshopinglobalshop\": "},
        {R"({"tax": 5,})", ": [json.exception.parse_error.101] parse error at line 1"},
        {"", ": [json.exception.parse_error.101] parse error at line 1"},
        {"[]", ": the settings must be an object, but they are array"},
    };
    try {
        Stage stage({.files = {{config + "/in the way", ""}}});
        ADD_FAILURE() << "started with settings that cannot be read";
    } catch (const host::StartError& e) {
        EXPECT_THAT(e.what(), HasSubstr(config + ": the file is there, but cannot be read"));
    }
    Stage stage;
    for (const auto& c : cases) {
        stage.write(config, c.content);
        try {
            stage.restart();
            ADD_FAILURE() << "accepted: " << c.content;
        } catch (const host::StartError& e) {
            EXPECT_THAT(e.what(), HasSubstr(config + c.said));
        }
        EXPECT_EQ(stage.file(config), c.content);
    }
    stage.write(config, "{}");
    const std::string extras = "plugins/Ordomart/extras.json";
    for (const auto& [content, said] :
         {std::pair("{\"ledgerdays\": 0}", ": key \"ledgerdays\": 0 is not between"),
          std::pair("{\"awaymessage\": 1}", ": key \"awaymessage\": "), std::pair("{", ": ")}) {
        stage.write(extras, content);
        try {
            stage.restart();
            ADD_FAILURE() << "accepted: " << content;
        } catch (const host::StartError& e) {
            EXPECT_THAT(e.what(), HasSubstr(extras + said));
        }
        EXPECT_EQ(stage.file(extras), content);
    }
    stage.write(extras, "{\"ledgerdays\": 30}");
    stage.restart();
    EXPECT_EQ(json::parse(stage.file(extras)), json({{"ledgerdays", 30}, {"awaymessage", true}}));
}

TEST(Start, SettingsAreCutToTheirWidthAndWrittenBackComplete) {
    struct {
        const char* content;
        const char* key;
        json written;
    } const cases[] = {
        {"{}", "tax", 0},
        {R"({"unknown": 1, "maxfreeslot": 36})", "maxfreeslot", 36},
        {R"({"tax": 300})", "tax", 44},
        {R"({"tax": -129})", "tax", 127},
        {R"({"tax": 5.9})", "tax", 5},
        {R"({"tax": 1e300})", "tax", 0},
        {R"({"debugmode": true})", "debugmode", 1},
        {R"({"extraslotcost": 4294967297})", "extraslotcost", 1},
        {R"({"banshopitem": []})", "banshopitem", json::array()},
        {R"({"enablesystemshopinglobalshop": true})", "enablesystemshopinglobalshop", true},
        {R"({"scoremoneyname": "gold\u0000金钱"})", "scoremoneyname", std::string("gold\0金钱", 11)},
        {R"({"maxfreeslot": 7} and {"maxfreeslot": 9})", "maxfreeslot", 7},
        {R"({"scoremoneyname": "a金"})", "scoremoneyname", "money"},
    };
    Stage stage;
    for (const auto& c : cases) {
        stage.write(config, c.content);
        stage.restart();
        json expected = json::parse(complete);
        expected[c.key] = c.written;
        EXPECT_EQ(stage.file(config), expected.dump(4)) << c.content;
        EXPECT_EQ(told(stage).back() == chinesename, c.written == "money") << c.content;
    }
}

TEST(Start, WhereNothingCanBeWritten) {
    Stage stage({.llmoney = false, .files = {{"plugins", "a file where the directory should be"}}});
    auto lines = told(stage);
    lines.erase(lines.begin(), lines.begin() + 3);
    EXPECT_THAT(lines, ElementsAre("[Ordomart][warn] Can't find direct,try create:plugins/Ordomart/ ",
                                   "[Ordomart][error] create plugins/Ordomart/ error!",
                                   "[Ordomart][warn] Can't open file plugins/Ordomart/config.json,try load default "
                                   "setting...",
                                   "[Ordomart][warn] Can't open file plugins/Ordomart/config.json",
                                   "[Ordomart][warn] Can't open file plugins/Ordomart/extras.json",
                                   "[Ordomart][info] failed to find LLmoney.dll",
                                   "[Ordomart][error] Can't find direct,try create:plugins/Ordomart/log/ ",
                                   "[Ordomart][error] create plugins/Ordomart/log/ error!"));
    EXPECT_EQ(stage.join("Ada", ada).types("ordomart getoffscores").chat(), "No:0");
}

TEST(Languages, TheFileBelongsToTheOperatorAndIsCompleted) {
    Stage stage;
    stage.writeshop(bob, {good("apple", 7, 10)});
    const json defaults = json::parse(stage.file(langs));
    EXPECT_THAT(pricelabel(stage, "zh_CN"), StartsWith("LLmoney/个"));
    EXPECT_THAT(pricelabel(stage, "de_DE"), StartsWith("LLmoney/one"));

    json changed = defaults;
    changed["en_US"]["ordomart.moneyname"] = "Taler";
    changed["en_US"].erase("shop.soldout");
    changed["de_DE"] = {{"measurement.entries", "Stück"}};
    stage.write(langs, changed.dump());
    stage.restart();
    EXPECT_THAT(pricelabel(stage, "de_DE"), StartsWith("Taler/Stück"));
    EXPECT_THAT(pricelabel(stage, "fr_FR"), StartsWith("Taler/one"));
    changed["en_US"]["shop.soldout"] = "No Item";
    EXPECT_EQ(json::parse(stage.file(langs)), changed);
}

TEST(Languages, ABrokenFileIsToldTriedAgainAndLeftAlone) {
    const std::string broken = "{\"en_US\": {\"sell\": \"a\",}";
    Stage stage({.files = {{langs, broken}}, .language = "zh_CN"});
    const std::string failed = "[Ordomart][error] langfile load failed";
    EXPECT_EQ(told(stage).back(), failed);
    EXPECT_EQ(stage.file(langs), broken);
    stage.writeshop(bob, {good("apple", 7, 10)});
    EXPECT_THAT(pricelabel(stage, "zh_CN"), StartsWith("LLmoney/个")) << "the built-in texts";

    stage.write(langs, "{}");
    stage.onserver([] { platform::I18n::chooseLanguage("en_US"); });
    EXPECT_EQ(json::parse(stage.file(langs)).size(), 2U) << "loaded at the next language choice";
}
