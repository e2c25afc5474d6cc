// The built-in texts: what would show a player a bare key, a broken sentence or the wrong one of two rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ranges>
#include <set>
#include <string>

#include "plugin/base/langtables.h"
#include "plugin/base/owntexts.h"

namespace {

using Texts = std::map<std::string, std::string>;

const Texts& english() { return ordomart::defaultlangdata().at("en_US"); }
const Texts& chinese() { return ordomart::defaultlangdata().at("zh_CN"); }

// "{0}{2}" for a text that uses the arguments 0 and 2, in whatever order; a stray brace shows as "?".
std::string placeholders(const std::string& text) {
    std::set<std::string> found;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '{' && text[i] != '}') continue;
        const bool whole =
            text[i] == '{' && i + 2 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '9' && text[i + 2] == '}';
        found.insert(whole ? text.substr(i, 3) : "?");
        if (whole) i += 2;
    }
    std::string joined;
    for (const auto& one : found) joined += one;
    return joined;
}

TEST(LangTables, BothLanguagesHaveTheSameKeysButForTheMoneyName) {
    EXPECT_EQ(english().size(), 163u);
    EXPECT_EQ(chinese().size(), 162u);
    Texts withoutmoney = english();
    EXPECT_EQ(withoutmoney.erase("ordomart.moneyname"), 1u);
    EXPECT_TRUE(std::equal(withoutmoney.begin(), withoutmoney.end(), chinese().begin(), chinese().end(),
                           [](const auto& a, const auto& b) { return a.first == b.first; }));
    EXPECT_EQ(ordomart::defaultlangdata().size(), 2u);
}

TEST(LangTables, TheFirstOfTwoRowsStands) {
    EXPECT_EQ(ordomart::englishrows().size(), 165u);
    EXPECT_EQ(ordomart::chineserows().size(), 164u);
    EXPECT_EQ(english().at("systemshop"), "systemshop");
    EXPECT_EQ(std::string(std::ranges::find_if(ordomart::englishrows() | std::views::reverse,
                                               [](const auto& row) { return std::string(row.key) == "systemshop"; })
                              ->text),
              "system shop");
}

TEST(LangTables, TheOwnTextsStandBesideThem) {
    Texts own[2];
    int language = 0;
    for (const auto& [locale, fixed] : ordomart::defaultlangdata()) {
        for (const auto& [key, text] : ordomart::alllangdata().at(locale)) {
            if (const auto row = fixed.find(key); row == fixed.end())
                own[language][key] = text;
            else
                EXPECT_EQ(text, row->second) << key;
        }
        ++language;
    }
    EXPECT_FALSE(own[0].empty());
    for (const auto& [key, text] : own[0]) {
        if (!key.starts_with("ledger.") && !key.starts_with("market.")) {
            EXPECT_EQ(placeholders(text), key == ordomart::owntext::stackskept ? "{0}" : "") << key;
        }
        EXPECT_EQ(placeholders(text), placeholders(own[1][key])) << key;
    }
    EXPECT_EQ(own[0].size(), own[1].size());
}

TEST(LangTables, FormatStringsTakeTheirArgumentsInBothLanguages) {
    const std::map<std::string, std::string> formats = {
        {"Player {0} paid {1} for {2} from {3}", "{0}{1}{2}{3}"},
        {"Player {0} gain {1} for {2} from {3}", "{0}{1}{2}{3}"},
        {"shop.onshop.notfreecost", "{0}{1}"},
        {"sellformUI.content", "{0}{1}{2}"},
        {"recycleformUI.content", "{0}{1}{2}"},
    };
    for (const auto* language : {&english(), &chinese()}) {
        for (const auto& [key, text] : *language) {
            const auto format = formats.find(key);
            EXPECT_EQ(placeholders(text), format == formats.end() ? "" : format->second) << key << ": " << text;
        }
    }
}

TEST(LangTables, NoTextIsEmptyAndNoLabelBringsItsOwnColon) {
    for (const auto* language : {&english(), &chinese()}) {
        for (const auto& [key, text] : *language) {
            ASSERT_FALSE(text.empty()) << key;
            EXPECT_NE(text.back(), ':') << key;
            EXPECT_FALSE(text.ends_with("：")) << key;
        }
    }
}

}  // namespace
