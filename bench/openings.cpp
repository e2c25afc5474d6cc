// Many players at the lists, in a server in real time with the real module in it: how long until everybody who opens at
// once has his page, what one player who never stops asking costs the others, and what a crowd leaves behind. Each
// scene runs in a process of its own. Given a second module, each scene is played with both in turn.
//   bench_openings [another ordomart.so] [part of a scene's name] [shops] [goods per shop]
//   (default: this module alone, all scenes, 200 shops of 10)
#include <sys/wait.h>

#include <random>
#include <span>
#include <string_view>

#include "bench/crowdedmarket.h"

namespace {

using namespace crowded;

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
