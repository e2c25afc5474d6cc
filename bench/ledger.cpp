// What the ledger costs: what it adds to a trade on the server thread, up to the end of the pass that has it on the
// disk; and with many entries in it: its bytes, the prices of an item, the newest trades, a player's trades, an audit.
//   bench_ledger [entries] [trades]      (default: 10000000 2000)
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>

#include "host/server.h"
#include "host/world/world.h"
#include "platform/clock.h"
#include "platform/host.h"
#include "platform/records.h"
#include "plugin/ledger/audit.h"
#include "plugin/ledger/ledger.h"
#include "plugin/ledger/queries.h"
#include "plugin/shopsystem/sellshop.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int goods = 50, items = 800, variants = 4, shops = 1000, players = 2000, days = 400;

double microseconds(Clock::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

std::string itemof(int number) {
    return fmt::format("{{Count:1b,Damage:{}s,Name:\"minecraft:item_{}\",WasPickedUp:0b}}", number % variants,
                       number % items / variants);
}
std::string xuidof(int number) { return fmt::format("25354{:011}", number); }

shopsystem::sellshop shopof(int number) {
    shopsystem::sellshop shop(xuidof(number));
    shop.items = nlohmann::json::array();
    for (int place = 0; place < goods; ++place) {
        shopsystem::shopitem item;
        item.itemnbt = itemof(place);
        item.shopitemname = fmt::format("apple no. {}", place);
        item.shopitemleftnum = 1000000;
        item.price = 10;
        nlohmann::json record;
        tojson(item, record);
        shop.items.push_back(record);
    }
    return shop;
}

template <class Work>
double timed(Work work) {
    const auto begin = Clock::now();
    work();
    return microseconds(Clock::now() - begin);
}

// The passes of trades, with and without the ledger in turn, so that what else the machine does hits both.
void addedtoatrade(host::Server& server, int trades) {
    auto shop = shopof(1);
    std::string packed;
    nlohmann::json::to_msgpack(shop.items, packed);
    std::vector<double> plain, kept, alone;
    std::int64_t left = 1000000;
    for (int i = 0; i < 2 * trades; ++i) {
        server.run([&] {
            const bool keeps = i % 2 == 1;
            server.services().records->put("shops", xuidof(1) + ".sell", [&] { return packed; });
            double writing = 0;
            const double pass = timed([&] {
                if (keeps) {
                    const auto tag = ledger::hashof(itemof(i % goods));
                    shopsystem::countup(shop.sellcount, 1);
                    shopsystem::countup(shop.salesvolume, 10);
                    writing = timed([&] {
                        ledger::write(shop, {.what = ledger::kind::purchase,
                                             .actor = xuidof(players + i % players),
                                             .itemnbt = itemof(i % goods),
                                             .pieces = 1,
                                             .price = 10 + i % 7,
                                             .paid = 10 + i % 7,
                                             .fee = 1,
                                             .before = ledger::rowstate{tag, left},
                                             .after = ledger::rowstate{tag, left - 1}});
                    });
                    --left;
                }
                server.world().flush();
            });
            (keeps ? kept : plain).push_back(pass);
            if (keeps) alone.push_back(writing);
        });
    }
    for (auto* all : {&plain, &kept, &alone}) std::ranges::sort(*all);
    const auto middle = [](const auto& all) { return all[all.size() / 2]; };
    fmt::print(
        "a pass with a shop of {} goods: {:.1f} us, with an entry {:.1f} us: the ledger adds {:.1f} us "
        "({:.1f} of it before the pass ends)\n",
        goods, middle(plain), middle(kept), middle(kept) - middle(plain), middle(alone));
}

void fill(host::Server& server, std::uint64_t entries) {
    const auto begin = ledger::nextnumber();
    const auto now = platform::unixseconds();
    std::uint64_t bytes = 0;
    // What every shop has, so that the entries fit one another.
    struct standing {
        std::int32_t count = 0, volume = 0;
        std::map<std::uint64_t, std::int64_t> left;
    };
    constexpr std::int64_t first = 1'000'000'000;
    std::vector<standing> shopsleft(shops);
    std::vector<ledger::variant> all;
    for (int item = 0; item < items; ++item) all.push_back(ledger::variantof(itemof(item)));
    for (std::uint64_t i = 0; i < entries;) {
        server.run([&] {
            for (const auto end = std::min(entries, i + 5000); i < end; ++i) {
                ledger::entry one;
                one.number = begin + i;
                one.time = now - static_cast<std::int64_t>((entries - i) * days / entries) * 86400;
                const int item = static_cast<int>(i * 7919 % items);
                one.shop = xuidof(static_cast<int>(2 + i % shops));
                one.actor = xuidof(static_cast<int>(players + i * 31 % players));
                one.tag = ledger::hashof(itemof(item));
                one.pieces = 1 + static_cast<std::int64_t>(i % 64);
                one.price = 5 + static_cast<std::int64_t>(i * 13 % 40);
                one.paid = one.pieces * one.price;
                one.fee = one.paid / 20;
                one.revision = static_cast<std::uint32_t>(i / shops);
                auto& its = shopsleft[i % shops];
                shopsystem::countup(its.count, one.pieces);
                shopsystem::countup(its.volume, one.paid);
                one.count = its.count;
                one.volume = its.volume;
                auto& left = its.left.try_emplace(one.tag, first).first->second;
                one.before = ledger::rowstate{one.tag, left};
                left -= one.pieces;
                one.after = ledger::rowstate{one.tag, left};
                auto packed = ledger::encode(one);
                bytes += packed.size();
                server.services().records->put("ledger", ledger::keyof(one.number), [packed] { return packed; });
                ledger::countday(one, {{all[static_cast<std::size_t>(item)], one.pieces}}, false);
            }
            server.world().flush();
        });
    }
    for (int item = 0; item < items; ++item)
        server.run([&] {
            server.services().records->put("ledger.tags", fmt::format("{:016x}", ledger::hashof(itemof(item))),
                                           [item] { return itemof(item); });
        });
    server.run([&] {
        for (int shop = 0; shop < shops; ++shop) {
            ledger::shopbooks books;
            for (const auto& [tag, left] : shopsleft[static_cast<std::size_t>(shop)].left)
                books.rows.push_back({tag, first});
            server.services().records->put("ledger.openings", xuidof(2 + shop) + ".sell",
                                           [packed = ledger::encode(books)] { return packed; });
        }
        server.world().flush();
        ledger::start();
    });
    fmt::print("{} entries of {} days: {} bytes each\n", entries, days, bytes / std::max<std::uint64_t>(entries, 1));
}

template <class Work>
void tell(const char* what, int times, Work work) {
    std::vector<double> all;
    for (int i = 0; i < times; ++i) all.push_back(timed(work));
    std::ranges::sort(all);
    fmt::print("{}: {:.2f} ms, at most {:.2f} ms\n", what, all[all.size() / 2] / 1000, all.back() / 1000);
}

}  // namespace

int main(int count, char** values) {
    const auto entries = count > 1 ? std::strtoull(values[1], nullptr, 10) : 10'000'000ULL;
    const int trades = count > 2 ? std::atoi(values[2]) : 2000;
    const auto directory = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    fs::remove_all(directory);
    fs::create_directories(directory);
    host::ServerOptions options;
    options.directory = directory.string();
    options.module = MODULE_PATH;
    options.moneylibrary = LLMONEY_PATH;
    options.manual = options.quiet = true;
    {
        host::Server server(options);
        server.start();
        server.run([] { ledger::start(); });
        addedtoatrade(server, trades);
        fill(server, entries);
        addedtoatrade(server, trades);
        tell("prices of an item with 4 variants, 30 days", 20,
             [] { (void)ledger::pricesbyday("minecraft:item_7", ledger::today(), 30); });
        tell("the newest 50 trades", 20, [] { (void)ledger::latesttrades({}, 50); });
        tell("the newest 50 of a player", 20, [] { (void)ledger::latesttrades({.player = xuidof(7)}, 50); });
        tell("sums of 30 days", 5, [] { (void)ledger::sumsbyday(ledger::today(), 30); });
        tell("top goods of 30 days", 5, [] { (void)ledger::topgoods(ledger::today(), 30, 20); });
        std::uint64_t seen = 0;
        const auto whole = timed([&] { seen = ledger::audit([] { return true; }).entries; });
        fmt::print("an audit of {} entries: {:.1f} s\n", seen, whole / 1e6);
        server.stop();
    }
    fmt::print("the world's file: {} MB\n", fs::file_size(directory / "server.sqlite") >> 20);
    fs::remove_all(directory);
}
