// A long random story of commissions: after every step the books must be right. A step is data, so that a story that
// fails is told again in short. ORDOMART_SEED tells another one.
#include "tests/market/recycle_story.h"

#include <cstdlib>
#include <random>

using namespace recycling;

namespace {

constexpr int weights[] = {8, 12, 6, 20, 36, 8, 2, 2, 1, 3, 1, 1};  // of the acts, in their order
static_assert(std::size(weights) == std::size(actnames));

std::vector<step> invented(std::uint64_t seed, int length) {
    std::mt19937_64 random(seed);
    const auto below = [&](std::size_t n) { return static_cast<int>(random() % n); };
    std::vector<act> acts;
    for (std::size_t what = 0; what < std::size(weights); ++what)
        acts.insert(acts.end(), static_cast<std::size_t>(weights[what]), static_cast<act>(what));
    std::vector<step> steps;
    for (int i = 0; i < length; ++i) {
        const std::size_t what = random() % acts.size(), who = random() % players, shop = random() % players;
        steps.push_back({acts[what], who, shop, below(6), below(1000), below(1000), below(1000)});
    }
    return steps;
}

// The fault, with the steps behind it gone; empty when the story holds.
std::string tell(Story& story, std::vector<step>& steps) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
        std::string fault;
        try {
            fault = story.plays(steps[i]);
        } catch (const std::exception& e) {
            fault = e.what();
        }
        if (fault.empty()) continue;
        steps.resize(i + 1);
        return fault;
    }
    return {};
}

// Drops what a failure does not need, large pieces first, as long as there is patience for so many steps.
template <class Step, class Fails>
std::vector<Step> shortened(std::vector<Step> steps, const Fails& fails, std::size_t patience) {
    for (std::size_t piece = steps.size() / 2; piece != 0; piece /= 2)
        for (std::size_t at = 0; at < steps.size() && patience >= steps.size();) {
            patience -= steps.size();
            std::vector<Step> fewer(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(at));
            for (std::size_t i = at + piece; i < steps.size(); ++i) fewer.push_back(steps[i]);
            if (fails(fewer))
                steps = std::move(fewer);
            else
                at += piece;
        }
    return steps;
}

void tellalongstory(bool llmoney) {
    const char* const given = std::getenv("ORDOMART_SEED");
    const std::uint64_t seed = given != nullptr ? std::strtoull(given, nullptr, 10) : 20260101;
    {
        stage::Stage empty;
        sweep(empty);
    }
    std::string fault;
    const auto fails = [&](std::vector<step>& steps) {
        Story story(llmoney);
        fault = tell(story, steps);
        for (const char* what :
             {"publish", "adjust", "end", "pickup", "sale", "sale to an operator", "refused", "money refused"})
            EXPECT_TRUE(!fault.empty() || steps.size() < 2000 || story.happened[what] > 0) << "never: " << what;
        return !fault.empty();
    };
    auto steps = invented(seed, 2000);
    if (!fails(steps)) return;
    const auto found = fmt::format("seed {}, step {}: {}", seed, steps.size(), fault);
    steps = shortened(std::move(steps), fails, 20000);
    fails(steps);
    std::string story;
    for (const auto& s : steps)
        story += fmt::format("{{act::{}, {}, {}, {}, {}, {}, {}}},\n", actnames[static_cast<int>(s.what)], s.who,
                             s.shop, s.place, s.a, s.b, s.c);
    ADD_FAILURE() << found << "\nin short: " << fault << "\n" << story;
}

}  // namespace

TEST(RecycleStory, TheBooksAreRightInScores) { tellalongstory(false); }
TEST(RecycleStory, TheBooksAreRightInLLMoney) { tellalongstory(true); }

// The place for what a failure has printed.
TEST(RecycleStory, WhatFailedOnceHolds) {
    std::vector<step> stories[] = {
        // More asked for than wanted, from several slots.
        {{act::publish, 2, 1, 1, 598, 377, 606}, {act::list, 0, 1, 0, 853, 262, 958}, {act::answer, 1, 1, 5, 535, 115}},
        // Picked up after a sale, and once more.
        {{act::publish, 2, 2, 2, 292, 949, 195},
         {act::list, 1, 2, 0, 806, 662, 814},
         {act::answer, 3, 1, 0, 319, 100, 697},
         {act::pickup, 2, 1, 0, 905, 519, 802},
         {act::pickup, 2, 1, 0, 905, 519, 802}},
    };
    for (auto& steps : stories) {
        Story story(true);
        EXPECT_EQ(tell(story, steps), "");
        EXPECT_EQ(story.happened["sale"], 1) << "the numbers mean something else by now";
    }
}

TEST(RecycleStory, AFailureIsToldInShort) {
    std::vector<int> steps(1000);
    for (int i = 0; i < 1000; ++i) steps[static_cast<std::size_t>(i)] = i;
    const auto fails = [](const std::vector<int>& fewer) {
        return std::count(fewer.begin(), fewer.end(), 17) + std::count(fewer.begin(), fewer.end(), 842) == 2;
    };
    EXPECT_EQ(shortened(steps, fails, 1000000), (std::vector<int>{17, 842}));
    EXPECT_TRUE(fails(shortened(steps, fails, 3000))) << "patience ends, and what is left still fails";
}
