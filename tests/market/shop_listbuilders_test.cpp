// The builders of lists, and what may happen while they are at it: on threads that run when the test says so, so that
// it happens at a known place of a walk.
#include <gtest/gtest.h>

#include <stdexcept>
#include <system_error>

#include "plugin/shopsystem/listbuilders.h"
#include "plugin/shopsystem/lists.h"
#include "tests/market/shophost.h"

using namespace market_tests;
using namespace shopsystem;
using market_tests::json;

namespace {

class Builders : public Counted {
public:
    bool isstopping = false, isfull = false;

    void start(std::function<void()> body) override {
        if (isfull) throw std::system_error(EAGAIN, std::generic_category());
        started_.push_back(std::move(body));
    }
    bool stopping() const override { return isstopping; }
    [[nodiscard]] std::size_t started() const { return started_.size(); }
    // Also from a builder, as the other one beside it.
    void run() {
        while (!started_.empty()) {
            const auto body = std::move(started_.front());
            started_.erase(started_.begin());
            body();
        }
    }

private:
    std::vector<std::function<void()>> started_;
};

constexpr int longshop = 300;

std::string names(const std::string& player) {
    std::string all;
    const auto& list = getplayershopstate(player).sellreadlist;
    for (std::size_t i = 0; i < list.size(); ++i) all += list.row(i).shopitemname + " ";
    return all;
}

// Three shops, of which "b" alone is long: more than one turn reads it.
struct Bazaar : ShopHost {
    Builders builders;
    std::string made;  // who had which list, in this order
    static constexpr char pictures[2] = {};
    std::shared_ptr<int> kept = std::make_shared<int>();  // by every errand that is not over

    Bazaar() {
        services.background = &builders;
        for (const char* xuid : {"a", "b", "c"}) {
            json rows = json::array();
            for (int i = 0; i < (*xuid == 'b' ? longshop : 2); ++i)
                rows.push_back(
                    {{"shopitemname", xuid + std::to_string(i)}, {"shopitemleftnum", 1}, {"allowbesearched", true}});
            put(xuid, {{"items", rows}});
        }
        for (const char* player : {"1", "2", "a"}) clears(player);
    }
    ~Bazaar() { builders.run(); }

    static playershopstate& of(const std::string& player) { return getplayershopstate(player); }
    static void clears(const std::string& player) {
        of(player).sellreadlist.clear();
        of(player).filter = of(player).searchfilter = {};
        of(player).searchmode = false;
    }
    static std::uint64_t session(const std::string& player) { return static_cast<std::uint64_t>(player[0]); }
    static std::size_t rows(const std::string& player) { return of(player).sellreadlist.size(); }
    void orders(const std::string& player, listkind kind = listkind::globalsell, const std::string& shop = {}) {
        works(
            player,
            [this, player, _ = kept](listwork& work) {
                if (work.makelist()) made += player + " ";
            },
            kind, shop);
    }
    void works(const std::string& player, std::function<void(listwork&)> body, std::optional<listkind> kind = {},
               const std::string& shop = {}, bool isslow = false) {
        listbuilders.order({.session = session(player),
                            .xuid = player,
                            .picture = &pictures[kind ? 1 : 0],
                            .list = kind,
                            .shop = shop,
                            .isslow = isslow,
                            .body = std::move(body)});
    }
    // Once the file of the shop has been read, before its rows are.
    void behind(const std::string& shop, const std::function<void()>& happens) {
        disk.behindtheread = [this, shop, happens] {
            if (disk.reads.contains(path(shop)))
                happens();
            else
                behind(shop, happens);
        };
    }
    // Before the n-th turn that is taken from now on.
    void beforeturn(int n, const std::function<void()>& happens) {
        turn.before = [this, n, happens] { n == 1 ? happens() : beforeturn(n - 1, happens); };
    }
    [[nodiscard]] bool isread(const std::string& shop) const { return disk.reads.contains(path(shop)); }
};

constexpr std::size_t allrows = longshop + 4;

TEST(ListBuilders, EqualOrdersShareAWalkThatBeganBehindThem) {
    struct {
        const char* name;
        std::function<void(Bazaar&)> differs;
        bool shared;
    } const cases[] = {
        {"nothing", [](Bazaar&) {}, true},
        {"filter", [](Bazaar& b) { b.of("2").filter.minsellcount = 0; }, false},
        {"search", [](Bazaar& b) { b.of("2").searchmode = true, b.of("2").searchfilter.itemnamefilter = "0"; }, false},
        {"an idle search", [](Bazaar& b) { b.of("2").searchfilter.itemnamefilter = "0"; }, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Bazaar b;
        c.differs(b);
        for (const char* player : {"a", "1", "2"}) b.orders(player);
        EXPECT_EQ(b.builders.started(), 2U);
        // Too late for the first walk.
        b.behind("b", [&b] { b.orders("d"); });
        b.builders.run();
        EXPECT_EQ(b.made.size(), 8U) << b.made;
        EXPECT_EQ(b.of("1").sellreadlist == b.of("2").sellreadlist, c.shared) << "by the same rows in memory";
        EXPECT_EQ(b.rows("1"), allrows);
        EXPECT_EQ(b.rows("a"), allrows - 2) << "his own are not shown to him";
        EXPECT_EQ(b.rows("d"), allrows);
        b.clears("d");
    }
    Bazaar b;
    b.orders("1", listkind::singlesell, "a");
    b.orders("2", listkind::singlesell, "c");
    b.builders.run();
    EXPECT_EQ(names("1") + names("2"), "a0 a1 c0 c1 ");
}

// What an order takes with it, and what may still become of its rows.
TEST(ListBuilders, TheWorldGoesOnUnderAWalk) {
    {
        SCOPED_TRACE("another search is set, and another filter");
        Bazaar b;
        auto& state = b.of("1");
        state.searchmode = true;
        state.searchfilter.itemnamefilter = "a";
        b.orders("1");
        EXPECT_FALSE(state.searchmode) << "used up";
        b.behind("b", [&] {
            state.searchmode = true;
            state.searchfilter.itemnamefilter = "c";
            state.filter.itemnamefilter = "1";
        });
        b.builders.run();
        EXPECT_EQ(names("1"), "a0 a1 ");
        EXPECT_TRUE(state.searchmode);
        b.orders("1");
        EXPECT_EQ(names("1"), "") << "nothing can be chosen that is not shown";
        b.builders.run();
        EXPECT_EQ(names("1"), "c1 ");
    }
    for (const auto kind : {listkind::globalsell, listkind::singlesell}) {
        SCOPED_TRACE("banned in the middle of a long shop");
        Bazaar b;
        (void)sells("b");
        b.orders("1", kind, "b");
        b.beforeturn(kind == listkind::globalsell ? 7 : 4, [] { sells("b").setbanstate(true, -1, ""); });
        b.builders.run();
        EXPECT_EQ(b.rows("1"), kind == listkind::globalsell ? 4U : longshop);
    }
    {
        SCOPED_TRACE("changed in the middle of a long shop");
        Bazaar b;
        (void)sells("b");
        b.orders("1", listkind::singlesell, "b");
        b.beforeturn(4, [] {
            sells("b").items[0]["shopitemname"] = "other";
            sells("b").markshopchanged();
        });
        b.builders.run();
        EXPECT_TRUE(names("1").starts_with("other b1 "));
        EXPECT_EQ(b.rows("1"), longshop);
    }
    {
        SCOPED_TRACE("made anew while it is being sorted");
        Bazaar b;
        auto& state = b.of("1");
        preparesinglesell("1", "a");
        state.filterstep = 1;
        b.beforeturn(2, [] { preparesinglesell("1", "c"); });
        sortsellreadlist(state);
        EXPECT_EQ(names("1"), "c0 c1 ");
        EXPECT_EQ(state.sellreadlist.order(), asread) << "the order is still owed";
        state.filterstep = 0;
    }
}

// Whatever an errand throws is told and ends it alone; a shop that cannot be read is left out.
TEST(ListBuilders, AThrowEndsOneErrandAndNoBuilder) {
    Bazaar b;
    b.orders("1");
    b.orders("2");
    b.behind("b", [] { throw 5; });
    b.works("c", [](listwork&) { throw std::runtime_error("its body"); });
    b.builders.run();
    EXPECT_EQ(b.made, "2 ") << "made for the one behind";
    EXPECT_EQ(b.rows("2"), allrows);
    EXPECT_EQ(b.told("An error was caught during the prehandlemain process."), 1);
    EXPECT_EQ(b.told("its body"), 1);
    forgetshops();
    b.disk.reads.clear();
    b.behind("b", [] { throw std::runtime_error("the disk has gone"); });
    b.orders("1");
    b.builders.run();
    EXPECT_EQ(names("1"), "a0 a1 c0 c1 ");
    EXPECT_EQ(b.told("the disk has gone; it is left out"), 1);

    // No thread is to be had: whoever orders is told and waits for nothing.
    b.builders.isfull = true;
    EXPECT_THROW(b.orders("1"), std::system_error);
    auto waste = std::make_shared<int>();
    const std::weak_ptr<int> left = waste;
    listbuilders.discard(std::move(waste));
    b.builders.isfull = false;
    b.made.clear();
    b.orders("2");
    EXPECT_FALSE(left.expired()) << "freed by a builder";
    b.builders.run();
    EXPECT_TRUE(left.expired());
    EXPECT_EQ(b.made, "2 ");
}

TEST(ListBuilders, WhoeverLeavesDropsHisListAndItsMemory) {
    for (const bool alone : {true, false}) {
        SCOPED_TRACE(alone);
        Bazaar b;
        b.orders("1");
        if (!alone) b.orders("2");
        const auto leaves = [&b] {
            listbuilders.drop(b.session("1"));
            b.of("1").resetatleave();
        };
        b.behind("b", leaves);
        b.builders.run();
        EXPECT_EQ(b.isread("c"), !alone) << "nobody waits for it";
        EXPECT_EQ(b.made, alone ? "" : "2 ");
        EXPECT_EQ(b.rows("1"), 0U);
        EXPECT_EQ(b.kept.use_count(), 1);

        b.orders("1");
        leaves();
        EXPECT_EQ(b.kept.use_count(), 1) << "what still waited";
        b.builders.run();
        EXPECT_EQ(b.made, alone ? "" : "2 ");
        b.orders("1");
        b.builders.run();
        ASSERT_EQ(b.rows("1"), allrows);
        leaves();
        EXPECT_EQ(b.rows("1"), 0U);
        EXPECT_NE(b.builders.started(), 0U) << "to free it";
    }
    // One picture of his, and not the others.
    Bazaar b;
    b.orders("1");
    listbuilders.drop(b.session("1"), &b.pictures[0]);
    b.behind("a", [&b] { listbuilders.drop(b.session("1"), &b.pictures[0]); });
    b.builders.run();
    EXPECT_EQ(b.made, "1 ");
}

// One in work and the newest behind it, in their order; what needs no walk does not wait for one.
TEST(ListBuilders, TheNewestErrandOfAPlayerCountsAndQuickOnesGoFirst) {
    Bazaar b;
    const auto says = [&b](const char* what) { return [&b, what](listwork&) { b.made += std::string(what) + " "; }; };
    b.works("1", says("replaced"));
    b.orders("1");
    b.behind("a", [&] {
        b.works("1", says("replaced"));
        b.works("1", says("newest"));
        b.works("2", says("quick"));
        b.works("c", says("slow"), {}, {}, true);
    });
    b.builders.run();
    EXPECT_EQ(b.made, "quick 1 newest slow ");
}

// A stop comes through between two shops, with nothing begun behind it.
TEST(ListBuilders, AStopEndsAWalkAtItsNextShop) {
    Bazaar b;
    b.orders("1");
    b.orders("2", listkind::singlesell, "c");
    b.behind("b", [&b] {
        b.orders("a");
        b.works("c", [&b](listwork&) { b.made += "begun behind it"; });
        b.builders.isstopping = true;
    });
    b.builders.run();
    EXPECT_FALSE(b.isread("c"));
    EXPECT_EQ(b.made, "");
    EXPECT_EQ(b.rows("1"), 0U);
    EXPECT_EQ(b.kept.use_count(), 1) << "what waited is dropped";
    b.builders.isstopping = false;
    b.orders("1");
    b.builders.run();
    EXPECT_EQ(b.made, "1 ") << "no builder is taken for running";
}

}  // namespace
