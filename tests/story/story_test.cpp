// One long random story of the whole market: after every step the books must be right (books.h). A step is an operation
// (operations.cpp), who does it, and a number that all his choices come from; a story that fails is told again with
// fewer and fewer steps, and what is left is printed as a table of steps.
//
//   ORDOMART_SEEDS="7 8 9"  tells other stories      ORDOMART_STEPS=20000  tells longer ones
#include <cstdlib>
#include <sstream>

#include "tests/story/books.h"
#include "tests/story/operations.h"

using namespace story;

namespace {

struct step {
    std::string what;
    std::size_t who;
    std::uint32_t luck;
};
using steps = std::vector<step>;

steps invented(std::uint64_t seed, std::size_t length) {
    std::mt19937_64 random(seed);
    constexpr std::size_t whos[] = {0, 1, 2, theoperator, theoperator};
    std::vector<const char*> names;
    for (const auto& operation : operations()) names.insert(names.end(), operation.weight, operation.name);
    steps made;
    while (made.size() < length)
        made.push_back(
            {names[random() % names.size()], whos[random() % std::size(whos)], static_cast<std::uint32_t>(random())});
    return made;
}

class Story {
public:
    std::map<std::string, int> happened;  // by what the books say, and with the operation in front

    explicit Story(bool llmoney) : llmoney_(llmoney), world_(llmoney), now_(world_.look()) {}

    // What is wrong behind the step; empty when all is well.
    std::string plays(const step& s) {
        const auto found = std::ranges::find(operations(), s.what, [](const auto& o) { return std::string(o.name); });
        const operation& o = *found;
        const auto last = s.what == "undo" ? world_.lastentry() : 0;
        if (!world_.ishere(s.who) && o.behind == holds::books) return {};
        world_.begins();
        Dice dice(s.luck);
        const deed before{s.who,
                          world_.isalive(s.who),
                          world_.isoperator(s.who),
                          llmoney_,
                          {},
                          o.name == std::string("ban") || o.name == std::string("unban")};
        refuse(dice);
        o.run(world_, s.who, dice);
        faulty::refuses = nullptr;
        for (std::size_t who = 0; who < players; ++who)
            if (world_.ishere(who)) (void)world_.pending(who);
        const picture then = std::exchange(now_, world_.look());
        if (s.what == "undo" && world_.lastentry() != last) ++happened["undo"];
        if (++steps_ % 20 == 0 || s.what == "undo")
            if (auto differs = world_.audit(); !differs.empty()) return "the audit: " + differs;
        if (o.behind == holds::nothing) return {};
        if (o.behind == holds::everything) return unchanged(o, then);
        deed by = before;
        by.asked = world_.answered();
        auto [what, fault, inbanned] = book(then, now_, by);
        if (fault.empty() && o.list != madelist::none) fault = pricefault(then);
        if (fault.empty() && o.list == madelist::all && inbanned) fault = "a list shows a banned shop";
        if (what == "nothing") return fault;
        ++happened[what];
        ++happened[s.what + ": " + what];
        return fault;
    }

private:
    // Now and then whoever keeps the money refuses one movement of the step.
    void refuse(Dice& dice) {
        if (!dice.oneof(12)) return;
        faulty::refuses = [this, calls = 0, which = dice.below(2)](std::string_view) mutable {
            if (calls++ != which) return false;
            ++happened["money refused"];
            return true;
        };
    }
    std::string pricefault(const picture& then) {
        if (world_.answered() && quoteof(*world_.answered())) return wrongprice(then, now_, *world_.answered());
        return {};
    }
    std::string unchanged(const operation& o, const picture& then) {
        if (o.name == std::string("forget"))
            for (std::size_t who = 0; who < players; ++who)  // the shared shop stays
                for (const auto kind : {sells, recycles})
                    if (now_.revisions[who][kind] == then.revisions[who][kind])
                        return "a shop that is read again is at a revision that an open form may have";
        if (o.name != std::string("leave or come") && !world_.filesareright(now_)) return "a file is not the shop";
        bool same = now_.money == then.money && now_.hands == then.hands && now_.ground == then.ground;
        for (std::size_t who = 0; who < parties; ++who)
            for (const auto kind : {sells, recycles})
                same &= lasting(now_.shops[who][kind], now_.now) == lasting(then.shops[who][kind], now_.now);
        return same ? "" : "something changed on the way";
    }

    const bool llmoney_;
    World world_;
    picture now_;
    int steps_ = 0;
};

// The fault, with the steps behind it gone; empty when the story holds.
std::string tell(Story& story, steps& told) {
    for (std::size_t i = 0; i < told.size(); ++i) {
        std::string fault;
        try {
            fault = story.plays(told[i]);
        } catch (const std::exception& e) {
            fault = e.what();
        }
        if (fault.empty()) continue;
        told.resize(i + 1);
        return fault;
    }
    return {};
}

// Drops what a failure does not need, large pieces first, as long as there is patience for so many steps.
template <class Step, class Fails>
std::vector<Step> shortened(std::vector<Step> all, const Fails& fails, std::size_t patience) {
    for (std::size_t piece = all.size() / 2; piece != 0; piece /= 2)
        for (std::size_t at = 0; at < all.size() && patience >= all.size();) {
            patience -= all.size();
            std::vector<Step> fewer(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(at));
            for (std::size_t i = at + piece; i < all.size(); ++i) fewer.push_back(all[i]);
            if (fails(fewer))
                all = std::move(fewer);
            else
                at += piece;
        }
    return all;
}

// What the usual stories must come to, so that the books have something to say.
constexpr const char* musthappen[] = {"upload",
                                      "replenish",
                                      "set stock",
                                      "adjust",
                                      "take off",
                                      "discount",
                                      "lapse",
                                      "edit",
                                      "fee kept",
                                      "purchase",
                                      "purchase from an operator",
                                      "publish",
                                      "raise",
                                      "lower",
                                      "end",
                                      "pick up",
                                      "sale",
                                      "sale to an operator",
                                      "ban",
                                      "unban",
                                      "undo",
                                      "money refused"};

void tellalongstory(std::uint64_t seed, std::size_t length, bool llmoney, std::map<std::string, int>& happened) {
    SCOPED_TRACE(fmt::format("seed {}, {}", seed, llmoney ? "LLMoney" : "scores"));
    auto told = invented(seed, length);
    std::string fault;
    {
        Story story(llmoney);
        fault = tell(story, told);
        for (const auto& [what, times] : story.happened) happened[what] += times;
        if (fault.empty()) return;
    }
    const auto found = fmt::format("step {}: {}", told.size(), fault);
    const auto fails = [&](steps& fewer) {
        Story again(llmoney);
        const auto its = tell(again, fewer);
        if (!its.empty()) fault = its;
        return !its.empty();
    };
    told = shortened(std::move(told), fails, 15000);
    std::string text;
    for (const auto& [what, who, luck] : told) text += fmt::format("{{\"{}\", {}, {}U}},\n", what, who, luck);
    ADD_FAILURE() << found << "\nin short: " << fault << "\n" << text;
}

void telllongstories(bool llmoney) {
    const char *const seeds = std::getenv("ORDOMART_SEEDS"), *const length = std::getenv("ORDOMART_STEPS");
    std::istringstream given(seeds != nullptr ? seeds : llmoney ? "1 6" : "3 4");
    std::map<std::string, int> happened;
    for (std::uint64_t seed = 0; given >> seed;)
        tellalongstory(seed, length != nullptr ? std::strtoull(length, nullptr, 10) : 2500, llmoney, happened);
    for (const char* what : musthappen)
        EXPECT_TRUE(seeds != nullptr || length != nullptr || happened[what] > 0) << "never: " << what;
    for (const auto& [what, times] : happened)
        if (seeds != nullptr) fmt::print("{:5} {}\n", times, what);
}

}  // namespace

TEST(MarketStory, TheBooksAreRightInScores) { telllongstories(false); }
TEST(MarketStory, TheBooksAreRightInLLMoney) { telllongstories(true); }

TEST(MarketStory, AFailureIsToldInShort) {
    std::vector<int> all(1000);
    for (int i = 0; i < 1000; ++i) all[static_cast<std::size_t>(i)] = i;
    const auto fails = [](const std::vector<int>& fewer) {
        return std::count(fewer.begin(), fewer.end(), 17) + std::count(fewer.begin(), fewer.end(), 842) == 2;
    };
    EXPECT_EQ(shortened(all, fails, 1000000), (std::vector<int>{17, 842}));
    EXPECT_TRUE(fails(shortened(all, fails, 15000))) << "patience ends, and what is left still fails";
}
