// Files below the server directory: what the way of replacing them needs, and that no path leads out of it. The
// promises themselves are in the conformance suite.
#include "host/core/files.h"

#include "tests/host/coretools.h"

namespace {

class CoreFiles : public testing::Test {
protected:
    coretests::Directory directory;
    host::DiskFiles files{directory.path / "root"};

    void SetUp() override { ASSERT_TRUE(files.makeDirectory("")); }
};

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

TEST_F(CoreFiles, ALinkStaysOneAndItsTargetIsReplaced) {
    namespace fs = std::filesystem;
    directory.put("elsewhere/data.json", "old");
    fs::create_directory(directory.path / "root/deep");
    fs::create_symlink("../../elsewhere/data.json", directory.path / "root/deep/near.json");
    fs::create_symlink(directory.path / "root/deep/near.json", directory.path / "root/far.json");
    fs::create_symlink(directory.path / "elsewhere/new.json", directory.path / "root/new.json");
    fs::create_symlink("loop.json", directory.path / "root/loop.json");
    fs::create_symlink(directory.path / "missing/new.json", directory.path / "root/nowhere.json");
    EXPECT_TRUE(files.replace("far.json", "new"));
    EXPECT_TRUE(files.replace("new.json", "made"));
    for (const char* none : {"loop.json", "nowhere.json"}) EXPECT_FALSE(files.replace(none, "new")) << none;
    for (const char* link : {"far.json", "deep/near.json", "new.json", "loop.json", "nowhere.json"})
        EXPECT_TRUE(fs::is_symlink(directory.path / "root" / link)) << link;
    EXPECT_EQ(directory.get("elsewhere/data.json"), "new");
    EXPECT_EQ(directory.get("elsewhere/new.json"), "made");
    EXPECT_EQ(directory.names("elsewhere").size(), 2U) << "nothing is left beside";
    // A target that cannot be written keeps its content, and nothing appears beside the link.
    fs::create_directories(directory.path / "elsewhere/.data.part/x");
    EXPECT_FALSE(files.replace("far.json", "newer"));
    EXPECT_EQ(files.read("far.json"), "new");
}

TEST_F(CoreFiles, WhatIsTooLargeToBeMeantIsNotRead) {
    directory.put("root/shop.json", "tail");
    std::filesystem::resize_file(directory.path / "root/shop.json", std::uintmax_t{1} << 40);
    EXPECT_EQ(files.read("shop.json"), std::nullopt);
    EXPECT_EQ(files.readtail("shop.json", 3), std::string(3, '\0'));
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

}  // namespace
