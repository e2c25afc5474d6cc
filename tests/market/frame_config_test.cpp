// The settings file: what is taken, what is refused, and what stands on the disk afterwards.
#include "plugin/frame/config.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "plugin/frame/globals.h"
#include "tests/market/quiethost.h"

using namespace ordomart;
using nlohmann::json;

namespace {

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

class Config : public testing::Test {
protected:
    Config() {
        readconfig(json::parse(complete));
        host.files.directories = {paths::base};
    }
    ~Config() override { readconfig(json::parse(complete)); }

    // The file after a start with this content.
    const std::string& after(const std::string& content) {
        host.files.contents[paths::config] = content;
        loadconfig(paths::config);
        return host.files.contents[paths::config];
    }

    market_tests::QuietHost host;
};

TEST_F(Config, MissingFileIsMadeWithItsDirectories) {
    host.files.directories.clear();
    loadconfig(paths::config);
    EXPECT_EQ(host.files.contents[paths::config], complete);
    EXPECT_EQ(host.files.directories, (std::set<std::string>{paths::base, paths::data, paths::log}));
    EXPECT_EQ(host.log.lines, (std::vector<std::string>{
                                  "Ordomart 2 Can't find direct,try create:plugins/Ordomart/ ",
                                  "Ordomart 1 create plugins/Ordomart/ success!",
                                  "Ordomart 2 Can't open file plugins/Ordomart/config.json,try load default setting...",
                              }));
}

TEST_F(Config, FullDiskIsToldAndTheDefaultsHold) {
    host.files.directories.clear();
    host.files.writable = false;
    loadconfig(paths::config);
    EXPECT_EQ(host.log.lines.at(1), "Ordomart 3 create plugins/Ordomart/ error!");
    EXPECT_EQ(host.log.lines.back(), "Ordomart 2 Can't open file plugins/Ordomart/config.json");
    EXPECT_EQ(moneymode, 1);
}

TEST_F(Config, EveryKeyIsCutToItsWidthAndWrittenBack) {
    struct {
        const char* content;
        const char* key;
        json written;
    } const cases[] = {
        {R"({"moneymode": 2})", "moneymode", 2},
        {R"({"tax": 300})", "tax", 44},
        {R"({"tax": -129})", "tax", 127},
        {R"({"tax": 5.9})", "tax", 5},
        {R"({"tax": 1e300})", "tax", 0},
        {R"({"debugmode": true})", "debugmode", 1},
        {R"({"extraslotcost": 4294967297})", "extraslotcost", 1},
        {R"({"banshopitem": []})", "banshopitem", json::array()},
        {R"({"scoremoneyname": "金钱"})", "scoremoneyname", "money"},
        {R"({"scoremoneyname": "gold\u0000金钱"})", "scoremoneyname", std::string("gold\0金钱", 11)},
        {R"({"maxfreeslot": 7} and {"maxfreeslot": 9})", "maxfreeslot", 7},
    };
    for (const auto& c : cases) {
        readconfig(json::parse(complete));
        json expected = json::parse(complete);
        expected[c.key] = c.written;
        EXPECT_EQ(after(c.content), expected.dump(4)) << c.content;
    }
    EXPECT_EQ(after(R"({"unknown": 1, "maxfreeslot": 36})"), complete);
    EXPECT_EQ(host.log.lines,
              (std::vector<std::string>{"Ordomart 2 you should never set scoremoneyname to a Chinese name!"}));
}

TEST_F(Config, BrokenFileIsNamedAndLeftAlone) {
    struct {
        const char* content;
        const char* said;
    } const cases[] = {
        {R"({"tax": "5"})", "key \"tax\": [json.exception.type_error.302] type must be number, but is string"},
        {R"({"banshopitem": "x"})",
         "key \"banshopitem\": [json.exception.type_error.302] type must be array, but is string"},
        {R"({"banshopitem": [1]})",
         "key \"banshopitem\": [json.exception.type_error.302] type must be string, but is number"},
        {R"({"scoremoneyname": 1})", "key \"scoremoneyname\": "},
        {R"({"enablesystemshopinglobalshop": 1})", "key \"enablesystemshopinglobalshop\": "},
        {R"({"tax": 5,})", "[json.exception.parse_error.101] parse error at line 1"},
        {"", "[json.exception.parse_error.101] parse error at line 1"},
        {"[]", "the settings must be an object, but they are array"},
    };
    for (const auto& c : cases) {
        host.files.contents[paths::config] = c.content;
        try {
            loadconfig(paths::config);
            ADD_FAILURE() << "accepted: " << c.content;
        } catch (const configerror& e) {
            EXPECT_EQ(std::string(e.what()).find("plugins/Ordomart/config.json: " + std::string(c.said)), 0U)
                << e.what();
        }
        EXPECT_EQ(host.files.contents[paths::config], c.content);
    }
    EXPECT_THROW(readconfig(json::parse(R"({"moneymode": 0, "maxfreeslot": 5, "tax": null})")), configerror);
    EXPECT_EQ(moneymode, 0) << "what is read before the broken key stays read";
    EXPECT_EQ(maxfreeslot, 36);
}

}  // namespace
