// Files below the server directory: replaced as a whole or not at all, and never outside of it.
#include "host/core/files.h"

#include <gmock/gmock.h>

#include <thread>

#include "tests/host/coretools.h"

namespace {

using testing::ElementsAre;

class CoreFiles : public testing::Test {
protected:
    coretests::Directory directory;
    host::DiskFiles files{directory.path / "root"};

    void SetUp() override { ASSERT_TRUE(files.makeDirectory("")); }
};

TEST_F(CoreFiles, ReplaceWritesTheWholeFileAndLeavesNothingBeside) {
    ASSERT_TRUE(files.makeDirectory("plugins/Ordomart/data/"));
    ASSERT_TRUE(files.replace("plugins/Ordomart/data/12.json", "a long first content"));
    ASSERT_TRUE(files.replace("plugins/Ordomart/data/12.json", "second"));
    EXPECT_EQ(files.read("plugins/Ordomart/data/12.json"), "second");
    EXPECT_THAT(directory.names("root/plugins/Ordomart/data"), ElementsAre("12.json"));
}

TEST_F(CoreFiles, AReplaceThatFailsKeepsTheOldContent) {
    directory.put("root/shop.json", "old");
    // The name beside it is taken by a directory, so that nothing can be written there.
    std::filesystem::create_directories(directory.path / "root/.shop.part/x");
    EXPECT_FALSE(files.replace("shop.json", "new"));
    EXPECT_EQ(files.read("shop.json"), "old");

    // Everything is written, and then the rename fails: the name beside must go again.
    std::filesystem::create_directories(directory.path / "root/full.json/x");
    EXPECT_FALSE(files.replace("full.json", "new"));
    EXPECT_FALSE(files.exists(".full.part"));
    EXPECT_FALSE(files.replace("missing/shop.json", "new"));
}

TEST_F(CoreFiles, TheNameBesideNeverLooksLikeData) {
    // A directory in its place makes the replace fail if and only if this is the name that is used.
    std::filesystem::create_directories(directory.path / "root/..part/x");
    EXPECT_FALSE(files.replace(".js.jsonon", "new")) << "taking out one \".json\" leaves another";
}

TEST_F(CoreFiles, PathsThatLeaveTheRootAreRefused) {
    directory.put("outside.json", "secret");
    const std::string absolute = (directory.path / "outside.json").string();
    for (const std::string& path : {std::string("../outside.json"), std::string("a/../../outside.json"), absolute,
                                    std::string(".."), std::string("a.json\0b", 8)}) {
        EXPECT_FALSE(files.exists(path)) << path;
        EXPECT_FALSE(files.read(path)) << path;
        EXPECT_FALSE(files.readtail(path, 3)) << path;
        EXPECT_FALSE(files.replace(path, "mine")) << path;
        EXPECT_FALSE(files.makeDirectory(path)) << path;
        EXPECT_TRUE(files.list(path).empty()) << path;
    }
    EXPECT_EQ(directory.get("outside.json"), "secret");
    EXPECT_TRUE(files.replace("..two dots.json", "a name that only begins so"));
}

TEST_F(CoreFiles, ReadingTellsMissingFromEmpty) {
    directory.put("root/empty", "");
    directory.put("root/ten", "0123456789");
    EXPECT_EQ(files.read("empty"), "");
    EXPECT_EQ(files.read("missing"), std::nullopt);
    EXPECT_EQ(files.read(""), std::nullopt) << "a directory is no file";
    EXPECT_EQ(files.readtail("ten", 4), "6789");
    EXPECT_EQ(files.readtail("ten", 10), "0123456789");
    EXPECT_EQ(files.readtail("ten", 99), "0123456789");
    EXPECT_EQ(files.readtail("missing", 4), std::nullopt);
}

TEST_F(CoreFiles, ListGivesPlainFilesSorted) {
    directory.put("root/data/b.json", "");
    directory.put("root/data/a.json", "");
    directory.put("root/data/deeper/c.json", "");
    EXPECT_THAT(files.list("data/"), ElementsAre("a.json", "b.json"));
    EXPECT_TRUE(files.list("nowhere").empty());
}

TEST_F(CoreFiles, WritersOfOneFileNeverMix) {
    const std::string contents[] = {std::string(200'000, 'a'), std::string(100'000, 'b')};
    std::vector<std::thread> writers;
    for (const auto& content : contents) {
        writers.emplace_back([&] {
            for (int i = 0; i < 10; ++i) EXPECT_TRUE(files.replace("one.json", content));
        });
    }
    for (auto& writer : writers) writer.join();
    EXPECT_THAT(files.read("one.json"), testing::AnyOf(contents[0], contents[1]));
}

}  // namespace
