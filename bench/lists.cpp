// What a player's list of all goods costs, beside the same goods in SQLite (listtable.h) and beside the limit: one pass
// over the bytes that a query must touch if nothing but decoded columns is there. All three in one run, the answers
// compared. What is asked is what a list shows: page k by price, and the number of hits.
//   bench_lists [shops] [goods per shop]      (default: 2000 x 250, then 100000 x 10)
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "bench/listplayer.h"
#include "host/server.h"

namespace {

using namespace listgoods;
namespace fs = std::filesystem;
using texts = std::vector<std::string>;

// ---- the table

struct goals {
    double sqlite = 0, scan = 0;  // so many times as fast, at least
    double limit = 0, ms = 0;     // so many times the pass at most; so long at most
};

struct line {
    std::string what;
    std::function<query(int variant)> ours;
    std::function<answer(int variant)> sqlite, scan;
    goals goal;
    std::size_t page = 0;
    bool altered = false;  // a piece is sold before each opening, where no other text can be asked for
    std::function<std::size_t(std::size_t hits)> bytes;
};

class report {
public:
    explicit report(std::string tradeshop) : tradeshop_(std::move(tradeshop)) {
        fmt::print("\n{:<38}{:>9}{:>10}{:>10}{:>10}{:>10}{:>9}{:>8}{:>8}{:>8}  goal\n", "ms", "hits", "ours", "again",
                   "SQLite", "scan", "limit", "SQLite:", "scan:", ":limit");
    }
    void measure(const line& of) {
        std::vector<double> first, again, indexed, scanned, passes;
        std::vector<std::uint64_t> column;
        std::size_t hits = 0;
        bool agrees = true;
        for (int run = 0; run < 3 * variants; ++run) {
            const int variant = run % variants;
            if (of.altered) trade(tradeshop_, run % 2 == 0 ? 1 : -1);
            answer fresh, same, theirs;
            first.push_back(once([&] { fresh = openlist(of.ours(variant), of.page); }));
            again.push_back(once([&] { same = openlist(of.ours(variant), of.page); }));
            indexed.push_back(once([&] { theirs = of.sqlite(variant); }));
            agrees = agrees && fresh == same && fresh == theirs;
            if (of.scan && run < variants) {
                scanned.push_back(once([&] { theirs = of.scan(variant); }));
                agrees = agrees && fresh == theirs;
            }
            hits = fresh.hits;
            // As we do, it finds in the caches of the processor what SQLite has left there.
            column.resize(of.bytes(hits) / sizeof(std::uint64_t) + 1, 1);
            passes.push_back(onepass(column));
        }
        const double ours = middle(first), second = middle(again), sqlite = middle(indexed), scan = middle(scanned);
        const double limit = middle(passes);
        std::string missed;
        const auto demand = [&](bool met, const std::string& what) {
            if (!met) missed += (missed.empty() ? "missed: " : ", ") + what;
        };
        demand(agrees, "THE ANSWERS DIFFER");
        demand(sqlite >= of.goal.sqlite * ours, fmt::format("{} x SQLite", of.goal.sqlite));
        demand(scan >= of.goal.scan * ours, fmt::format("{} x scan", of.goal.scan));
        demand(of.goal.limit == 0 || ours <= of.goal.limit * limit, fmt::format("{} x limit", of.goal.limit));
        demand(of.goal.ms == 0 || ours <= of.goal.ms, fmt::format("{} ms", of.goal.ms));
        demand(second <= 1, "1 ms again");
        fmt::print("{:<38}{:>9}{:>10.3f}{:>10.3f}{:>10.3f}{:>10.3f}{:>9.3f}{:>8.1f}{:>8.1f}{:>8.2f}  {}\n", of.what,
                   hits, ours, second, sqlite, scan, limit, sqlite / ours, scan / ours, ours / limit,
                   missed.empty() ? "met" : missed);
        std::fflush(stdout);
    }

private:
    const std::string tradeshop_;
};

struct columns {
    std::size_t rows = 0, textbytes = 0;  // with something left; of names and descriptions
};

texts pair(const auto& words, int variant) {
    const auto i = static_cast<std::size_t>(2 * variant);
    return {words[i], words[i + 1]};
}
// A part of one tag that is borne, three characters of Chinese or more, and five that nobody's tag holds.
texts six(const char* tag, int variant) {
    texts parts{std::string(tag).substr(0, 9)};
    for (const char* other : {"saddle", "铁砧", "compass", "望远镜", "spyglass"})
        parts.push_back(fmt::format("{}{}", other, variant));
    return parts;
}
std::string filterof(const texts& parts) { return fmt::format("{}", fmt::join(parts, "{||}")); }

void measurequeries(table& sqlite, const columns& has, const std::string& tradeshop) {
    report out(tradeshop);
    // Counted in the limit: price (4 bytes) and shown (1) of each row where all are listed; else tag (4) or texts with
    // their offsets (4 each) and shown of each row, and the price of each hit.
    const auto listed = [&](std::size_t) { return has.rows * 5; };
    const auto tagged = [&](std::size_t hits) { return has.rows * 5 + hits * 4; };
    const auto written = [&](std::size_t hits) { return has.rows * 9 + has.textbytes + hits * 4; };

    for (const std::size_t page : {1, 400})
        out.measure({.what = fmt::format("by price, page {}, a piece sold", page),
                     .ours = [](int) { return query(); },
                     .sqlite = [&, page](int) { return sqlite.indexed("price", "", page - 1); },
                     .goal = {.sqlite = 5, .limit = 3.5},
                     .page = page - 1,
                     .altered = true,
                     .bytes = listed});
    const auto exactly = [&](const auto& tags, const char* what, double goal) {
        out.measure({.what = what,
                     .ours =
                         [&](int v) {
                             return query{{.itemtagfilter = std::string(tags[v]) + "$"}, {}};
                         },
                     .sqlite = [&](int v) { return sqlite.indexed("price", tags[v], 0); },
                     .goal = {.sqlite = goal},
                     .bytes = tagged});
    };
    exactly(tenth, "one tag, a tenth", 2.5);
    exactly(threehundredth, "one tag, a three-hundredth", 1);
    const auto parts = [&](const auto& tags, const char* what, goals goal) {
        out.measure({.what = what,
                     .ours =
                         [&](int v) {
                             return query{{.itemtagfilter = filterof(six(tags[v], v))}, {}};
                         },
                     .sqlite = [&](int v) { return sqlite.bytrigrams({"tag"}, six(tags[v], v), 0); },
                     .scan = [&](int v) { return sqlite.scanned({"tag"}, six(tags[v], v), 0); },
                     .goal = goal,
                     .bytes = tagged});
    };
    const goals many{.sqlite = 1, .scan = 20}, few{.scan = 20, .ms = 20};
    parts(tenth, "tag, six parts, a tenth", many);
    parts(threehundredth, "tag, six parts, a three-hundredth", few);
    // Searched until the texts know what they cannot hold; the slowest of these searches is the one that finds it out.
    std::vector<double> first;
    for (int i = 0; i < 12; ++i) {
        const auto wanted = fmt::format("nowhere {}", i);
        first.push_back(once([&] {
            openlist({{}, shopfilter{.itemnamefilter = wanted, .itemdescfilter = wanted}}, 0);
        }));
    }
    const auto slowest = *std::ranges::max_element(first);
    const auto anywhere = [&](const auto& words, const char* what, goals goal) {
        const texts fields{"name", "describe"};
        out.measure({.what = what,
                     .ours =
                         [&](int v) {
                             const auto wanted = filterof(pair(words, v));
                             return query{{}, shopfilter{.itemnamefilter = wanted, .itemdescfilter = wanted}};
                         },
                     .sqlite = [&](int v) { return sqlite.bytrigrams(fields, pair(words, v), 0); },
                     .scan = [&](int v) { return sqlite.scanned(fields, pair(words, v), 0); },
                     .goal = goal,
                     .bytes = written});
    };
    anywhere(thirtieth, "name or description, 2 parts, 15th", many);
    anywhere(sixhundredth, "name or description, 2 parts, 300th", few);
    fmt::print("name or description, nowhere: the first {:.3f} ms, once {:.3f}, from then on {:.3f}\n", first.front(),
               slowest, first.back());
}

void measureturning(table& sqlite) {
    fmt::print("\n{:<38}{:>10}{:>10}{:>10}\n", "page turned, list open: ms", "first", "ours", "SQLite");
    const std::tuple<sortstep, const char*, const char*> orders[] = {{asread, "as read", "id"},
                                                                     {byprice, "by price", "price"},
                                                                     {byname, "by name", "name"},
                                                                     {bytag, "by tag", "tag, price"},
                                                                     {byleft, "by pieces left", "leftnum"}};
    for (const auto& [order, what, sql] : orders) {
        auto& state = getplayershopstate(viewer);
        const double first = once([&] { openlist({.standing = {}, .search = {}, .order = order}, 0); });
        const auto pages = static_cast<std::size_t>(state.sellreadlist.lastpage());
        std::vector<double> ours, theirs;
        bool agrees = true;
        for (std::size_t i = 1; i <= 15; ++i) {
            state.sellpage = static_cast<std::int32_t>(pages * i / 17);
            answer page;
            std::int64_t other = 0;
            ours.push_back(once([&] { page = openpage(state); }));
            theirs.push_back(once([&] { other = sqlite.pageof(sql, "", static_cast<std::size_t>(state.sellpage)); }));
            agrees = agrees && page.prices == other;
        }
        fmt::print("{:<38}{:>10.3f}{:>10.3f}{:>10.3f}  {}{}\n", what, first, middle(ours), middle(theirs),
                   middle(ours) <= 1 ? "met" : "missed: 1 ms", agrees ? "" : ", THE ANSWERS DIFFER");
    }
}

void verdict(const std::string& what, double value, const char* unit, double most) {
    fmt::print("{:<62}{:>12.3f} {}  {}\n", what, value, unit,
               most == 0       ? ""
               : value <= most ? "met"
                               : fmt::format("missed: {}", most));
    std::fflush(stdout);
}

// Bytes a row of the list that a player has open, when nobody else has it and when somebody has.
void measurelist(const char* what, const query& asked) {
    for (const auto& player : {viewer, secondviewer}) getplayershopstate(player).sellreadlist.clear();
    std::size_t before = heap(), rows = 0;
    for (const auto& player : {viewer, secondviewer}) {
        rows = openlist(asked, 0, player).hits;
        verdict(fmt::format("heap of an open list, {}{}", what, player == viewer ? "" : ", of one more player"),
                static_cast<double>(heap() - before) / static_cast<double>(std::max<std::size_t>(rows, 1)),
                "bytes a row", 12);
        before = heap();
    }
}

void measuretrades(const std::string& shop) {
    constexpr int trades = 1000;
    const auto always = [] { return true; };
    auto& all = catalogueof(sell);
    double after = 0;
    for (int i = 0; i < trades; ++i) {
        trade(shop, i % 2 == 0 ? 1 : -1);
        after += once([&] { (void)all.uptodate(always); });
    }
    verdict("a trade in a shop of 50, for the catalogue: each asked for", after / trades * 1000, "us", 50);
    for (int i = 0; i < trades; ++i) trade(shop, i % 2 == 0 ? 1 : -1);
    const double together = once([&] { (void)all.uptodate(always); });
    verdict("  the same, asked for once behind 1000", together / trades * 1000, "us", 50);
    const double nothing = once([&] {
        for (int i = 0; i < trades; ++i) (void)all.uptodate(always);
    });
    verdict("  asked for with nothing changed", nothing / trades * 1000, "us", 0);
}

double readfiles(const fs::path& data, int shops) {
    return once([&] {
        for (int shop = 0; shop <= shops; ++shop) {
            std::ostringstream all;
            all << std::ifstream(data / (xuidof(shop) + ".json")).rdbuf();
        }
    });
}

struct scratch {
    const fs::path path = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    ~scratch() { fs::remove_all(path); }
};

void run(int shops, int goods) {
    const scratch directory;
    const fs::path data = directory.path / "plugins/Ordomart/data";
    writeshops(data, shops, goods);
    host::ServerOptions options;
    options.directory = directory.path.string();
    options.module = MODULE_PATH;
    options.moneylibrary = "none";
    options.manual = true;
    options.quiet = true;
    host::Server server(options);
    server.start();
    const std::string tradeshop = xuidof(shops);
    columns has;
    foreachgood(shops, goods, [&](int, int, const good& of) {
        if (of.left == 0) return;
        ++has.rows;
        has.textbytes += of.name.size() + of.describe.size();
    });
    const auto rows = static_cast<double>(has.rows);
    fmt::print("\n==== {} shops of {} goods: {} rows with something left, {} MB of names and descriptions\n", shops,
               goods, has.rows, has.textbytes / 1000000);

    const double reading = readfiles(data, shops);
    double plain[2];
    for (const int kind : {sell, recycle})
        plain[kind] = once([&] {
            for (int shop = 0; shop <= shops; ++shop) (void)loadshopdata(xuidof(shop), kind);
        });
    malloc_trim(0);
    const std::size_t empty = heap();
    const double cold = once([&] { openlist({}, 0); });
    const std::size_t opened = heap();
    const double coldother = once([] { recycleshop::prepareglobalrecycleshopfilterforplayer(viewer); });
    getplayershopstate(viewer).recyclereadlist.clear();
    catalogueof(recycle).clear();
    fmt::print(
        "cold: goods {:.0f} ms, commissions {:.0f} ms more; plain parser {:.0f} and {:.0f} ms; files read {:.0f} ms\n",
        cold, coldother, plain[sell], plain[recycle], reading);
    verdict("cold list of goods, of the plain parser's time", cold / plain[sell], "x", 0.33);
    verdict("both lists, of the plain parser's time", (cold + coldother) / (plain[sell] + plain[recycle]), "x", 0.33);

    std::optional<table> sqlite;
    std::size_t before = heap();
    const double loading = once([&] { sqlite.emplace(shops, goods); });
    const std::size_t tablebytes = heap() - before;
    const double trigrams = once([&] { sqlite->addtrigrams(); });
    fmt::print("SQLite: filled and indexed in {:.0f} ms, {:.0f} bytes a row; trigrams {:.0f} ms, {:.0f} bytes a row\n",
               loading, static_cast<double>(tablebytes) / rows, trigrams,
               static_cast<double>(heap() - before - tablebytes) / rows);

    globalruntimeshopmanager.bringin(tradeshop, sell);
    measureturning(*sqlite);
    measurequeries(*sqlite, has, tradeshop);
    fmt::print("\n");
    measurelist("unfiltered, by price", {});
    measurelist("tag, six parts", {{.itemtagfilter = filterof(six(tenth[0], 0))}, {}});
    measurelist("tag \"o\", by name", {{.itemtagfilter = "o"}, {}, byname});
    measuretrades(tradeshop);

    // What goes when the catalogue is emptied is the catalogue's; the rest, less what was there before, the shops'.
    for (const auto& player : {viewer, secondviewer}) getplayershopstate(player).sellreadlist.clear();
    before = heap();
    catalogueof(sell).clear();
    const std::size_t catalogued = before - heap();
    verdict("heap of the catalogue, all orders made", static_cast<double>(catalogued) / rows, "bytes a row", 260);
    verdict("heap of catalogue and shops in the cache, opened once", static_cast<double>(opened - empty) / rows,
            "bytes a row", 0);
    sqlite.reset();
    server.stop();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3) {
        run(std::atoi(argv[1]), std::atoi(argv[2]));
        return 0;
    }
    // Each in a process of its own, since the market of the first would still be in memory in the second.
    for (const auto& [shops, goods] : {std::pair{2000, 250}, std::pair{100000, 10}}) {
        int status = 0;
        const auto child = ::fork();
        if (child == 0) {
            run(shops, goods);
            std::fflush(stdout);
            ::_exit(0);
        }
        if (child < 0 || ::waitpid(child, &status, 0) < 0 || status != 0) return 1;
    }
    return 0;
}
