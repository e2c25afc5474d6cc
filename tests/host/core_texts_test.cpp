// Translation files: made, completed, never spoilt; and the fallbacks of a lookup.
#include "host/core/texts.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/core/files.h"
#include "tests/host/coretools.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* file = "plugins/Ordomart/langs.json";

class CoreTexts : public testing::Test {
protected:
    platform::I18nBase* load() { return texts.loadI18n(file, "en_US", defaults); }

    coretests::Directory directory;
    coretests::Complaints complaints;
    host::DiskFiles files{directory.path};
    host::GameTexts texts{[this]() -> platform::Files& { return files; }, complaints.complain};
    const platform::LangData defaults = {{"en_US", {{"sell", "sell"}, {"moneyname", "coins"}}},
                                         {"zh_CN", {{"sell", "出售"}}}};
};

TEST_F(CoreTexts, WhatTheOperatorWroteStaysAndMissingKeysComeBack) {
    directory.put(file, R"({"en_US": {"sell": "SELL", "own": "mine"}, "de_DE": {"sell": "verkaufen"}})");
    ASSERT_NE(load(), nullptr);
    const nlohmann::json expected = {
        {"en_US", {{"sell", "SELL"}, {"own", "mine"}, {"moneyname", "coins"}}},
        {"zh_CN", {{"sell", "出售"}}},
        {"de_DE", {{"sell", "verkaufen"}}},
    };
    EXPECT_EQ(nlohmann::json::parse(directory.get(file)), expected);
}

TEST_F(CoreTexts, ACompleteFileIsNotWrittenAgain) {
    const std::string content = R"({"zh_CN":{"sell":"a"},"en_US":{"sell":"b","moneyname":"c"}})";
    directory.put(file, content);
    ASSERT_NE(load(), nullptr);
    EXPECT_EQ(directory.get(file), content);
}

TEST_F(CoreTexts, ABrokenFileIsLeftAsItIsAndTold) {
    const struct {
        const char *content, *told;
    } cases[] = {
        {"{\n  \"en_US\": {\n    \"sell\": \"a\",\n  }\n}", "line 4, column 3"},
        {"", "line 1, column 1"},
        {"{\"en_US\": {\"sell\": \"\xff\"}}", "invalid string"},
        {"[]", "an object of languages was expected"},
        {"{\"en_US\": 3}", "\"en_US\" must be an object of texts"},
        {"{\"en_US\": {\"sell\": 3}}", "\"en_US\", \"sell\" must be a text"},
    };
    for (const auto& c : cases) {
        directory.put(file, c.content);
        complaints.lines.clear();
        EXPECT_EQ(load(), nullptr) << c.content;
        EXPECT_EQ(directory.get(file), c.content);
        EXPECT_THAT(complaints.lines, ElementsAre(testing::AllOf(testing::StartsWith(file), HasSubstr(c.told))));
    }
    std::filesystem::remove(directory.path / file);
    std::filesystem::create_directory(directory.path / file);
    EXPECT_EQ(load(), nullptr) << "something is there that cannot be read";
}

// Every text that is looked up while the file is broken asks for it again.
TEST_F(CoreTexts, ABrokenFileIsReadAgainWhenItHasChangedAndNotBefore) {
    struct Counting : host::DiskFiles {
        using DiskFiles::DiskFiles;
        [[nodiscard]] std::optional<std::string> read(const std::string& path) const override {
            ++reads;
            return DiskFiles::read(path);
        }
        mutable int reads = 0;
    } counting(directory.path);
    host::GameTexts counted([&]() -> platform::Files& { return counting; }, complaints.complain);
    const auto loads = [&] { return counted.loadI18n(file, "en_US", defaults) != nullptr; };
    const std::string broken = R"({"en_US": {"sell": 1}})", another = R"({"en_US": {"sell": 2}})";
    directory.put(file, broken);
    const auto time = std::filesystem::last_write_time(directory.path / file);
    for (int i = 0; i < 5; ++i) EXPECT_FALSE(loads());
    EXPECT_EQ(counting.reads, 1);
    EXPECT_EQ(complaints.lines.size(), 1U);
    // Another file with the same length and time takes its place.
    directory.put("moved", another);
    std::filesystem::last_write_time(directory.path / "moved", time);
    std::filesystem::rename(directory.path / "moved", directory.path / file);
    for (int i = 0; i < 5; ++i) EXPECT_FALSE(loads());
    EXPECT_EQ(counting.reads, 2);
    EXPECT_EQ(complaints.lines.size(), 2U);
    directory.put(file, R"({"en_US": {"sell": "mended"}})");
    EXPECT_TRUE(loads());
}

TEST_F(CoreTexts, AFileThatCannotBeWrittenStillGivesTexts) {
    directory.put("plugins", "a file where the directory should be");
    const auto* table = load();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->get("sell", "zh_CN"), "出售");
    EXPECT_THAT(complaints.lines, ElementsAre(testing::StartsWith(file)));
}

TEST_F(CoreTexts, GameTextsFallBackByFamily) {
    const auto english = texts.gametext("item.apple.name", "en_US");
    const auto chinese = texts.gametext("item.apple.name", "zh_CN");
    EXPECT_EQ(english, "Apple");
    EXPECT_NE(chinese, english);
    EXPECT_EQ(texts.gametext("item.apple.name", "zh_TW"), chinese);
    EXPECT_EQ(texts.gametext("item.apple.name", "fr_FR"), english);
    EXPECT_EQ(texts.gametext("item.apple.name", ""), english);
    EXPECT_EQ(texts.gametext("item.nothing.name", "zh_CN"), "item.nothing.name");
}

}  // namespace
