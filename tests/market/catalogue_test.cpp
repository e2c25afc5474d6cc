// Lists against their plain definition: a walk over all files and rows with the filters, and a stable sort. Between the
// lists the shops change in all the ways there are. CATALOGUE_SEED and CATALOGUE_ROUNDS make longer and other runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <tuple>

#include "plugin/shopsystem/lists.h"
#include "plugin/shopsystem/rowkinds.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shopfilter.h"
#include "plugin/shopsystem/shoprows.h"
#include "plugin/shopsystem/textfilter.h"
#include "tests/market/shophost.h"

using namespace shopsystem;
using namespace std::string_literals;
using market_tests::json;

namespace {

auto fields(const globalsellshopitem& r) {
    return std::tie(r.xuid, r.index, r.revision, r.shopname, r.isopshop, r.shopitemname, r.shopitemtag,
                    r.shopitemdescribe, r.itemnbt, r.shopitemleftnum, r.price, r.realprice, r.allowbesearched);
}
auto fields(const globalrecycleshopitem& r) {
    return std::tie(r.xuid, r.index, r.revision, r.shopname, r.isopshop, r.recycleitemname, r.recycleitemtag,
                    r.recycleitemdescribe, r.itemnbt, r.recycleitemleftwanna, r.nowhasrecyclenum, r.offer,
                    r.allowbesearched, r.filterauxordamage, r.filterench, r.filteritemnbt);
}

template <class Rows>
constexpr bool sells = Rows::type == sell;

enum class listof { every, system, single };

struct World : market_tests::ShopHost {
    market_tests::StampedFiles store;
    std::mt19937 random;
    std::vector<std::string> keys = {"a",   "a-b", "a.b", "a b", "ab", "a0", "systemshop", "苹果",
                                     "a--", "-",   "a_b", "a!",  "b",  "B",  "2535"};
    shopfilter standing, search;
    std::vector<std::string> fronts;  // where shelves begin
    std::string written;              // the name or the description of the last good
    std::size_t compared = 0, shown = 0, longest, mostshelves = 0;
    const int crowded;  // the kind with the longest shops

    World(unsigned seed, std::size_t shops, std::size_t rows)
        : random(seed), longest(rows), crowded(static_cast<int>(seed % 2)) {
        services.files = &store;
        store.islost = seed % 4 == 3;
        store.directories = disk.directories;
        store.contents[ordomart::paths::data + "readme.txt"] = "no shop";
        for (std::size_t i = keys.size(); i < shops; ++i) keys.push_back("k" + std::to_string(below(1000)));
        for (const auto& key : keys)
            if (below(8) != 0) writefile(key);
    }
    ~World() {
        settle();
        services.files = &disk;
        ordomart::enablesystemshopinglobalshop = false;
    }

    std::size_t below(std::size_t n) { return random() % n; }
    bool oneof(std::size_t n) { return below(n) == 0; }
    template <class T>
    const T& any(const std::vector<T>& of) {
        return of[below(of.size())];
    }
    std::string text() {
        static const std::vector<std::string> pieces = {"apple", "app", "sword", "red ", "苹",   "果",
                                                        "\0"s,   "$",   "é",     "le",   "Apple"};
        std::string made;
        for (auto n = below(4); n > 0; --n) made += any(pieces);
        if (oneof(3)) made += "w" + std::to_string(10 + below(90));  // rare enough for rows to be skipped
        return made;
    }
    std::string tag() {
        if (oneof(4)) return "t" + std::to_string(below(60));  // one stands elsewhere on each shelf
        return any<std::string>({"", "food", "tool", "食物", "foo", "t\0l"s, "é"});
    }
    std::string wanted(std::string part) {
        if (oneof(3) && !written.empty()) part = written.substr(below(written.size()));
        return part + any<std::string>({"", "", "$", "{||}", "{||}sword", "${||}苹果$", "{||}果"});
    }

    json good(int kind) {
        const bool searchable = !oneof(9);
        const int left = any<int>({-1, 0, 1, 1, 2, 5, 64}), price = static_cast<int>(below(oneof(2) ? 5 : 1000));
        const auto name = text(), about = text();
        written = oneof(2) ? name : about;
        if (kind == sell)
            return {
                {"shopitemtag", tag()},    {"shopitemname", name}, {"shopitemdescribe", about},    {"itemnbt", text()},
                {"shopitemleftnum", left}, {"price", price},       {"allowbesearched", searchable}};
        return {{"recycleitemtag", tag()},       {"recycleitemname", name},
                {"recycleitemdescribe", about},  {"itemnbt", text()},
                {"recycleitemleftwanna", left},  {"offer", price},
                {"nowhasrecyclenum", below(3)},  {"allowbesearched", searchable},
                {"filterauxordamage", oneof(2)}, {"filterench", oneof(2)},
                {"filteritemnbt", oneof(2)}};
    }
    // Beyond 32 bits.
    static json large(json row) {
        row["price"] = row["offer"] = (std::int64_t{1} << 32) + 5;
        return row;
    }
    std::int64_t soon() { return clock.seconds + static_cast<std::int64_t>(below(5)); }
    json discounts() {
        json all = json::array();
        for (auto n = below(4); n > 0; --n)
            all.push_back({{"shopitemtag", tag()},
                           {"discount", oneof(20) ? "" : any<std::string>({"%50", "-3", "%99"})},
                           {"timeend", soon()}});
        return all;
    }
    json section(int kind) {
        json rows = json::array();
        const auto most = kind == crowded ? longest : longest / 8;
        for (auto n = oneof(6) ? 0 : below(most + 1); n > 0; --n) rows.push_back(good(kind));
        if (oneof(6)) rows.push_back(oneof(2) ? json{{"price", 3.7}, {"offer", 3.7}} : large(good(kind)));
        json made = {{"ownername", text()},     {"describe", text()},          {"shopname", text()},
                     {"isopshop", oneof(4)},    {"shopdiscount", discounts()}, {"sellcount", below(4)},
                     {"salesvolume", below(4)}, {"recycleamount", below(4)},   {"recyclecost", below(4)}};
        if (!oneof(20)) made[kind == sell ? "items" : "recycleitems"] = oneof(20) ? json() : rows;
        if (oneof(4))
            made["shopstate"] = {{"isbaned", true}, {"bantimeend", oneof(2) ? -1 : soon()}, {"banreason", "r"}};
        return made;
    }
    void writefile(const std::string& key) {
        auto& text = store.contents[path(key)];
        text = json({{"sell", section(sell)}, {"recycles", section(recycle)}}).dump();
        if (const auto at = text.find("\"offer\":"); oneof(6) && at != text.npos) text.insert(at, "\"offer\":2,");
    }

    void change() {
        const auto key = fronts.size() < 2 || oneof(3) ? any(keys) : fronts.back();
        const int kind = static_cast<int>(below(2)), what = static_cast<int>(below(15)) - 2;
        if (what <= 0) {
            clock.seconds += static_cast<std::int64_t>(below(5)) - 1;
            // Whoever sees that a ban is over takes it off, and no list need know that it held a second ago.
            for (const auto& each : keys)
                for (const int of : {sell, recycle})
                    if (auto* shop = globalruntimeshopmanager.cached(each, of))
                        if (shop->isbaned && !shop->isbanned()) catalogueof(of).changed(each);
        } else if (what == 1) {
            if (oneof(2)) ticks(2);
            (void)catalogueof(kind).uptodate([this] { return !oneof(3); }, oneof(3) ? key : ""s);
        } else if (what == 2) {
            forget();
        } else if (what == 3) {
            if (oneof(2)) forget();
            oneof(3) ? (void)store.contents.erase(path(key)) : writefile(key);
            if (oneof(9)) store.contents[path(key)] = "{";
        } else if (market_tests::fault([&] { changeshop(globalruntimeshopmanager.getshop(key, kind), what); }) ==
                   "nothing") {
            globalruntimeshopmanager.getshop(key, kind).markshopchanged();
        }
    }
    // Not the ones that the ticks before have seen asked for.
    void forget() {
        ticks(2);
        const bool all = oneof(2);
        for (const auto& key : keys)
            for (const int kind : {sell, recycle})
                if (auto* shop = globalruntimeshopmanager.cached(key, kind); shop != nullptr && (all || oneof(3)))
                    shop->idleticks = maxidleticks + 1;
        ticks(4);
    }
    void changeshop(baseshop& shop, int what) {
        json& goods = shop.goods().list;
        if (!goods.is_array()) goods = json::array();
        const auto at = goods.empty() ? 0 : below(goods.size());
        if (what == 4) {
            shop.setbanstate(oneof(2), oneof(3) ? -1 : soon(), "r");
        } else if (what == 5) {
            (oneof(2) ? shop.ownername : shop.describe) = text();
            shop.shopname = text();
        } else if (what == 6) {
            goods.insert(goods.begin() + static_cast<std::ptrdiff_t>(at), good(shop.kind()));
        } else if (what == 7 && !goods.empty()) {
            goods.erase(at);
        } else if (what == 8 && !goods.empty()) {
            goods[at] = good(shop.kind());
        } else if (auto* const selling = dynamic_cast<sellshop*>(&shop)) {
            if (what == 9) selling->shopdiscount = discounts();
            countup(selling->sellcount, 1);
            countup(selling->salesvolume, 1);
        } else {
            countup(static_cast<recycleshop&>(shop).recycleamount, 1);
            countup(static_cast<recycleshop&>(shop).recyclecost, 1);
        }
        const char* const left = shop.kind() == sell ? "shopitemleftnum" : "recycleitemleftwanna";
        if (what > 9 && !goods.empty()) goods[at][left] = below(3);
    }

    shopfilter filter(std::size_t most) {
        shopfilter made;
        if (oneof(5)) return made.itemtagfilter = tag() + "$", made;
        for (auto n = below(most + 1); n > 0; --n) {
            const auto field = below(10);
            if (field < 2) (field == 0 ? made.ownernamefilter : made.shopdescfilter) = wanted(text());
            if (field == 2 || field == 3) made.itemnamefilter = wanted(text());
            if (field == 4) made.itemdescfilter = wanted(text());
            if (field == 5 || field == 6) made.itemtagfilter = wanted(tag());
            const auto least = static_cast<std::int32_t>(below(4));
            if (field == 7) made.minsellcount = made.minrecyclecost = least;
            if (field == 8) made.minsalesvolume = made.minrecycleamount = least;
        }
        return made;
    }

    template <class Rows>
    struct readrows {
        std::vector<typename Rows::row> rows;
        std::uint32_t revision = 0;
        std::int64_t now = -1;
    };
    std::tuple<std::map<std::string, readrows<sellrows>>, std::map<std::string, readrows<recyclerows>>> known;
    std::map<std::tuple<int, std::string, std::uint32_t>, json> atrevision;  // what a form of it may have shown
    // Row by row, until something changes: a revision never comes back, and prices hold for a second.
    template <class Rows>
    const std::vector<typename Rows::row>& rowsof(const std::string& key) {
        auto& here = std::get<std::map<std::string, readrows<Rows>>>(known)[key];
        auto& shop = Rows::shop(key);
        if (here.now == clock.seconds && here.revision == shop.revision) return here.rows;
        here = {{}, shop.revision, clock.seconds};
        const json& goods = shop.*Rows::records;
        EXPECT_EQ(atrevision.try_emplace({Rows::type, key, shop.revision}, goods).first->second, goods) << key;
        for (int i = 0; goods.is_array() && i < static_cast<int>(goods.size()); ++i)
            (void)market_tests::fault([&] { here.rows.push_back(Rows::at(shop, i)); });
        return here.rows;
    }

    template <class Rows>
    std::vector<typename Rows::row> plain(listof what, const std::string& viewer, const std::string& one,
                                          bool searching) {
        std::vector<std::string> from{one};
        if (what == listof::every) from = shopfilekeys();
        std::vector<typename Rows::row> rows;
        for (const auto& key : from) {
            if (what == listof::every &&
                (key == viewer || (key == "systemshop" && !ordomart::enablesystemshopinglobalshop)))
                continue;
            (void)market_tests::fault([&] {
                auto& shop = Rows::shop(key);
                if (what != listof::single && shop.isbanned()) return;
                for (const auto& row : rowsof<Rows>(key)) {
                    ++compared;
                    if (what != listof::single && !row.allowbesearched) continue;
                    if (!passfilter(standing, row, shop, allof)) continue;
                    if (!searching || passfilter(search, row, shop, anyof)) rows.push_back(row);
                }
            });
        }
        return rows;
    }

    template <class Rows>
    void compare(const readlist<typename Rows::row>& list, const std::vector<typename Rows::row>& wanted) {
        ASSERT_EQ(list.size(), wanted.size());
        for (int n = 0; n < 30 && !wanted.empty(); ++n) {
            const auto i = below(wanted.size());
            ASSERT_EQ(fields(list.row(i)), fields(wanted[i])) << i;
        }
        for (std::size_t i = 0; i < wanted.size(); ++i)
            ASSERT_EQ(fields(list.row(i)), fields(wanted[i])) << i << " by " << int{list.order()};
        shown += wanted.size();
    }

    template <class Rows>
    static void sortplain(std::vector<typename Rows::row>& rows, int step) {
        std::stable_sort(rows.begin(), rows.end(), [step](const auto& a, const auto& b) {
            if (step == byname) return a.*Rows::name < b.*Rows::name;
            if (step == bytag) return std::tie(a.*Rows::tag, a.*Rows::price) < std::tie(b.*Rows::tag, b.*Rows::price);
            return step == byleft ? a.*Rows::left < b.*Rows::left : a.*Rows::price < b.*Rows::price;
        });
    }

    template <class Rows>
    using heldlist = std::pair<readlist<typename Rows::row>, std::vector<typename Rows::row>>;
    std::tuple<heldlist<sellrows>, heldlist<recyclerows>> holding;
    template <class Rows>
    void lookatlist() {
        const auto viewer = oneof(3) ? "nobody"s : any(keys);
        const auto what = any<listof>({listof::every, listof::every, listof::every, listof::system, listof::single});
        const auto one = what == listof::single ? any(keys) : "systemshop"s;
        auto& state = getplayershopstate(viewer);
        state.filter = standing = oneof(3) ? standing : filter(oneof(2) ? 0 : 2);
        state.searchfilter = search = filter(3);
        state.searchmode = oneof(3);
        ordomart::enablesystemshopinglobalshop = oneof(2);
        auto& list = state.*Rows::list;
        list.clear();
        if (oneof(2)) {
            ASSERT_NO_FATAL_FAILURE(searchtexts(*catalogueof(Rows::type).uptodate([] { return true; })));
        }

        const bool searching = state.searchmode && what != listof::single;
        if (what == listof::every)
            sells<Rows> ? sellshop::prepareglobalsellshopfilterforplayer(viewer)
                        : recycleshop::prepareglobalrecycleshopfilterforplayer(viewer);
        else if (what == listof::system)
            sells<Rows> ? preparesystemsell(viewer) : preparesystemrecycle(viewer);
        else
            sells<Rows> ? preparesinglesell(viewer, one) : preparesinglerecycle(viewer, one);
        auto wanted = plain<Rows>(what, viewer, one, searching);
        SCOPED_TRACE(::testing::Message() << "kind " << Rows::type << ", list " << static_cast<int>(what) << " of "
                                          << one << ", viewer " << viewer << ", searching " << searching);
        ASSERT_NO_FATAL_FAILURE(compare<Rows>(list, wanted));
        for (auto step = 1 + below(4); step < sortsteps; step += 1 + below(2)) {
            state.filterstep = static_cast<std::uint8_t>(step);
            sells<Rows> ? sortsellreadlist(state) : sortrecyclereadlist(state);
            auto sorted = wanted;
            sortplain<Rows>(sorted, static_cast<int>(step));
            ASSERT_NO_FATAL_FAILURE(compare<Rows>(list, sorted)) << "step " << step;
        }
        fronts.clear();
        const auto now = catalogueof(Rows::type).uptodate([] { return true; });
        for (const auto& shelf : now->all) fronts.push_back(shelf->firstkey());
        mostshelves = std::max(mostshelves, fronts.size());
        auto& [held, heldrows] = std::get<heldlist<Rows>>(holding);
        ASSERT_NO_FATAL_FAILURE(compare<Rows>(held, heldrows)) << "as it was when it was made";
        held = list;
        heldrows = std::move(wanted);
        if (list.order() != asread) sortplain<Rows>(heldrows, list.order());
        if (oneof(4)) {
            ASSERT_NO_FATAL_FAILURE(lookatshops<Rows>(viewer));
        }
    }
    // Searched so often that rows are skipped which cannot hold the text.
    void searchtexts(const shelves& among) {
        for (const auto& on : among.all) {
            for (const auto& texts : on->texts()) market_tests::searchoften(*texts);
            for (int n = 0; n < 6; ++n) {
                const auto kind = oneof(2) ? rowtexts::name : rowtexts::describe;
                const auto filter = wanted(text());
                const textfilter read(filter);
                std::vector<std::uint64_t> bits(on->size() / 64 + 1);
                for (std::size_t piece = 0; piece < on->texts().size(); ++piece)
                    read.mark(*on->texts()[piece], kind, bits, on->firstoftexts(piece));
                for (shelf::rowno row = 0; read.isset() && row < on->size(); ++row) {
                    const auto at = on->at(row);
                    const auto source = at.texts.at(kind, at.text);
                    ASSERT_EQ((bits[row / 64] >> row % 64 & 1) != 0, filterstring(filter, std::string(source)))
                        << filter << " : " << source << " of " << at.block.shop.xuid;
                }
            }
        }
    }
    template <class Rows>
    void lookatshops(const std::string& viewer) {
        std::vector<std::string> wanted, got;
        const auto incache = [this] {
            return std::count_if(keys.begin(), keys.end(), [](const auto& key) {
                return globalruntimeshopmanager.cached(key, Rows::type) != nullptr;
            });
        };
        const auto before = incache();
        using shop = std::decay_t<decltype(Rows::shop(viewer))>;
        prepareshops<Rows, shop>(viewer, true, [](shop&) { return "card"s; });
        ASSERT_EQ(incache(), before);
        for (const auto& key : shopfilekeys())
            if (key != viewer && (key != "systemshop" || ordomart::enablesystemshopinglobalshop))
                (void)market_tests::fault([&] {
                    const auto& all = rowsof<Rows>(key);
                    const bool hasany = std::any_of(all.begin(), all.end(), [](auto& r) { return r.*Rows::left != 0; });
                    if (!Rows::shop(key).isbanned() && hasany) wanted.push_back(key);
                });
        const auto& list = getplayershopstate(viewer).*Rows::list;
        for (std::size_t i = 0; i < list.size(); ++i) got.push_back(list.row(i).xuid);
        ASSERT_EQ(got, wanted);
    }
};

TEST(Catalogue, ListsAreWhatAPlainWalkOverAllRowsGives) {
    const auto number = [](const char* name, unsigned otherwise) {
        const char* const set = std::getenv(name);
        return set == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(set, nullptr, 10));
    };
    const unsigned first = number("CATALOGUE_SEED", 8), rounds = number("CATALOGUE_ROUNDS", 8);
    std::size_t compared = 0, shown = 0, mostshelves = 0;
    for (unsigned seed = first; seed < first + rounds; ++seed) {
        SCOPED_TRACE(seed);
        const bool islarge = seed % 8 == 0;
        World world(seed, islarge ? 120 : 22, islarge ? 300 : 30);
        for (int step = 0; step < (islarge ? 10 : 60); ++step) {
            SCOPED_TRACE(step);
            for (auto n = world.below(6); n > 0; --n) world.change();
            ASSERT_NO_FATAL_FAILURE(world.oneof(2) ? world.lookatlist<sellrows>() : world.lookatlist<recyclerows>());
        }
        mostshelves = std::max(mostshelves, world.mostshelves);
        compared += world.compared;
        shown += world.shown;
    }
    EXPECT_GT(mostshelves, 1U) << "no shelf was cut";
    std::cout << compared << " rows held against filters, " << shown << " shown\n";
}

}  // namespace
