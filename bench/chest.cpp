// What the chest menus cost. The request hook, that is a click of a player who has no menu, against the same call
// without the market, with no menu open and with many of other players; the way from a click to the last packet of a
// page, against a click that draws nothing; and the bytes of that page. Prints a table; the ratios are what counts.
//   bench_chest [open menus] [goods]      (default: 200 menus, 1000 goods)
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>

#include "host/network/network.h"
#include "host/server.h"
#include "host/world/levelimpl.h"
#include "host/world/world.h"
#include "platform/hook.h"
#include "platform/network.h"
#include "platform/packets/codec.h"
#include "platform/packets/messages.h"

namespace {

using namespace platform;
using nlohmann::json;
namespace fs = std::filesystem;
using clock_type = std::chrono::steady_clock;

double microseconds(clock_type::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

double middle(std::vector<double> times) {
    std::ranges::nth_element(times, times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2));
    return times[times.size() / 2];
}

// ---- a server with one shop in it, whose own handling of requests is nothing

std::uint64_t passedon = 0;
void donothing(ServerNetworkHandler*, const NetworkIdentifier&, const ItemStackRequestPacket&) { ++passedon; }

void writeshop(const fs::path& directory, int goods) {
    json all = json::array();
    for (int i = 0; i < goods; ++i) {
        all.push_back({{"shopitemname", fmt::format("good no. {}", i)},
                       {"shopitemdescribe", "a fine piece of work"},
                       {"shopitemtag", "apple"},
                       {"price", i},
                       {"shopitemleftnum", 64},
                       {"itemnbt", R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})"},
                       {"allowbesearched", true}});
    }
    fs::create_directories(directory);
    std::ofstream(directory / "2535400000000001.json") << json{{"sell",
                                                                {{"describe", ""},
                                                                 {"isopshop", false},
                                                                 {"items", std::move(all)},
                                                                 {"ownerlang", "en_US"},
                                                                 {"ownername", "Owner"},
                                                                 {"salesvolume", 0},
                                                                 {"sellcount", 0},
                                                                 {"shopitemicon", ""},
                                                                 {"shopname", "Shop"}}},
                                                               {"recycles", json::object()}};
}

struct Bench {
    fs::path directory = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    std::unique_ptr<host::Server> server;

    Bench(int goods, bool market, bool passeson) {
        fs::remove_all(directory);
        writeshop(directory / "plugins/Ordomart/data", goods);
        host::ServerOptions options;
        options.directory = directory.string();
        options.module = MODULE_PATH;
        options.moneylibrary = "none";
        options.manual = true;
        options.quiet = true;
        if (!passeson) {
            // Beneath the market, or over it.
            const auto replace = [](Host& services) {
                void* before = nullptr;
                services.hooks->replace(services.hooks->find(symbols::handleItemStackRequest), &before,
                                        reinterpret_cast<void*>(&donothing));
            };
            if (market) options.adjust = replace;
            server = std::make_unique<host::Server>(options);
            server->start();
            if (!market) replace(server->services());
        } else {
            server = std::make_unique<host::Server>(options);
            server->start();
        }
    }
    ~Bench() {
        server->stop();
        server.reset();
        fs::remove_all(directory);
    }

    host::ConnectionId join(int number, host::Sink sink) {
        host::ConnectionId connection = 0;
        server->run([&] {
            connection = server->network().join(
                {fmt::format("Player{}", number), fmt::format("25354{:011}", 100 + number)}, std::move(sink));
        });
        server->settle();
        return connection;
    }
    template <class P>
    void sends(host::ConnectionId from, const P& packet) {
        server->network().receive(from, sealpacket(topacket(packet)));
        server->settle();
    }
    void opens(host::ConnectionId who) {
        sends(who, CommandRequestPacket{"/ordomart buy"});
        server->ticks(6);
    }
};

ItemStackRequestPacket click(ContainerName from, int slot) {
    ItemStackRequestAction action;
    action.type = static_cast<std::uint8_t>(ActionType::take);
    action.amount = 1;
    action.source = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(slot)};
    action.destination = {static_cast<std::uint8_t>(ContainerName::cursor), 0};
    return {0, {{-1, {action}}}};
}

// ---- the hook

struct Handler : ServerNetworkHandler {
    ServerPlayer* player = nullptr;
    ServerPlayer* _getServerPlayer(const NetworkIdentifier&, std::uint8_t) override { return player; }
};

// Nanoseconds of one request of a player who has no menu, with so many of others open.
double hookcost(bool market, int menus) {
    Bench bench(1, market, false);
    // He has had a menu, so that his container id is everybody's.
    const auto asker = bench.join(0, [](const std::string&) {});
    bench.opens(asker);
    bench.sends(asker, ContainerClosePacket{1, false});
    for (int i = 1; i <= menus; ++i) bench.opens(bench.join(i, [](const std::string&) {}));
    Handler handler;
    std::vector<double> times;
    bench.server->run([&] {
        handler.player = bench.server->world().level().getPlayerByXuid(fmt::format("25354{:011}", 100));
        const auto call = reinterpret_cast<HandleItemStackRequest>(dlsym_real(symbols::handleItemStackRequest));
        const auto packet = click(ContainerName::inventory, 9);
        constexpr int calls = 20'000;
        for (int round = 0; round < 21; ++round) {
            passedon = 0;
            const auto start = clock_type::now();
            for (int i = 0; i < calls; ++i) call(&handler, {}, packet);
            times.push_back(microseconds(clock_type::now() - start) * 1000 / calls);
            if (passedon != calls) throw std::runtime_error("a request without a menu was not passed on");
        }
    });
    return middle(times);
}

// ---- a page

struct Answer {
    double last = 0;  // microseconds from the click to the last packet
    std::size_t bytes = 0, packets = 0;
};

class Viewer {
public:
    explicit Viewer(Bench& bench) : bench_(bench) {
        id_ = bench.join(1, [this](const std::string& packet) {
            heard_.last = microseconds(clock_type::now() - start_);
            heard_.bytes += packet.size();
            ++heard_.packets;
        });
        bench.opens(id_);
    }
    Answer clicks(ContainerName from, int slot) {
        heard_ = {};
        start_ = clock_type::now();
        bench_.sends(id_, click(from, slot));
        return heard_;
    }

private:
    Bench& bench_;
    host::ConnectionId id_ = 0;
    clock_type::time_point start_;
    Answer heard_;
};

// Middle of many; the sizes of the last one.
template <class F>
Answer measured(F&& work) {
    constexpr int rounds = 201;
    std::vector<double> times;
    Answer answer;
    for (int i = 0; i < rounds; ++i) {
        answer = work(i);
        times.push_back(answer.last);
    }
    answer.last = middle(times);
    return answer;
}

}  // namespace

int main(int argc, char** argv) {
    const int menus = argc > 1 ? std::atoi(argv[1]) : 200;
    const int goods = argc > 2 ? std::atoi(argv[2]) : 1000;

    const double bare = hookcost(false, 0), none = hookcost(true, 0), many = hookcost(true, menus);
    fmt::print("one request of a player without a menu\n");
    fmt::print("  without the market       {:9.1f} ns\n", bare);
    fmt::print("  no menu open             {:9.1f} ns   ratio {:6.2f}\n", none, none / bare);
    fmt::print("  {:4} menus of others     {:9.1f} ns   ratio {:6.2f}   {:.2f} ns a menu\n", menus, many, many / bare,
               (many - none) / menus);

    Bench bench(goods, true, true);
    Viewer viewer(bench);
    const auto refused = measured([&](int) { return viewer.clicks(ContainerName::armor, 3); });
    const auto turned = measured([&](int i) { return viewer.clicks(ContainerName::hotbar, i % 2 == 0 ? 8 : 0); });
    const auto sorted = measured([&](int) { return viewer.clicks(ContainerName::hotbar, 3); });
    fmt::print("from a click to the last packet, {} goods\n", goods);
    const auto line = [&](const char* what, const Answer& answer) {
        fmt::print("  {:<24} {:9.1f} us   ratio {:6.2f}   {:3} packets {:6} bytes\n", what, answer.last,
                   answer.last / refused.last, answer.packets, answer.bytes);
    };
    line("drawing nothing", refused);
    line("page turned", turned);
    line("sorted (one in 5 reads)", sorted);
}
