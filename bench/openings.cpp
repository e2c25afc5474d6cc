// Many players at the lists, in a server in real time with the real module in it: how long until everybody who opens at
// once has his page, what one player who never stops asking costs the others, and what a crowd leaves behind. Each
// scene runs in a process of its own. Given a second module, each scene is played with both in turn.
//   bench_openings [another ordomart.so] [part of a scene's name] [shops] [goods per shop]
//   (default: this module alone, all scenes, 200 shops of 10)
#include <fmt/format.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <span>
#include <thread>

#include "host/network/network.h"
#include "host/server.h"
#include "platform/packets/codec.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/itemstackrequest.h"
#include "platform/packets/messages.h"

namespace {

using namespace platform;
using namespace std::chrono_literals;
using nlohmann::json;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

int threads() {
    int count = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/task")) count += entry.is_directory() ? 1 : 0;
    return count;
}
double residentmb() {
    long all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return static_cast<double>(resident * ::sysconf(_SC_PAGESIZE)) / 1e6;
}
double inusemb() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}
std::string xuidof(int number) { return fmt::format("25354{:011}", number); }

void writeshops(const fs::path& directory, int shops, int goods) {
    constexpr const char* items[] = {"apple", "bread", "diamond", "iron_ingot", "coal", "emerald"};
    fs::create_directories(directory);
    for (int shop = 0; shop < shops; ++shop) {
        json all = json::array();
        for (int place = 0; place < goods; ++place) {
            const std::string item = items[static_cast<std::size_t>(shop + place) % std::size(items)];
            all.push_back({{"shopitemname", fmt::format("{} no. {} of shop {}", item, place, shop)},
                           {"shopitemdescribe", "a fine piece of work"},
                           {"shopitemtag", item},
                           {"price", 1 + (shop * 31 + place * 17) % 5000},
                           {"shopitemleftnum", 64},
                           {"itemnbt", "{Count:1b,Damage:0s,Name:\"minecraft:" + item + "\",WasPickedUp:0b}"},
                           {"allowbesearched", true}});
        }
        std::ofstream(directory / (xuidof(shop) + ".json"))
            << json{{"sell", {{"items", all}, {"shopname", fmt::format("Shop {}", shop)}}}, {"recycles", nullptr}};
    }
}

// ---- a client that knows of the wire what it needs, and when its page was complete

constexpr std::uint32_t ownslots = 0, lastbutton = 6;  // the compass is drawn last

class Player {
public:
    Player(host::Server& server, int number) : server_(server) {
        const host::JoinRequest who{fmt::format("Player{}", number), xuidof(number)};
        server_.run([&] { id_ = server_.network().join(who, [this](const std::string& packet) { hear(packet); }); });
    }
    void leaves() {
        server_.run([&] { server_.network().leave(id_); });
    }
    void types(const std::string& line) { sends(CommandRequestPacket{"/" + line}); }
    void presses(int button) { answers(std::to_string(button)); }
    void closesforms() {
        while (answers("null")) {
        }
    }
    void closesmenu() {
        if (const auto menu = menu_.exchange(-1); menu >= 0)
            sends(ContainerClosePacket{static_cast<std::uint8_t>(menu), false});
    }
    void clicks(ContainerName from, int slot) {
        ItemStackRequestAction action;
        action.type = static_cast<std::uint8_t>(ActionType::take);
        action.amount = 1;
        action.source = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(slot)};
        action.destination = {static_cast<std::uint8_t>(ContainerName::cursor), 0};
        sends(ItemStackRequestPacket{0, {{-1, {action}}}});
    }

    void waits() {
        asked_ = Clock::now();
        served_ = false;
    }
    [[nodiscard]] bool served() const { return served_; }
    [[nodiscard]] double took() const { return seconds(at_.load() - asked_); }
    [[nodiscard]] std::size_t forms() const {
        const std::lock_guard lock(mutex_);
        return forms_.size();
    }

private:
    template <class P>
    void sends(const P& packet) {
        server_.network().receive(id_, sealpacket(topacket(packet)));
    }
    bool answers(const std::string& text) {
        std::uint32_t form = 0;
        {
            const std::lock_guard lock(mutex_);
            if (forms_.empty()) return false;
            form = forms_.back();
            forms_.pop_back();
        }
        sends(ModalFormResponsePacket{.formid = form, .json = text});
        return true;
    }
    void hear(const std::string& bytes) {
        const auto packet = openpacket(bytes);
        if (packet.number == static_cast<int>(PacketId::ModalFormRequest)) {
            const auto form = readpacket<ModalFormRequestPacket>(packet.body);
            const std::lock_guard lock(mutex_);
            forms_.push_back(form.formid);
            if (form.json.find("Selling shops (form)") == std::string::npos) done();
        } else if (packet.number == static_cast<int>(PacketId::ContainerOpen)) {
            menu_ = readpacket<ContainerOpenPacket>(packet.body).containerid;
        } else if (packet.number == static_cast<int>(PacketId::ContainerClose)) {
            closesmenu();
        } else if (packet.number == static_cast<int>(PacketId::InventorySlot)) {
            const auto slot = readpacket<InventorySlotPacket>(packet.body);
            if (slot.containerid == ownslots && slot.slot == lastbutton && slot.item.networkid != 0) done();
        }
    }
    void done() {
        if (served_) return;
        at_ = Clock::now();
        served_ = true;
    }

    host::Server& server_;
    host::ConnectionId id_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::uint32_t> forms_;
    std::atomic<int> menu_ = -1;
    Clock::time_point asked_;
    std::atomic<Clock::time_point> at_;
    std::atomic<bool> served_ = true;
};

// ---- a server with shops in it, and somebody who counts its threads

class Market {
public:
    Market(const std::string& module, int shops, int goods) {
        fs::remove_all(directory_);
        writeshops(directory_ / "plugins/Ordomart/data", shops, goods);
        host::ServerOptions options;
        options.directory = directory_.string();
        options.module = module;
        options.moneylibrary = "none";
        options.quiet = true;
        server_ = std::make_unique<host::Server>(options);
        server_->start();
        idle_ = threads();
        counter_ = std::thread([this] {
            for (; !ended_; std::this_thread::sleep_for(5ms)) most_ = std::max<int>(most_, threads());
        });
        idle_ = threads();
    }
    ~Market() {
        if (counter_.joinable()) stops();
        fs::remove_all(directory_);
    }
    // Seconds.
    double stops() {
        ended_ = true;
        counter_.join();
        const auto start = Clock::now();
        server_->stop();
        return seconds(Clock::now() - start);
    }
    void joins(int count) {
        while (static_cast<int>(players_.size()) < count)
            players_.push_back(std::make_unique<Player>(*server_, static_cast<int>(players_.size())));
    }
    // Until everybody is served, or the time is up. How many are not.
    int waits(Clock::duration most) {
        const auto end = Clock::now() + most;
        const auto left = [&] { return std::ranges::count_if(players_, [](const auto& p) { return !p->served(); }); };
        while (left() > 0 && Clock::now() < end) std::this_thread::sleep_for(2ms);
        return static_cast<int>(left());
    }
    [[nodiscard]] int morethreads() const { return most_ - idle_; }
    [[nodiscard]] int nowmore() const { return threads() - idle_; }
    [[nodiscard]] host::Server& server() { return *server_; }
    [[nodiscard]] std::deque<std::unique_ptr<Player>>& players() { return players_; }

private:
    fs::path directory_ = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    std::unique_ptr<host::Server> server_;
    std::deque<std::unique_ptr<Player>> players_;
    std::thread counter_;
    std::atomic<bool> ended_ = false;
    std::atomic<int> most_ = 0;
    int idle_ = 0;
};

constexpr auto patience = 30s, otherspatience = 5s;
constexpr unsigned mostseconds = 120;  // for one scene

struct Spread {
    double middle = 0, last = 0;
};
Spread spread(std::vector<double> times) {
    if (times.empty()) return {};
    std::ranges::sort(times);
    return {times[times.size() / 2], times.back()};
}
std::string told(const Spread& times) {
    return fmt::format("{:6.2f} s middle {:6.2f} s last", times.middle, times.last);
}

// ---- the scenes; each gives one line

std::string openatonce(const std::string& module, int shops, int goods, int count, bool chest) {
    Market market(module, shops, goods);
    market.joins(count);
    if (!chest) {
        for (const auto& player : market.players()) player->types("ordomart formmenu");
        for (const auto& player : market.players())
            for (int i = 0; i < 5000 && player->forms() == 0; ++i) std::this_thread::sleep_for(1ms);
    }
    for (const auto& player : market.players()) player->waits();
    for (const auto& player : market.players()) chest ? player->types("ordomart buy") : player->presses(0);
    const int unserved = market.waits(patience);
    std::vector<double> times;
    for (const auto& player : market.players())
        if (player->served()) times.push_back(player->took());
    return fmt::format("{}   {:4} more threads{}", told(spread(times)), market.morethreads(),
                       unserved > 0 ? fmt::format("   {} NOT SERVED", unserved) : "");
}

// One after the other within a second, and what that does to the passes of the server thread.
std::string openinasecond(const std::string& module, int shops, int goods, int count, bool iscold) {
    Market market(module, shops, goods);
    market.joins(iscold ? count : count + 1);
    if (!iscold) {
        market.players().back()->waits();
        market.players().back()->types("ordomart buy");
        market.waits(patience);
        market.players().pop_back();
        std::this_thread::sleep_for(500ms);
    }
    auto& passes = market.server().passtimes();
    passes.forgetlongest();
    const auto before = passes.seen();
    auto due = Clock::now();
    for (const auto& player : market.players()) {
        std::this_thread::sleep_until(due += 1s / count);
        player->waits();
        player->types("ordomart buy");
    }
    const int unserved = market.waits(patience);
    const auto after = passes.seen();
    std::vector<double> times;
    for (const auto& player : market.players())
        if (player->served()) times.push_back(player->took());
    std::uint64_t all = 0, above = 0;
    for (std::size_t range = 0; range < after.counts.size(); ++range) {
        const auto here = after.counts[range] - before.counts[range];
        all += here;
        if (range > 10) above += here;  // 1,024 us
    }
    return fmt::format("{}   {} passes, {} above 1 ms, the longest {:.2f} ms{}", told(spread(times)), all, above,
                       after.longest * 1000, unserved > 0 ? fmt::format("   {} NOT SERVED", unserved) : "");
}

// Others open a chest list each, one after the other, while player 0 asks for the list of all goods again and again.
std::string besidealoop(const std::string& module, int shops, int goods, bool loops) {
    constexpr int others = 10;
    Market market(module, shops, goods);
    market.joins(others + 1);
    Player& looping = *market.players()[0];
    std::atomic<bool> ended = false;
    std::atomic<int> turns = 0;
    std::thread loop([&] {
        for (auto due = Clock::now(); loops && !ended; due += 6667us) {
            std::this_thread::sleep_until(due);
            looping.closesforms();
            looping.types("ordomart formmenu");
            for (int i = 0; i < 10 && looping.forms() == 0 && !ended; ++i) std::this_thread::sleep_for(1ms);
            looping.presses(0);
            ++turns;
        }
    });
    const auto start = Clock::now();
    std::this_thread::sleep_for(2s);
    std::vector<double> times;
    int unserved = 0;
    for (int i = 1; i <= others; ++i) {
        Player& other = *market.players()[static_cast<std::size_t>(i)];
        other.waits();
        other.types("ordomart buy");
        const auto end = Clock::now() + otherspatience;
        while (!other.served() && Clock::now() < end) std::this_thread::sleep_for(1ms);
        if (other.served())
            times.push_back(other.took());
        else
            ++unserved;
        other.closesmenu();
    }
    const double tickrate = static_cast<double>(market.server().tickcount()) / seconds(Clock::now() - start);
    const auto rate = turns / seconds(Clock::now() - start);
    ended = true;
    loop.join();
    looping.leaves();
    const auto left = Clock::now();
    while (market.nowmore() > 1 && Clock::now() - left < 30s) std::this_thread::sleep_for(5ms);
    const double quiet = seconds(Clock::now() - left);
    const double resident = residentmb();
    const int most = market.morethreads();
    return fmt::format(
        "{}   {:4} more threads   {:3.0f} a second   {:4.1f} ticks a second   quiet after {:5.2f} s   "
        "{:4.0f} MB   stopped in {:5.2f} s{}",
        told(spread(times)), most, rate, tickrate, quiet, resident, market.stops(),
        unserved > 0 ? fmt::format("   {} NOT SERVED", unserved) : "");
}

// 200 players, 300 actions a second; half of it all over again when everybody has left, for what stays in memory.
std::string crowd(const std::string& module, int shops, int goods) {
    constexpr int count = 200, actionsasecond = 300;
    constexpr auto lasting = 12s;
    Market market(module, shops, goods);
    std::mt19937 dice(1);
    const double before = residentmb();
    market.joins(count);
    const auto ticksbefore = market.server().tickcount();
    const auto start = Clock::now();
    for (auto due = start; due - start < lasting; due += std::chrono::microseconds(1'000'000 / actionsasecond)) {
        std::this_thread::sleep_until(due);
        Player& player = *market.players()[dice() % count];
        switch (dice() % 8) {
            case 0:
                player.types("ordomart buy");
                break;
            case 1:
                player.types("ordomart recycle");
                break;
            case 2:
                player.types(fmt::format("ordomart search sell {} true true", dice() % 50));
                break;
            case 3:
                player.types("ordomart formmenu");
                break;
            case 4:
                player.presses(static_cast<int>(dice() % 2));
                break;
            case 5:
                player.clicks(ContainerName::hotbar, dice() % 2 == 0 ? 8 : 3);
                break;
            case 6:
                player.closesmenu();
                break;
            default:
                player.closesforms();
        }
    }
    const auto lasted = seconds(Clock::now() - start);
    const double rate = static_cast<double>(market.server().tickcount() - ticksbefore) / lasted;
    const double most = residentmb();
    for (const auto& player : market.players()) player->leaves();
    const auto left = Clock::now();
    while (market.nowmore() > 1 && Clock::now() - left < 30s) std::this_thread::sleep_for(5ms);
    const double quiet = seconds(Clock::now() - left);
    const double after = residentmb(), inuse = inusemb();
    const int threadsmost = market.morethreads();
    return fmt::format(
        "{:4} more threads   {:4.1f} ticks a second   {:.0f} / {:.0f} / {:.0f} MB before / full / left, {:.0f} in use  "
        " "
        "quiet after {:5.2f} s   stopped in {:5.2f} s",
        threadsmost, rate, before, most, after, inuse, quiet, market.stops());
}

// Everything again from nothing: a process that has had another module's threads measures them, too.
template <class Scene>
void playall(const std::string& name, const std::vector<std::string>& modules, const Scene& scene) {
    for (std::size_t i = 0; i < modules.size(); ++i) {
        fmt::print("{:<34} {:<6} ", name, modules.size() == 1 ? "" : i == 0 ? "other" : "this");
        std::fflush(stdout);
        const auto child = ::fork();
        if (child == 0) {
            ::alarm(mostseconds);
            int status = 0;
            try {
                fmt::print("{}\n", scene(modules[i]));
            } catch (const std::exception& e) {
                fmt::print("FAILED: {}\n", e.what());
                status = 1;
            }
            std::fflush(stdout);
            ::_exit(status);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        if (WIFSIGNALED(status)) fmt::print("NOT ENDED after {} s, or by signal {}\n", mostseconds, WTERMSIG(status));
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> modules;
    std::string only;
    std::vector<int> sizes;
    for (const std::string_view word : std::span(argv + 1, static_cast<std::size_t>(argc - 1))) {
        if (word.ends_with(".so"))
            modules.emplace_back(word);
        else if (std::ranges::all_of(word, [](char c) { return c >= '0' && c <= '9'; }))
            sizes.push_back(std::stoi(std::string(word)));
        else
            only = word;
    }
    modules.emplace_back(MODULE_PATH);
    const int shops = sizes.empty() ? 200 : sizes[0], goods = sizes.size() > 1 ? sizes[1] : 10;

    fmt::print("{} shops of {} goods\n", shops, goods);
    const auto play = [&](const std::string& name, const auto& scene) {
        if (name.find(only) != std::string::npos) playall(name, modules, scene);
    };
    for (const bool chest : {true, false})
        for (const int count : {25, 50, 100, 200})
            play(fmt::format("{:3} open the {} at once", count, chest ? "chest" : "form"),
                 [&](const std::string& module) { return openatonce(module, shops, goods, count, chest); });
    for (const bool iscold : {true, false})
        play(fmt::format("200 open within a second, {}", iscold ? "files unread" : "files read"),
             [&](const std::string& module) { return openinasecond(module, shops, goods, 200, iscold); });
    for (const bool loops : {false, true})
        play(loops ? "10 in turn, one loops" : "10 in turn",
             [&](const std::string& module) { return besidealoop(module, shops, goods, loops); });
    play("200 players, 300 actions a second", [&](const std::string& module) { return crowd(module, shops, goods); });
}
