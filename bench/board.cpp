// The board's searches, asked over the loopback by callers in a process of their own: how many a second, what one costs
// the server's process, and how long the passes of the server thread are meanwhile, beside those of a quiet server.
//   bench_board [shops] [goods per shop] [seconds]      (default: 10000 x 50, 10 seconds each)
#include <fmt/format.h>
#include <httplib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <thread>

#include "bench/listgoods.h"
#include "host/board/board.h"
#include "host/server.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
constexpr int callers = 4;

double cpuseconds() {
    rusage used{};
    ::getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

double load() {
    double now = 0;
    std::ifstream("/proc/loadavg") >> now;
    return now;
}

enum class Kind { none, known, fresh, items };

std::string pathof(Kind kind, std::minstd_rand& chance, int number) {
    if (kind == Kind::known) {
        const auto& words = listgoods::thirtieth;
        return "/api/goods?sort=price&text=" + httplib::detail::encode_query_param(words[chance() % words.size()]);
    }
    if (kind == Kind::items) {
        constexpr std::array items{"apple", "bread", "diamond", "iron_ingot", "coal", "emerald", "redstone"};
        return fmt::format("/api/goods?item=minecraft:{}&sort=price&page={}", items[chance() % items.size()],
                           1 + chance() % 40);
    }
    return fmt::format("/api/goods?sort=price&text=no.%20{}", std::int64_t{number} * 7919 % 100000);
}

// Counts answers in a process that does nothing else, and tells them through the pipe.
long calls(int port, Kind kind, int seconds) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    const auto child = ::fork();
    if (child == 0) {
        std::array<long, callers> counts{};
        std::vector<std::thread> threads;
        const auto end = Clock::now() + std::chrono::seconds(seconds);
        for (int number = 0; number < callers; ++number)
            threads.emplace_back([&, number] {
                httplib::Client http("127.0.0.1", port);
                http.set_keep_alive(true);
                http.set_tcp_nodelay(true);
                std::minstd_rand chance(static_cast<unsigned>(number) + 1);
                for (int asked = number; Clock::now() < end; asked += callers) {
                    const auto answer = http.Get(pathof(kind, chance, asked));
                    if (answer && answer->status == 200) ++counts[static_cast<std::size_t>(number)];
                }
            });
        for (auto& thread : threads) thread.join();
        const long all = std::accumulate(counts.begin(), counts.end(), 0L);
        [[maybe_unused]] const auto told = ::write(ends[1], &all, sizeof all);
        ::_exit(0);
    }
    ::close(ends[1]);
    long all = 0;
    [[maybe_unused]] const auto got = ::read(ends[0], &all, sizeof all);
    ::close(ends[0]);
    ::waitpid(child, nullptr, 0);
    return all;
}

void measure(host::Server& server, int port, const char* name, Kind kind, int seconds) {
    const auto before = server.passtimes().seen();
    server.passtimes().forgetlongest();
    const double used = cpuseconds();
    const auto began = Clock::now();
    const long all = kind == Kind::none ? 0 : calls(port, kind, seconds);
    if (kind == Kind::none) std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const double took = std::chrono::duration<double>(Clock::now() - began).count(), cpu = cpuseconds() - used;
    const auto answers = static_cast<double>(all);
    fmt::print("{:<28}{:>10.0f}{:>12.3f}{:>12.0f}", name, answers / took, all == 0 ? 0 : 1e3 * cpu / answers,
               answers / cpu);
    const auto after = server.passtimes().seen();
    std::uint64_t passes = 0, seen = 0;
    for (std::size_t i = 0; i < host::PassTimes::ranges; ++i) passes += after.counts[i] - before.counts[i];
    std::size_t range = 0;
    for (; range < host::PassTimes::ranges; ++range)
        if ((seen += after.counts[range] - before.counts[range]) * 100 >= passes * 99) break;
    fmt::print("{:>9}{:>10.3f}{:>13.3f}{:>10.3f}{:>8.1f}\n", passes,
               1e3 * (after.seconds - before.seconds) / static_cast<double>(passes),
               std::ldexp(1e-3, static_cast<int>(range)), 1e3 * after.longest, load());
}

}  // namespace

int main(int count, char** values) {
    const auto argument = [&](int at, int otherwise) { return count > at ? std::atoi(values[at]) : otherwise; };
    const int shops = argument(1, 10000), goods = argument(2, 50), seconds = argument(3, 10);
    const auto directory = fs::temp_directory_path() / fmt::format("bench-board-{}", ::getpid());
    listgoods::writeshops(directory / "plugins/Ordomart/data", shops, goods);
    {
        host::ServerOptions options;
        options.directory = directory.string();
        options.module = MODULE_PATH;
        options.moneylibrary = LLMONEY_PATH;
        options.quiet = true;
        host::Server server(options);
        server.start();
        host::Board board(server, {.rate = {.atonce = 1e12, .asecond = 1e12}});
        board.start();
        httplib::Client http("127.0.0.1", board.port());
        http.set_read_timeout(300);
        const auto began = Clock::now();
        (void)http.Get("/api/goods");
        fmt::print("{} shops of {}; the first answer after {:.2f} s\n", shops, goods,
                   std::chrono::duration<double>(Clock::now() - began).count());
        fmt::print("{:<28}{:>10}{:>12}{:>12}{:>9}{:>10}{:>13}{:>10}{:>8}\n", "", "a second", "ms of CPU", "a CPU s",
                   "passes", "mean ms", "99 % within", "longest", "load");
        measure(server, board.port(), "quiet", Kind::none, seconds);
        measure(server, board.port(), "searches asked before", Kind::known, seconds);
        measure(server, board.port(), "searches nobody asked", Kind::fresh, seconds);
        measure(server, board.port(), "offers of an item, 40 pages", Kind::items, seconds);
        board.stop();
        server.stop();
    }
    fs::remove_all(directory);
}
