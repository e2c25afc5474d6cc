// The world of a story: three players and an operator with a shop each, the shared shop, and what a step needs of them.
// The market is the real module on a stage; players act through their model clients alone. A picture holds all that
// moves in a trade, and books.h holds two of them against each other.
#pragma once

#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/market/faultymoney.h"
#include "tests/stage/stage.h"

namespace story {

using nlohmann::json;
using stage::Actor, stage::ContainerName;

inline constexpr std::size_t players = 4, theoperator = 3, parties = 5, systemshop = 4;  // who has a shop and money
inline constexpr std::int64_t slotcost = 7, freeslots = 2;
inline constexpr int tax = 5;

using pieces = std::map<std::string, std::int64_t>;  // by what they are
void count(pieces& all, const platform::ItemStack& stack, std::int64_t times = 1);
// Of a stack's text: what it is, as a piece.
[[nodiscard]] platform::ItemStack stackof(const std::string& snbt);

enum section : std::size_t { sells, recycles, sections };

using allrevisions = std::array<std::array<std::uint32_t, sections>, parties>;

struct picture {
    std::int64_t now = 0;                       // Unix seconds
    std::array<std::int64_t, parties> money{};  // in the purse, and what waits for one who is away
    std::array<pieces, players> hands;          // also of those who are away
    pieces ground;
    std::array<std::array<json, sections>, parties> shops;
    allrevisions revisions{};
};

[[nodiscard]] bool isbanned(const json& shop, std::int64_t now);

// Without what is no change that wants to be saved: what a look notes, and a ban that has run out.
[[nodiscard]] json lasting(json shop, std::int64_t now);

// All choices of a step come from its number, so that a step is data.
struct Dice {
    explicit Dice(std::uint32_t luck) : random(luck) {}
    int below(std::size_t n) { return static_cast<int>(random() % n); }
    bool oneof(std::size_t n) { return below(n) == 0; }
    std::mt19937 random;
};

// A form with the answer that was given to it, and the shops' revisions when it was first seen.
struct dialog {
    std::uint32_t id = 0;
    json form, answer;
    allrevisions seen{};
};

class World {
public:
    explicit World(bool llmoney);
    // In a directory that another process has been killed in, or in an empty one, from a moment on. All are there.
    // What is given a name is numbered from there on.
    World(bool llmoney, const std::filesystem::path& directory, std::int64_t clock, int firstname);
    ~World();

    [[nodiscard]] picture look();
    [[nodiscard]] std::uint64_t lastentry();  // of the ledger
    [[nodiscard]] std::string audit();        // what the market's own finds wrong; empty when all is well
    [[nodiscard]] bool ishere(std::size_t who) const { return actors_[who] != nullptr; }
    [[nodiscard]] Actor& actor(std::size_t who) { return *actors_[who]; }
    [[nodiscard]] bool isalive(std::size_t who) const { return alive_[who]; }
    [[nodiscard]] bool isoperator(std::size_t who) const { return who == theoperator && rights_; }
    [[nodiscard]] static std::string name(std::size_t who) {
        return who < players ? fmt::format("P{}", who) : xuid(who);
    }
    [[nodiscard]] static std::string xuid(std::size_t who);

    // ---- forms
    [[nodiscard]] const std::vector<dialog>& pending(std::size_t who);  // the newest is the last
    // Answers a form by the dice, whatever it is. The dialog is remembered.
    void answers(std::size_t who, const dialog& asked, Dice& dice);
    void answers(std::size_t who, const dialog& asked, const json& answer);
    void answersagain(std::size_t who);  // the last one of his, by a packet of his own
    [[nodiscard]] const std::optional<dialog>& answered() const { return answered_; }  // in this step, a custom form
    std::function<void(const dialog&)> onanswer = [](const dialog&) {};                // before it is on its way

    // ---- what comes from outside of the market
    void begins();  // a step
    void comesorgoes(std::size_t who);
    void saves(bool forget);
    void diesorlives(std::size_t who);
    void loseskeepsrights();
    void puts(std::size_t who, Dice& dice);
    [[nodiscard]] stage::Stage& stage() { return stage_; }
    // Whether every shop's file holds it as it is.
    [[nodiscard]] bool filesareright(const picture& seen);

private:
    [[nodiscard]] static std::string shopfile(std::size_t who);
    void writeshops() const;
    void equips(std::size_t who);
    void join(std::size_t who);
    void put(std::size_t who, int slot, std::size_t kind, int pieces);
    [[nodiscard]] allrevisions revisions();
    [[nodiscard]] std::int64_t score(std::size_t who);
    void collectsupplies(pieces& all, std::size_t who);
    [[nodiscard]] json fill(const json& element, Dice& dice);

    const bool llmoney_;
    faulty::Money faulty_;
    stage::Stage stage_;
    std::array<Actor*, players> actors_{};  // null while they are away
    std::array<pieces, players> luggage_;   // what they have then
    std::array<bool, players> alive_{true, true, true, true};
    bool rights_ = true;
    std::array<std::optional<dialog>, players> last_;
    std::optional<dialog> answered_;
    std::array<std::vector<dialog>, players> known_;
    int names_;  // given so far; each record has one of its own
};

}  // namespace story
