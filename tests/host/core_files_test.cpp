// Files below the server directory: what the way of replacing them needs, that no path leads out of it, and that no
// change to a watched directory is missed. The promises themselves are in the conformance suite.
#include "host/core/files.h"

#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "platform/directorywatch.h"
#include "platform/host.h"

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

// Hosts with less to give than this one.
enum class Gives { watch, stamps, neither };
struct PoorFiles : host::DiskFiles {
    PoorFiles(const std::filesystem::path& root, Gives what) : DiskFiles(root), gives(what) {}
    const Gives gives;
    std::optional<platform::FileStamp> stamp(const std::string& path) const override {
        return gives == Gives::neither ? std::nullopt : DiskFiles::stamp(path);
    }
    std::unique_ptr<platform::DirectoryWatch> watch(const std::string& path) override {
        return gives == Gives::watch ? DiskFiles::watch(path) : nullptr;
    }
};

class CoreWatch : public CoreFiles {
protected:
    using Names = std::vector<std::string>;
    platform::Host services{.files = &files};
    std::unique_ptr<platform::DirectoryWatch> watch;
    const std::filesystem::path root = directory.path / "root", shops = root / "shops";

    void SetUp() override {
        CoreFiles::SetUp();
        platform::installhost(&services);
    }
    void TearDown() override { platform::installhost(nullptr); }
    Names changed() {
        const auto changes = watch->take();
        return changes.all ? Names{"all"} : changes.names;
    }
};

TEST_F(CoreWatch, EveryChangeIsToldOnceByEveryHost) {
    namespace fs = std::filesystem;
    const auto put = [&](const char* name, const char* content) {
        std::ofstream(shops / name, std::ios::app) << content;
    };
    // What has changed, and the files that there are then, which is what a host without stamps tells.
    const struct {
        const char* what;
        std::function<void()> step;
        Names changed, there;
    } steps[] = {
        {"nothing", [&] {}, {}, {"a", "b", "link"}},
        {"new", [&] { put("c", ""); }, {"c"}, {"a", "b", "c", "link"}},
        {"in place", [&] { put("b", "+"), put("a", "+"), put("b", "+"); }, {"a", "b"}, {"a", "b", "c", "link"}},
        {"mode", [&] { ::chmod((shops / "a").c_str(), 0600); }, {"a"}, {"a", "b", "c", "link"}},
        {"renamed over", [&] { fs::rename(shops / "c", shops / "a"); }, {"a", "c"}, {"a", "b", "link"}},
        {"a target in place", [&] { put("../target", "+"); }, {"link"}, {"a", "b", "link"}},
        {"a target replaced",
         [&] { put("../new", "1234"), fs::rename(shops / "../new", shops / "../target"); },
         {"link"},
         {"a", "b", "link"}},
        {"a link to another",
         [&] { fs::remove(shops / "link"), fs::create_symlink("../other", shops / "link"); },
         {"link"},
         {"a", "b", "link"}},
        {"its target", [&] { put("../other", "+"); }, {"link"}, {"a", "b", "link"}},
        {"a former target", [&] { put("../target", "+"); }, {}, {"a", "b", "link"}},
        {"a target gone", [&] { fs::remove(shops / "../other"); }, {"link"}, {"a", "b"}},
        {"a target there again", [&] { put("../other", ""); }, {"link"}, {"a", "b", "link"}},
        {"a file for a link", [&] { fs::remove(shops / "link"), put("link", "plain"); }, {"link"}, {"a", "b", "link"}},
        {"gone", [&] { fs::remove(shops / "b"), fs::remove(shops / "link"); }, {"b", "link"}, {"a"}},
        {"a directory", [&] { fs::create_directory(shops / "deep"), put("deep/x", ""); }, {}, {"a"}},
    };
    for (const auto gives : {Gives::watch, Gives::stamps, Gives::neither}) {
        const testing::Message host = testing::Message() << "gives " << static_cast<int>(gives);
        fs::remove_all(root);
        for (const char* name : {"shops/a", "shops/b", "target", "other"})
            directory.put(std::string("root/") + name, "1");
        fs::create_symlink("../target", shops / "link");
        PoorFiles poor(root, gives);
        services.files = &poor;
        watch = platform::watchDirectory("shops/");
        EXPECT_EQ(changed(), Names{"all"}) << host;
        Names before{"a", "b", "link"};
        for (const auto& [what, step, names, there] : steps) {
            ::usleep(12'000);
            (void)changed();  // a link whose target was fresh may be told once more
            step();
            Names expected = names;
            if (gives == Gives::neither) {
                expected.clear();
                std::set_union(before.begin(), before.end(), there.begin(), there.end(), std::back_inserter(expected));
                before = there;
            }
            EXPECT_EQ(changed(), expected) << what << ", " << host;
        }
    }
}

TEST_F(CoreWatch, WhatWasMissedIsAllAndWatchedAgain) {
    namespace fs = std::filesystem;
    const struct {
        const char* what;
        std::function<void()> step;
    } steps[] = {
        {"made", [&] { fs::create_directory(shops); }},
        {"removed and made anew", [&] { fs::remove_all(shops), fs::create_directory(shops); }},
        {"moved away and back", [&] { fs::rename(shops, root / "away"), fs::rename(root / "away", shops); }},
        {"a link in its place", [&] { fs::rename(shops, root / "real"), fs::create_directory_symlink("real", shops); }},
        {"a link elsewhere",
         [&] {
             fs::create_directory(directory.path / "else"), fs::remove(shops),
                 fs::create_directory_symlink("../else", shops);
         }},
        {"the directory above replaced",
         [&] { fs::rename(root, directory.path / "old"), fs::create_directories(shops); }},
    };
    watch = files.watch("shops");
    ASSERT_NE(watch, nullptr) << "a directory that is missing will be there one day";
    for (int i = 0; i < 2; ++i) EXPECT_EQ(changed(), Names{"all"});
    for (const auto& [what, step] : steps) {
        step();
        EXPECT_EQ(changed(), Names{"all"}) << what;
        EXPECT_EQ(changed(), Names{}) << what;
        EXPECT_TRUE(files.replace("shops/a.json", what));
        EXPECT_EQ(changed(), Names{"a.json"}) << what << ", without what was written beside";
    }
}

TEST_F(CoreWatch, MoreThanTheSystemKeepsIsAll) {
    int most = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> most;
    if (most <= 0 || most > 1'000'000) GTEST_SKIP() << "the system keeps " << most << " events";
    for (const char* name : {"a", "b"}) directory.put(std::string("root/shops/") + name, "");
    watch = files.watch("shops");
    EXPECT_EQ(changed(), Names{"all"});
    const auto touch = [&](int times) {
        for (int i = 0; i < times; ++i) ::chmod((shops / (i % 2 == 0 ? "a" : "b")).c_str(), 0644);
    };
    touch(most - 1);
    EXPECT_EQ(changed(), (Names{"a", "b"}));
    touch(most + 1);
    std::filesystem::create_symlink("../target", shops / "link");  // of which nothing is heard
    EXPECT_EQ(changed(), Names{"all"});
    EXPECT_EQ(changed(), Names{});
    for (int i = 0; i < 100; ++i) {  // of one length, and faster than the times of files go on
        directory.put("root/target", std::to_string(i % 10));
        EXPECT_EQ(changed(), Names{"link"});
    }
}

TEST_F(CoreWatch, WithoutAWatchToBeHadStampsServe) {
    directory.put("root/shops/a", "1");
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {0, limit.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_EQ(files.watch("shops"), nullptr);
    watch = platform::watchDirectory("shops");
    ::setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(files.watch("../root"), nullptr) << "leads out of the root";
    EXPECT_EQ(changed(), Names{"all"});
    EXPECT_EQ(changed(), Names{});
    directory.put("root/shops/a", "12");
    EXPECT_EQ(changed(), Names{"a"});
}

}  // namespace
