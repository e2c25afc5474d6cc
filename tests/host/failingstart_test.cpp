// The program when it cannot start: it says why in one line, and what is on the disk stays as it is.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/socket.h>

#include "host/network/network.h"
#include "host/world/world.h"
#include "tests/host/serverprocess.h"
#include "tests/host/servertest.h"

namespace {

using testing::HasSubstr;

TEST(FailingStart, SaysWhyInOneLineAndOverwritesNothing) {
    const int port = [] {
        static const int taken = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int yes = 1;
        ::setsockopt(taken, SOL_SOCKET, SO_REUSEPORT, &yes, sizeof yes);
        sockaddr_in address{};
        socklen_t length = sizeof address;
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::bind(taken, reinterpret_cast<sockaddr*>(&address), length), 0);
        EXPECT_EQ(::listen(taken, 1), 0);
        ::getsockname(taken, reinterpret_cast<sockaddr*>(&address), &length);
        return ntohs(address.sin_port);
    }();
    const std::string config = "plugins/Ordomart/config.json";
    const struct {
        const char* what;
        std::string file, content, arguments, told;
    } cases[] = {
        {"settings cut short", config, "{\"tax\": 3,\n", "0",
         config + ": [json.exception.parse_error.101] parse error at line 2"},
        {"empty settings", config, "", "0", config},
        {"a key of the wrong type", config, R"({"moneymode": 1, "tax": "much"})", "0", config + ": key \"tax\""},
        {"a list of the wrong type", config, R"({"banshopitem": "minecraft:clock"})", "0",
         config + ": key \"banshopitem\""},
        {"settings that are no object", config, "[]", "0", config + ": the settings must be an object"},
        {"a world that is none", "server.sqlite", std::string(9000, 'x'), "0", "server.sqlite: "},
        {"money that is none", "money.sqlite", std::string(9000, 'x'), "0 --new-world", "money.sqlite: "},
        {"money without a world", "money.sqlite", "m", "0", "server.sqlite: the world is missing, but money.sqlite"},
        {"a log without a world", "server.log", "l", "0", "server.sqlite: the world is missing, but server.log"},
        {"a part without a world", "server.sqlite-wal", "w", "0", "the world is missing, but server.sqlite-wal"},
        {"a port that is taken", "note", "", std::to_string(port), "127.0.0.1:" + std::to_string(port)},
        {"an address that is none", "note", "", "0 --host 203.0.113.7", "203.0.113.7:0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        coretests::Directory directory;
        directory.put(c.file, c.content);
        const std::string shop = "plugins/Ordomart/data/2535400000000002.json";
        directory.put(shop, "{ the operator is at work here");
        std::vector<std::string> arguments = {directory.path.string(), "--quiet", "--api-port"};
        std::istringstream words(c.arguments);
        for (std::string word; words >> word;) arguments.push_back(word);
        coretests::ServerProcess process(arguments);
        EXPECT_EQ(process.wait(), 1);
        const std::string errors = process.errors();
        EXPECT_THAT(errors, testing::StartsWith("ordomart-server: "));
        EXPECT_THAT(errors, HasSubstr(c.told));
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
        EXPECT_EQ(directory.get(c.file), c.content);
        EXPECT_EQ(directory.get(shop), "{ the operator is at work here");
    }
}

// A world that has gone is not made anew by itself, in either kind of money; it is there again when it is brought back.
TEST(FailingStart, AWorldThatHasBeenThereIsMissed) {
    coretests::Directory directory;
    auto options = coretests::manually(directory);
    const auto world = directory.path / "server.sqlite";
    const auto starts = [&] {
        try {
            host::Server server(options);
            server.start();
            std::size_t known = 0;
            server.run([&] {
                known = server.world().players().size();
                server.network().join({.name = "Alice", .xuid = "2535400000000001"}, [](const std::string&) {});
            });
            server.stop();
            return "with " + std::to_string(known) + " players";
        } catch (const host::StartError& e) {
            return std::string(e.what()).substr(0, world.string().size() + 18);
        }
    };
    EXPECT_EQ(starts(), "with 0 players");
    const std::string whole = directory.get("server.sqlite");
    for (const char* money : {LLMONEY_PATH, "none"}) {
        options.moneylibrary = money;
        std::filesystem::remove(world);
        EXPECT_EQ(starts(), world.string() + ": the world is mis");
        directory.put("server.sqlite", "");
        EXPECT_EQ(starts(), world.string() + ": the world is emp");
        std::filesystem::remove(world);
        SQLite::Database(world.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec("VACUUM");
        EXPECT_EQ(starts(), world.string() + ": the world is emp") << "a database with nothing in it";
        directory.put("server.sqlite", whole);
        EXPECT_EQ(starts(), "with 1 players");
    }
    std::filesystem::remove(world);
    directory.put("server.sqlite-wal", "the last of the old world");
    options.newworld = true;
    EXPECT_EQ(starts(), "with 0 players");
    EXPECT_EQ(directory.get("server.sqlite-wal.old1"), "the last of the old world");
    EXPECT_EQ(starts(), "with 1 players") << "a world that is there is never made anew";
    directory.put("server.log", "");
    std::filesystem::remove(directory.path / "money.sqlite");
    options.newworld = false;
    std::filesystem::resize_file(world, 0);
    EXPECT_EQ(starts(), "with 0 players") << "nothing shows that there has been one, but for shops";
}

TEST(FailingStart, ADirectoryThatCannotBeUsedIsNamed) {
    coretests::Directory directory;
    directory.put("file", "precious");
    directory.put("busy/note", "");
    const int lock = ::open((directory.path / "busy").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    const struct {
        std::string path, told;
    } cases[] = {{"file", "the directory cannot be made: Not a directory"},
                 {"file/below", "the directory cannot be made: Not a directory"},
                 {"busy", "another server runs in this directory"}};
    for (const auto& c : cases)
        for (const char* market : {"--empty", "--quiet"}) {
            const std::string path = (directory.path / c.path).string();
            coretests::ServerProcess process({path, "--quiet", market, "--api-port", "0"});
            EXPECT_EQ(process.wait(), 1);
            EXPECT_EQ(process.errors(), "ordomart-server: " + path + ": " + c.told + "\n");
        }
    EXPECT_EQ(directory.get("file"), "precious");
    ::close(lock);
}

}  // namespace
