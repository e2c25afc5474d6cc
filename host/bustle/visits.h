// What people of a bustling market do there: each visit is a row of steps, and a step looks at what the client shows
// and says what is done about it, as a player would who types commands, answers forms and clicks menus. Nothing here
// knows the market otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "host/bustle/cast.h"
#include "host/network/network.h"
#include "platform/packets/itemstackrequest.h"

namespace host {

class BustleDice {
public:
    explicit BustleDice(std::uint64_t seed) : bits_(seed) {}
    // 0 to n - 1; the same on every machine, which the library's distributions are not.
    int below(int n) { return n <= 1 ? 0 : static_cast<int>(bits_() % static_cast<std::uint64_t>(n)); }
    bool oneof(int n) { return below(n) == 0; }

private:
    std::mt19937_64 bits_;
};

// A stack in one of the 36 slots as the client shows it; without an item an empty one.
struct Held {
    std::string item, title;
    int aux = 0, count = 0;
};

struct Sight {
    std::optional<std::uint32_t> asked;  // the form in front
    nlohmann::json form;
    bool menu = false;
    std::vector<Held> slots;
};

struct Waits {};
struct GivesUp {};
struct Says {
    std::string line;
};
struct Answers {
    nlohmann::json value;
    bool again = false;  // what comes is of the same kind: another page
};
struct Clicks {
    platform::ContainerName container;
    int slot;
};
using Deed = std::variant<Waits, GivesUp, Says, Answers, Clicks>;

struct Person;
using Step = Deed (*)(Person&, const Sight&);

struct Visit {
    const char* name;
    int weight;       // how often, beside the others
    bool ownersonly;  // for those who keep a shop
    bool trades;      // a happy end is a trade
    bool byform;      // works without a mouse's pace: also while the market fills
    std::span<const Step> steps;
};

struct Person {
    Person(const Figure& figure, std::string xuid, const Craft& his, std::uint64_t seed);

    JoinRequest who;
    bool chinese;
    BustleDice dice;
    const Craft* craft;
    bool keepsshop;
    int dear;  // percent of what goods are worth that he asks

    // All times are beats of the bustle.
    bool here = false;
    std::int64_t due = 0;     // when he acts again
    std::int64_t leaves = 0;  // when he is here, else when he may come
    std::int64_t acted = 0;   // the last time
    std::int64_t waited = 0;  // since then
    std::deque<const Visit*> planned;
    const Visit* visit = nullptr;
    std::size_t step = 0;
    Held chosen;               // the stack that the visit is about
    int closed = 0;            // forms that he has closed at the end of a visit
    std::uint64_t sounds = 0;  // heard before the visit's last step
};

// What he does when he comes for the first time; nothing for who keeps no shop.
[[nodiscard]] std::deque<const Visit*> firstvisits(const Person& person);
[[nodiscard]] const Visit* nextvisit(Person& person, bool hurried);

}  // namespace host
