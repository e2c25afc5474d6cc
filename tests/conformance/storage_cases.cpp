// Files, log files and translation tables.
#include <algorithm>
#include <thread>

#include "platform/directorywatch.h"
#include "platform/files.h"
#include "platform/library.h"
#include "platform/logger.h"
#include "platform/records.h"
#include "platform/stores.h"
#include "platform/text.h"
#include "tests/conformance/conformance.h"

namespace conformance {

using Names = std::vector<std::string>;

TEST_P(Conformance, FilesAreReplacedWholeReadAndListed) {
    start();
    platform::Files& files = *server->services().files;
    EXPECT_TRUE(files.makeDirectory("conformance/deep/"));
    EXPECT_TRUE(files.makeDirectory("conformance/deep"));
    EXPECT_TRUE(files.replace("conformance/b.json", "a long first content"));
    EXPECT_TRUE(files.replace("conformance/b.json", "0123456789"));
    EXPECT_TRUE(files.replace("conformance/a.json", ""));
    EXPECT_EQ(files.list("conformance/"), (Names{"a.json", "b.json"})) << "no directories, nothing left beside, sorted";
    EXPECT_TRUE(files.list("nowhere").empty());

    EXPECT_EQ(files.read("conformance/b.json"), "0123456789");
    EXPECT_EQ(files.read("conformance/a.json"), "");
    EXPECT_EQ(files.read("conformance/c.json"), std::nullopt);
    EXPECT_EQ(files.read("conformance/deep"), std::nullopt);
    EXPECT_EQ(files.readtail("conformance/b.json", 4), "6789");
    EXPECT_EQ(files.readtail("conformance/b.json", 99), "0123456789");
    EXPECT_EQ(files.readtail("conformance/c.json", 4), std::nullopt);
    EXPECT_TRUE(files.exists("conformance/a.json"));
    EXPECT_FALSE(files.exists("conformance/c.json"));

    EXPECT_FALSE(files.replace("nowhere/a.json", "new"));
    EXPECT_FALSE(files.replace("conformance/deep", "new")) << "a directory has the name";
    EXPECT_FALSE(files.makeDirectory("conformance/a.json"));
    EXPECT_EQ(files.list("conformance"), (Names{"a.json", "b.json"})) << "a failure leaves nothing beside";
    EXPECT_FALSE(files.remove("conformance/deep"));
    for (const char* gone : {"conformance/a.json", "conformance/a.json", "nowhere/a.json"})
        EXPECT_TRUE(files.remove(gone)) << gone;
    EXPECT_EQ(files.list("conformance"), (Names{"b.json"}));

    // Large ones, piece by piece: there is nothing of one that is not finished, and none over another.
    {
        const auto dropped = files.make("conformance/c.json"), kept = files.make("conformance/d.json");
        ASSERT_TRUE(dropped && kept);
        EXPECT_TRUE(dropped->write("nobody") && kept->write("0123") && kept->write("456789"));
        EXPECT_FALSE(files.exists("conformance/d.json"));
        EXPECT_TRUE(kept->finish());
        EXPECT_EQ(files.make("conformance/d.json"), nullptr);
        EXPECT_EQ(files.make("nowhere/d.json"), nullptr);
        const auto late = files.make("conformance/c.json");
        EXPECT_TRUE(late && late->write("late") && files.replace("conformance/c.json", "first"));
        EXPECT_FALSE(late->finish());
    }
    EXPECT_EQ(files.readpart("conformance/d.json", 2, 3), "234");
    EXPECT_EQ(files.readpart("conformance/d.json", 8, 99), "89");
    EXPECT_EQ(files.readpart("conformance/d.json", 99, 1), "");
    EXPECT_EQ(files.readpart("nowhere/d.json", 0, 1), std::nullopt);
    EXPECT_EQ(files.read("conformance/c.json"), "first");
    EXPECT_EQ(files.list("conformance"), (Names{"b.json", "c.json", "d.json"}));
    for (const char* gone : {"conformance/c.json", "conformance/d.json"}) EXPECT_TRUE(files.remove(gone));

    const std::string contents[] = {std::string(200'000, 'a'), std::string(100'000, 'b')};
    std::vector<std::thread> writers;
    for (const auto& content : contents)
        writers.emplace_back([&] {
            for (int i = 0; i < 10; ++i) EXPECT_TRUE(files.replace("conformance/b.json", content));
        });
    for (int i = 0; i < 50; ++i) {
        const auto seen = files.read("conformance/b.json");
        EXPECT_TRUE(seen == "0123456789" || seen == contents[0] || seen == contents[1]);
    }
    for (auto& writer : writers) writer.join();
}

TEST_P(Conformance, ChangedFilesAreTold) {
    start();
    platform::Files& files = *server->services().files;
    ASSERT_TRUE(files.makeDirectory("conformance"));
    ASSERT_TRUE(files.replace("conformance/there.json", "1"));
    const auto watch = platform::watchDirectory("conformance");
    ASSERT_NE(watch, nullptr);
    EXPECT_TRUE(watch->take().all) << "the first answer";
    // More names may come: a host without stamps tells every file.
    const auto expect = [&](const Names& changed) {
        const auto [all, names] = watch->take();
        EXPECT_FALSE(all) << "the directory is there, and little has happened";
        EXPECT_TRUE(std::adjacent_find(names.begin(), names.end(), std::greater_equal<>()) == names.end()) << "sorted";
        EXPECT_TRUE(std::includes(names.begin(), names.end(), changed.begin(), changed.end()))
            << testing::PrintToString(names) << " lacks some of " << testing::PrintToString(changed);
    };
    for (const char* name : {"b.json", "a.json", "b.json"})
        ASSERT_TRUE(files.replace(std::string("conformance/") + name, "new"));
    expect({"a.json", "b.json"});
    ASSERT_TRUE(files.replace("conformance/b.json", "longer"));
    ASSERT_TRUE(files.remove("conformance/there.json"));
    expect({"b.json", "there.json"});
}

TEST_P(Conformance, LogLinesReachTheirFile) {
    start();
    server->onserver([] { EXPECT_EQ(platform::Stores::unwritable(), "") << "nothing is in the way of a new world"; });
    platform::LogSink& log = *server->services().log;
    EXPECT_TRUE(log.openFile("conformance.log", false));
    log.write("Suite", platform::LogLevel::warn, "{braces}", 0, "conformance.log");
    const auto content = server->services().files->read("conformance.log").value_or("");
    EXPECT_TRUE(content.ends_with(" [Suite][Warn] {braces}\r\n")) << content;
    EXPECT_FALSE(log.openFile("nowhere/conformance.log", true));
    log.write("Suite", platform::LogLevel::warn, "lost, and nothing else happens", 0, "nowhere/conformance.log");
    EXPECT_EQ(server->services().libraries->load("no such library"), nullptr);
}

TEST_P(Conformance, RecordsStandAsTheyWerePutAndAreWrittenOnceAPass) {
    start();
    using Keys = std::vector<std::string>;
    platform::Records* records = nullptr;
    int asked = 0;
    Keys told;
    const auto puts = [&](const std::string& key, const std::string& bytes) {
        records->put("suite", key, [&asked, bytes] { return ++asked, bytes; });
    };
    // The rows of a range as text.
    const auto rows = [&](const platform::Records::Range& range, std::size_t most, bool backwards = false) {
        std::string all;
        for (const auto& [key, bytes] : records->rows("suite", range, most, backwards)) all += key + "=" + bytes + " ";
        return all;
    };
    const std::string binary("\0\xff'", 3);
    server->onserver([&] {
        records = server->services().records;
        ASSERT_NE(records, nullptr);
        for (const char* key : {"b", "a", "c", "ab"}) puts(key, "first");
        puts("b", binary);
        records->put("other", "a", [] { return "other"; });
        records->erase("suite", "c");
        EXPECT_FALSE(records->written("suite", "b"));
        EXPECT_TRUE(records->written("suite", "never"));
        EXPECT_EQ(records->keys("suite", "", 9), (Keys{"a", "ab", "b"}));
        EXPECT_EQ(records->get("suite", "c"), std::nullopt);
        asked = 0;
        platform::Stores::whenwritten([&] {
            told.emplace_back("first");
            EXPECT_TRUE(records->written("suite", "b"));
        });
        platform::Stores::whenwritten([] { throw std::runtime_error("and the next is told all the same"); });
        platform::Stores::whenwritten([&] { told.emplace_back("second"); });
    });
    server->ticks(1);
    EXPECT_EQ(told, (Keys{"first", "second"}));
    EXPECT_EQ(asked, 3) << "once for each key";
    server->onserver([&] {
        EXPECT_TRUE(records->written("suite", "b"));
        EXPECT_EQ(records->get("suite", "b"), binary);
        records->erase("suite", "ab");
        puts("d", "new");
        EXPECT_EQ(records->keys("suite", "", 2), (Keys{"a", "b"}));
        EXPECT_EQ(records->keys("suite", "aa", 9), (Keys{"b", "d"}));
        EXPECT_TRUE(records->keys("nothing", "", 9).empty());
        // Some of it is on the disk, some has changed or is new, one has gone.
        puts("a", "second");
        const std::string first = "a=second ", middle = "b=" + binary + " ", last = "d=new ";
        EXPECT_EQ(rows({}, 9), first + middle + last);
        EXPECT_EQ(rows({}, 9, true), last + middle + first);
        EXPECT_EQ(rows({}, 2), first + middle);
        EXPECT_EQ(rows({}, 1, true), last);
        EXPECT_EQ(rows({"aa", "d"}, 9), middle) << "up to a key, without it";
        EXPECT_EQ(rows({"a", "d"}, 1, true), middle);
        EXPECT_EQ(rows({"d", "a"}, 9), "");
        EXPECT_TRUE(records->rows("nothing", {}, 9).empty());
    });
    server->ticks(1);
    server->onserver([&] { EXPECT_EQ(records->keys("suite", "", 9), (Keys{"a", "b", "d"})); });
}

TEST_P(Conformance, TranslationsAreCompletedAndFallBack) {
    start();
    platform::Files& files = *server->services().files;
    const platform::LangData defaults = {{"en_US", {{"sell", "sell"}, {"coins", "coins"}}},
                                         {"zh_CN", {{"sell", "出售"}}}};
    const auto load = [&](const std::string& path) {
        platform::I18nBase* table = nullptr;
        server->onserver([&] { table = platform::Translation::loadI18nImpl(path, "en_US", defaults); });
        return table;
    };
    ASSERT_TRUE(files.replace("own.json", R"({"en_US": {"sell": "SELL"}, "de_DE": {"sell": "verkaufen"}})"));
    const auto* table = load("own.json");
    ASSERT_NE(table, nullptr);
    const struct {
        const char *key, *locale, *text;
    } lookups[] = {{"sell", "zh_CN", "出售"}, {"sell", "de_DE", "verkaufen"}, {"sell", "fr_FR", "SELL"},
                   {"sell", "", "SELL"},      {"coins", "zh_CN", "coins"},    {"coins", "", "coins"},
                   {"none", "zh_CN", "none"}};
    for (const auto& lookup : lookups) EXPECT_EQ(table->get(lookup.key, lookup.locale), lookup.text) << lookup.locale;
    EXPECT_NE(files.read("own.json").value_or("").find("出售"), std::string::npos) << "completed on disk";
    EXPECT_NE(load("made/new.json"), nullptr);
    EXPECT_TRUE(files.exists("made/new.json"));

    ASSERT_TRUE(files.replace("broken.json", "{\"en_US\": {"));
    EXPECT_EQ(load("broken.json"), nullptr);
    EXPECT_EQ(files.read("broken.json"), "{\"en_US\": {");
    EXPECT_EQ(table->get("sell", "de_DE"), "verkaufen") << "a table lives as long as the server";
    EXPECT_EQ(platform::I18n::get("no.such.text", "en_US"), "no.such.text");
}

}  // namespace conformance
