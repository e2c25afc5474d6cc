// Backups of a directory that is being written, and what a restore makes of archives, good and bad.
#include "host/backup/backup.h"

#include <archive.h>
#include <archive_entry.h>
#include <gmock/gmock.h>
#include <sys/file.h>

#include "host/backup/restore.h"
#include "host/core/files.h"
#include "host/core/logfiles.h"
#include "host/world/database.h"
#include "tests/host/coretools.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using Content = std::map<std::string, std::string>;

class BackupTest : public testing::Test {
protected:
    BackupTest() { fs::create_directories(root); }

    static Content contentof(const fs::path& below) {
        Content found;
        for (const auto& entry : fs::recursive_directory_iterator(below)) {
            const auto name = entry.path().lexically_relative(below).string();
            if (entry.path().filename().string().starts_with("server.sqlite")) continue;
            std::ostringstream text;
            if (entry.is_regular_file()) text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
            host::Sha256 sum;
            sum.add(text.str());
            found[name] = text.str().size() < 50 ? text.str() : sum.hex();
        }
        return found;
    }
    [[nodiscard]] std::string archive(const std::string& name) const { return (directory.path / name).string(); }
    // What the work is refused with, "" when it is not.
    template <class Work>
    static std::string refusal(Work&& work) {
        try {
            work();
            return {};
        } catch (const host::BackupError& e) {
            return e.what();
        }
    }
    // The world holds one number.
    static void write(host::Database& world, int number) {
        world.transaction([&] { world.run("INSERT OR REPLACE INTO knownnames VALUES ('number', ?)", number); });
    }
    static int number(const fs::path& below) {
        return SQLite::Database((below / "server.sqlite").string()).execAndGet("SELECT name FROM knownnames").getInt();
    }

    coretests::Directory directory;
    const fs::path root = directory.path / "root", back = directory.path / "back";
    host::FrozenFiles frozen;
    host::DiskFiles files{root, &frozen};
    host::LogFiles logs{root, &frozen};
    std::function<void()> meanwhile = [] {};
};

// Everything changes again whenever the backup goes on, by the server's own ways.
TEST_F(BackupTest, HoldsTheInstantWhateverChangesMeanwhile) {
    for (const char* name : {"replaced.json", "removed.json", "log/a.json", "log/b.json", "twice.json", "kept.json"})
        directory.put("root/" + std::string(name), std::string(5000, name[0]));
    directory.put("root/shop.log", "before\r\n");
    directory.put("root/.kept.part", "half");
    directory.put("root/api.token", "secret");
    directory.put("root/gateway.token", "secret");
    directory.put("root/earlier.tar.gz", "an archive");
    directory.put("elsewhere/far.json", "far");
    fs::create_directory_symlink("../elsewhere", root / "linked");
    fs::create_directory_symlink("..", root / "log/circle");
    fs::create_directory(root / "empty");
    fs::permissions(root / "kept.json", fs::perms::owner_read);
    Content expected = contentof(root);
    for (const char* gone : {".kept.part", "api.token", "gateway.token", "earlier.tar.gz"}) expected.erase(gone);
    expected["linked/far.json"] = "far";

    host::Database world((root / "server.sqlite").string(), false);
    write(world, 7);
    int step = 0;
    {
        host::Backup backup(root, frozen, archive("b.tar"), [&] { meanwhile(); });
        backup.begin();
        meanwhile = [&] {
            ++step;
            write(world, 1000 + step);
            for (const char* name : {"replaced.json", "log/b.json", "linked/far.json", "twice.json", "./twice.json"})
                EXPECT_TRUE(files.replace(name, "after " + std::to_string(step)));
            EXPECT_TRUE(files.replace("new" + std::to_string(step) + ".json", "new"));
            EXPECT_TRUE(files.remove("removed.json") && files.remove("log/a.json"));
            EXPECT_TRUE(files.replace("log/a.json", "new under an old name"));
            logs.write("shop.log", "after\r\n");
            logs.write("new.log", "after\r\n");
        };
        meanwhile();
        const auto written = backup.write();
        meanwhile = [] {};
        EXPECT_EQ(host::restore(written.file, back), written.files);
    }
    EXPECT_GT(step, 10);
    EXPECT_EQ(contentof(back), expected);
    EXPECT_EQ(number(back), 7);
    EXPECT_EQ(fs::status(back / "kept.json").permissions(), fs::perms::owner_read);
    EXPECT_EQ(directory.get("root/shop.log").size(), 8 + 7 * static_cast<std::size_t>(step));
}

TEST_F(BackupTest, IsWhatItsNameSays) {
    host::Database((root / "server.sqlite").string(), false);
    directory.put("root/a\nb\\c.json", std::string(100'000, 'a'));
    const struct {
        const char *name, *magic;
        std::size_t at;
    } kinds[] = {
        {"b.tar", "ustar", 257}, {"b.tar.gz", "\x1f\x8b", 0}, {"b.tgz", "\x1f\x8b", 0}, {"b.tar.zst", "\x28\xb5", 0}};
    for (const auto& kind : kinds) {
        const auto report = host::backupstopped(root, archive(kind.name));
        const std::string file = directory.get(kind.name);
        EXPECT_EQ(file.compare(kind.at, std::strlen(kind.magic), kind.magic), 0) << kind.name;
        EXPECT_EQ(report.value().bytes, file.size());
        EXPECT_EQ(fs::status(archive(kind.name)).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        host::restore(archive(kind.name), back);
        EXPECT_EQ(contentof(back), contentof(root)) << kind.name;
        fs::remove_all(back);
    }
}

TEST_F(BackupTest, RefusesWhatItCannotDoAndLeavesNothing) {
    const auto world = std::make_unique<host::Database>((root / "server.sqlite").string(), false);
    directory.put("there.tar", "precious");
    directory.put("damaged/server.sqlite", std::string(9000, 'x'));
    directory.put("nothing/note", "");
    fs::create_symlink("missing.tar", directory.path / "link.tar");
    const struct {
        const char *what, *below, *target, *told;
    } cases[] = {
        {"a target that exists", "root", "there.tar", "there.tar: there is such a file"},
        {"a link to nothing", "root", "link.tar", "link.tar: there is such a file"},
        {"another kind", "root", "b.zip", "b.zip: the name of a backup ends in .tar"},
        {"no directory for it", "root", "no/b.tar", "no/b.tar: it cannot be written: No such file"},
        {"a directory without a world", "nothing", "b.tar", "nothing: there is no world"},
        {"no directory", "missing", "b.tar", "missing: No such file"},
        {"a world that is none", "damaged", "b.tar", "damaged/server.sqlite: file is not a database"},
    };
    const auto before = contentof(directory.path);
    for (const auto& c : cases) {
        const auto told =
            refusal([&] { (void)host::backupstopped(directory.path / c.below, directory.path / c.target); });
        EXPECT_THAT(told, HasSubstr(c.told)) << c.what;
        EXPECT_EQ(contentof(directory.path), before) << c.what;
    }
    {
        const coretests::FullDisk full;
        const auto told = refusal([&] { (void)host::backupstopped(root, archive("b.tar")); });
        EXPECT_THAT(told, AllOf(HasSubstr(archive("")), HasSubstr("b.tar")));
    }
    {
        directory.put(".b.tar.backup.part", "");
        const host::Descriptor other(archive(".b.tar.backup.part").c_str(), O_RDONLY);
        ASSERT_EQ(::flock(other.number(), LOCK_EX), 0);
        EXPECT_THAT(refusal([&] { (void)host::backupstopped(root, archive("b.tar")); }),
                    HasSubstr("b.tar: it cannot be written: another backup is writing it"));
        fs::remove(archive(".b.tar.backup.part"));
    }
    // A log that is begun anew is lost, and the server with it is not.
    directory.put("root/a.log", "old");
    {
        host::Backup backup(root, frozen, archive("b.tar"), [] {});
        backup.begin();
        EXPECT_TRUE(logs.open("a.log", false));
        EXPECT_THAT(refusal([&] { backup.write(); }), HasSubstr("a.log: it was begun anew"));
    }
    fs::remove(root / "a.log");
    EXPECT_EQ(contentof(directory.path), before);
    directory.put("root/deep/.b.tar.backup.part", "half");
    directory.put("root/deep/.shop.part", "another's");
    host::removeleftovers(root);
    EXPECT_EQ(directory.names("root/deep"), std::vector<std::string>{".shop.part"});
}

// Archives as an attacker or a bad disk makes them.
class RestoreTest : public BackupTest {
protected:
    struct Entry {
        std::string name, content;
        mode_t type = AE_IFREG;
        std::string link;
    };
    // With sums that fit, so that nothing but the entries is wrong.
    void make(const std::string& name, std::vector<Entry> entries) const {
        std::string sums;
        for (const auto& each : entries) {
            host::Sha256 sum;
            sum.add(each.content);
            if (each.type == AE_IFREG) sums += host::sumline(sum.hex(), each.name);
        }
        entries.push_back({std::string(host::sumsname), sums});
        auto* const out = archive_write_new();
        archive_write_set_format_pax_restricted(out);
        archive_write_open_filename(out, archive(name).c_str());
        for (const auto& each : entries) {
            auto* const entry = archive_entry_new();
            archive_entry_set_pathname(entry, each.name.c_str());
            archive_entry_set_filetype(entry, each.type);
            archive_entry_set_perm(entry, 06777);
            archive_entry_set_size(entry, static_cast<la_int64_t>(each.content.size()));
            if (each.type == AE_IFLNK)
                archive_entry_set_symlink(entry, each.link.c_str());
            else if (!each.link.empty())
                archive_entry_set_hardlink(entry, each.link.c_str());
            archive_write_header(out, entry);
            archive_write_data(out, each.content.data(), each.content.size());
            archive_entry_free(entry);
        }
        archive_write_free(out);
    }
};

TEST_F(RestoreTest, RefusesBadArchivesAndLeavesNothing) {
    {
        host::Database world((root / "server.sqlite").string(), false);
        write(world, 7);
    }
    directory.put("root/plugins/shop.json", std::string(300'000, 's'));
    ASSERT_TRUE(host::backupstopped(root, archive("good.tar")));
    ASSERT_TRUE(host::backupstopped(root, archive("good.tar.gz")));
    const std::string good = directory.get("good.tar"), packed = directory.get("good.tar.gz");
    const std::string database = directory.get("root/server.sqlite");
    std::string flipped = good, sound = database;
    flipped[flipped.find("sssss") + 1000] = 't';
    for (std::size_t at = 4096; at < sound.size(); ++at) sound[at] = 'x';
    directory.put("flipped.tar", flipped);
    directory.put("cut.tar", good.substr(0, good.find("SHA256SUMS") - 512));
    directory.put("cut.tar.gz", packed.substr(0, packed.size() - 200));
    directory.put("text.tar", "no archive");
    directory.put("nosums.tar", std::string(10240, '\0'));
    directory.put("empty.tar", "");
    make("world.tar", {{"plugins/shop.json", "{}"}});
    make("damaged.tar", {{"server.sqlite", sound}});
    const std::string outside = archive("outside");
    const Entry world = {"server.sqlite", database};
    make("up.tar", {world, {"plugins/../../outside", "mine"}});
    make("absolute.tar", {world, {outside, "mine"}});
    make("symlink.tar", {world, {"plugins", "", AE_IFLNK, ".."}, {"plugins/outside", "mine"}});
    make("hardlink.tar", {world, {"shop.json", "", AE_IFREG, "server.sqlite"}});
    make("device.tar", {world, {"pipe", "", AE_IFIFO}});
    make("twice.tar", {world, {"a.json", "1"}, {"a.json", "2"}});
    make("below.tar", {world, {"a.json", "1"}, {"a.json/b", "2"}});
    const struct {
        const char *name, *told;
    } cases[] = {
        {"flipped.tar", "it is damaged: what was read does not fit its SHA256SUMS"},
        {"cut.tar", "cut.tar: it"},
        {"cut.tar.gz", "cut.tar.gz: it is damaged"},
        {"text.tar", "text.tar: it"},
        {"empty.tar", "empty.tar: it is damaged, or no archive"},
        {"nosums.tar", "nosums.tar: it ends too early, or is no backup"},
        {"missing.tar", "missing.tar: there is no such file"},
        {"world.tar", "world.tar: there is no world in it"},
        {"damaged.tar", "damaged.tar: its server.sqlite is damaged: "},
        {"up.tar", "the entry \"plugins/../../outside\" leads out of the directory"},
        {"absolute.tar", "leads out of the directory"},
        {"symlink.tar", "the entry \"plugins\" is neither a plain file nor a directory"},
        {"hardlink.tar", "the entry \"shop.json\" is neither"},
        {"device.tar", "the entry \"pipe\" is neither"},
        {"twice.tar", "a.json: it cannot be written: File exists"},
        {"below.tar", "a.json"},
    };
    for (const bool there : {true, false})
        for (const auto& c : cases) {
            SCOPED_TRACE(c.name);
            if (there) fs::create_directory(back);
            EXPECT_THAT(refusal([&] { host::restore(archive(c.name), back); }), HasSubstr(c.told));
            EXPECT_EQ(fs::exists(back), there);
            EXPECT_TRUE(!there || fs::is_empty(back));
            EXPECT_FALSE(fs::exists(outside));
            fs::remove_all(back);
        }
    {
        const coretests::FullDisk full;
        EXPECT_THAT(refusal([&] { host::restore(archive("good.tar"), back); }), HasSubstr("back/.restore.part"));
        EXPECT_FALSE(fs::exists(back));
    }
    // A restore that was killed in the middle can be done again, a directory with something in it stays as it is.
    directory.put("back/.restore.part/server.sqlite", "half");
    EXPECT_TRUE(host::halfrestored(back));
    EXPECT_EQ(host::restore(archive("good.tar"), back), 2U);
    EXPECT_EQ(number(back), 7);
    EXPECT_EQ(contentof(back), contentof(root));
    EXPECT_THAT(refusal([&] { host::restore(archive("good.tar"), back); }),
                HasSubstr("back: the directory is not empty"));
    fs::create_directory(directory.path / "busy");
    const host::Descriptor busy((directory.path / "busy").c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(busy.number(), LOCK_EX), 0);
    EXPECT_THAT(refusal([&] { host::restore(archive("good.tar"), directory.path / "busy"); }),
                HasSubstr("a server runs"));
    make("rights.tar", {world, {"a.json", "1"}});
    fs::remove_all(back);
    host::restore(archive("rights.tar"), back);
    EXPECT_EQ(fs::status(back / "a.json").permissions(), fs::perms(0777)) << "no rights beyond reading and writing";
}

}  // namespace
