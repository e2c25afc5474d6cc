// What a player's global list costs: building it over many shops, cold (files unread) and warm, its memory, and the
// same page, count and filter asked of an in-memory SQLite table in the same run. Prints a table; the ratios are what
// counts.
//   bench_lists [shops] [goods per shop]      (default: 1000 x 30, then 10000 x 50)
#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "host/server.h"
#include "platform/turn.h"
#include "plugin/shopsystem/lists.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace {

using nlohmann::json;
namespace fs = std::filesystem;
using clock_type = std::chrono::steady_clock;

constexpr const char* items[] = {"apple",      "bread", "diamond", "iron_ingot",
                                 "gold_ingot", "coal",  "emerald", "redstone"};

// Middle of five runs, in milliseconds.
template <class F>
double measure(F&& work, int runs = 5) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = clock_type::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(clock_type::now() - start).count());
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

std::size_t heap() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

json good(int shop, int place) {
    const std::string item = items[(shop * 7 + place) % std::size(items)];
    return {{"shopitemname", fmt::format("{} no. {} of shop {}", item, place, shop)},
            {"shopitemdescribe", "a fine piece of work"},
            {"shopitemtag", item},
            {"price", (shop * 31 + place * 17) % 5000},
            {"shopitemleftnum", 1 + (shop + place) % 64},
            {"itemnbt", fmt::format("{{Count:1b,Damage:0s,Name:\"minecraft:{}\",WasPickedUp:0b}}", item)},
            {"allowbesearched", true}};
}

void generate(const fs::path& directory, int shops, int goods) {
    fs::create_directories(directory);
    for (int shop = 0; shop < shops; ++shop) {
        json all = json::array();
        for (int place = 0; place < goods; ++place) all.push_back(good(shop, place));
        const json document{{"sell",
                             {{"biditems", nullptr},
                              {"describe", ""},
                              {"isopshop", false},
                              {"items", std::move(all)},
                              {"ownerlang", "en_US"},
                              {"ownername", fmt::format("Owner{}", shop)},
                              {"salesvolume", 0},
                              {"sellcount", 0},
                              {"shopdiscount", nullptr},
                              {"shopitemicon", ""},
                              {"shopname", fmt::format("Shop {}", shop)},
                              {"shopstate", nullptr}}},
                            {"recycles", json::object()}};
        std::ofstream(directory / fmt::format("25354{:011}.json", shop)) << document.dump(4);
    }
}

void fill(SQLite::Database& table) {
    table.exec(
        "CREATE TABLE goods (xuid TEXT, shopname TEXT, place INTEGER, name TEXT, describe TEXT, tag TEXT,"
        " price INTEGER, leftnum INTEGER, nbt TEXT)");
    SQLite::Transaction all(table);
    SQLite::Statement add(table, "INSERT INTO goods VALUES (?,?,?,?,?,?,?,?,?)");
    auto& state = shopsystem::getplayershopstate("viewer");
    for (std::size_t i = 0; i < state.sellreadlist.size(); ++i) {
        const auto row = state.sellreadlist.row(i);
        add.bind(1, row.xuid), add.bind(2, row.shopname), add.bind(3, row.index), add.bind(4, row.shopitemname);
        add.bind(5, row.shopitemdescribe), add.bind(6, row.shopitemtag), add.bind(7, row.realprice);
        add.bind(8, row.shopitemleftnum), add.bind(9, row.itemnbt);
        add.exec();
        add.reset();
    }
    all.commit();
    table.exec("CREATE INDEX byname ON goods(name)");
    table.exec("CREATE INDEX bytag ON goods(tag)");
    table.exec("CREATE INDEX byprice ON goods(price)");
    table.exec("ANALYZE");
}

int steps(SQLite::Database& table, const char* query) {
    SQLite::Statement ask(table, query);
    int rows = 0;
    while (ask.executeStep()) ++rows;
    return rows;
}

void run(int shops, int goods) {
    const fs::path directory = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    fs::remove_all(directory);
    generate(directory / "plugins/Ordomart/data", shops, goods);
    host::ServerOptions options;
    options.directory = directory.string();
    options.module = MODULE_PATH;
    options.moneylibrary = "none";
    options.manual = true;
    options.quiet = true;
    host::Server server(options);
    server.start();

    auto& state = shopsystem::getplayershopstate("viewer");
    const auto build = [] { shopsystem::sellshop::prepareglobalsellshopfilterforplayer("viewer"); };
    const std::size_t before = heap();
    const double cold = measure(build, 1);
    const std::size_t withcache = heap();
    const double warm = measure(build);
    const double rows = static_cast<double>(state.sellreadlist.size());
    state.sellreadlist.clear();
    const std::size_t cacheonly = heap();
    build();
    const double rowbytes = static_cast<double>(heap() - cacheonly) / rows;

    SQLite::Database table(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    const std::size_t beforetable = heap();
    const double load = measure([&] { fill(table); }, 1);
    const double tablebytes = static_cast<double>(heap() - beforetable) / rows;

    const double count = measure([&] { (void)state.sellreadlist.size(); });
    const double sqlcount = measure([&] { steps(table, "SELECT COUNT(*) FROM goods WHERE leftnum != 0"); });
    const double page = measure([&] {
        state.filterstep = 4;
        shopsystem::sortsellreadlist(state);
        for (std::size_t i = 26; i < 52; ++i) (void)state.sellreadlist.row(i);
    });
    const double sqlpage = measure([&] { steps(table, "SELECT * FROM goods ORDER BY price LIMIT 26 OFFSET 26"); });
    state.filter.itemtagfilter = "diamond$";
    const double filter = measure(build);
    const double kept = static_cast<double>(state.sellreadlist.size());
    const double sqlfilter = measure([&] { steps(table, "SELECT * FROM goods WHERE tag = 'diamond'"); });
    state.filter.itemtagfilter = "amo";
    const double part = measure(build);
    const double sqlpart = measure([&] { steps(table, "SELECT * FROM goods WHERE instr(tag, 'amo') > 0"); });
    state.filter = {};

    fmt::print("\n{} shops of {} goods: {:.0f} rows in the list\n", shops, goods, rows);
    fmt::print("  build cold   {:10.1f} ms  {:8.0f} ns a row   heap of cache and list {:6.0f} bytes a row\n", cold,
               cold * 1e6 / rows, static_cast<double>(withcache - before) / rows);
    fmt::print("  build warm   {:10.1f} ms  {:8.0f} ns a row   heap of the list       {:6.0f} bytes a row\n", warm,
               warm * 1e6 / rows, rowbytes);
    fmt::print("  table loaded {:10.1f} ms  {:8.0f} ns a row   heap of the table      {:6.0f} bytes a row\n", load,
               load * 1e6 / rows, tablebytes);
    const auto line = [](const char* what, double ours, double theirs) {
        fmt::print("  {:<34} {:10.4f} ms   SQLite {:10.4f} ms   ratio {:8.2f}\n", what, ours, theirs, ours / theirs);
    };
    line("count of a finished list", count, sqlcount);
    line("second page by price (sort, 26 rows)", page, sqlpage);
    line(fmt::format("rebuilt, tag is diamond ({:.0f})", kept).c_str(), filter, sqlfilter);
    line("rebuilt, tag holds \"amo\"", part, sqlpart);
    server.stop();
    fs::remove_all(directory);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3) {
        run(std::atoi(argv[1]), std::atoi(argv[2]));
        return 0;
    }
    run(1000, 30);
    run(10000, 50);
}
