#include "host/bustle/bustle.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "host/bustle/means.h"
#include "host/bustle/visits.h"
#include "host/clients.h"
#include "host/server.h"
#include "platform/logger.h"
#include "platform/schedule.h"

namespace host {

namespace {

// While the market fills, nobody thinks twice; as soon as there is something to see, people take their time.
constexpr std::uint64_t hurriedtrades = 200;
constexpr int mostatonce = 4;  // who act in one beat: the server has others to serve
// In beats.
constexpr std::int64_t patience = 100;                 // for a form or a menu
constexpr std::int64_t hearing = 8, shorthearing = 4;  // for what comes of the last step
constexpr int mostforms = 10;                          // that are closed behind a visit
constexpr int minute = 20 * 60;

constexpr std::string_view cheer = "mob.villager.yes";

}  // namespace

struct Bustle::Parts : std::enable_shared_from_this<Bustle::Parts> {
    Parts(Server& s, Clients& c) : server(s), clients(c) {}

    Server& server;
    Clients& clients;
    std::mutex orders;  // one start or stop at a time
    std::atomic<int> wanted = 0, around = 0;
    std::atomic<std::uint64_t> trades = 0;
    bool listening = false;  // to the server's ticks

    // Of whoever plays the beats: the thread, or in manual mode the server's.
    std::vector<std::unique_ptr<Person>> people;
    std::int64_t beat = 0;
    std::size_t turn = 0;  // who is asked first in the next beat

    std::mutex lock;
    std::condition_variable wake;
    bool ticked = false, ending = false;
    std::thread thread;

    [[nodiscard]] bool manual() const { return server.options().manual; }
    [[nodiscard]] bool hurried() const { return trades < hurriedtrades; }

    // ---- the beats

    void listen() {
        if (std::exchange(listening, true)) return;
        server.services().scheduler->repeat(
            [weak = weak_from_this()] {
                if (const auto parts = weak.lock()) parts->ontick();
            },
            1, -1);
    }
    void ontick() {
        if (wanted == 0) return;
        if (manual()) return play();
        const std::lock_guard guard(lock);
        ticked = true;
        wake.notify_one();
    }
    void run() {
        for (;;) {
            {
                std::unique_lock guard(lock);
                wake.wait(guard, [&] { return ticked || ending; });
                if (ending) break;
                ticked = false;
            }
            play();
        }
        everybodyleaves();
    }

    void play() {
        ++beat;
        try {
            comesorgoes();
        } catch (const std::exception& e) {
            platform::Logger("Bustle").warn("{}", e.what());
        }
        int acting = 0;
        const std::size_t first = turn;
        for (std::size_t i = 0; i < people.size() && acting < mostatonce; ++i) {
            Person& person = *people[(first + i) % people.size()];
            if (!person.here || person.due > beat) continue;
            turn = (first + i + 1) % people.size();
            try {
                acting += acts(person) ? 1 : 0;
            } catch (const std::exception& e) {
                // What he meant to do makes no sense any more; he thinks of something else.
                platform::Logger("Bustle").debug("{}: {}", person.who.name, e.what());
                endvisit(person);
            }
        }
    }

    // ---- coming and going; one a beat

    void comesorgoes() {
        if (around > wanted) {
            const auto idle = std::ranges::find_if(people, [](const auto& one) { return one->here && !one->visit; });
            if (idle != people.end()) goes(**idle);
        } else if (around < wanted) {
            const auto next =
                std::ranges::find_if(people, [&](const auto& one) { return !one->here && one->leaves <= beat; });
            if (next != people.end()) comes(**next);
        } else {
            const auto tired = std::ranges::find_if(
                people, [&](const auto& one) { return one->here && !one->visit && one->leaves <= beat; });
            if (tired != people.end() && !hurried()) goes(**tired);
        }
    }
    void comes(Person& person) {
        person.leaves = beat + minute;  // if he cannot come now
        if (clients.has(person.who.name)) return;
        clients.join(person.who);
        person.here = true;
        ++around;
        person.leaves = beat + minute * (3 + person.dice.below(8));
        person.due = beat + 1 + person.dice.below(hurried() ? 5 : 40);
        server.run([&] { endow(server, person); });
    }
    void goes(Person& person) {
        person.here = false;
        --around;
        person.visit = nullptr;
        person.leaves = beat + minute * (1 + person.dice.below(4));
        try {
            clients.leave(person.who.name);
        } catch (const std::exception&) {
            // Somebody else has sent him away.
        }
    }
    void everybodyleaves() {
        for (const auto& person : people)
            if (person->here) goes(*person);
        people.clear();
    }

    // ---- one person

    // Takes a look and does what is next. False when there was nothing to do.
    bool acts(Person& person) {
        Sight sight;
        bool cheered = false;
        const bool joined = clients.look(person.who.name, [&](client::ModelClient& c) {
            sight = seen(c);
            for (const auto& sound : c.sounds.from(person.sounds)) cheered = cheered || sound.name == cheer;
        });
        if (!joined) {
            goes(person);
            return false;
        }
        person.waited = beat - person.acted;
        if (person.visit == nullptr) begins(person);
        const auto& steps = person.visit->steps;
        if (person.step >= steps.size()) return concludes(person, sight, cheered);
        const Deed deed = person.waited > patience ? Deed(GivesUp{}) : steps[person.step](person, sight);
        if (std::holds_alternative<Waits>(deed)) return false;
        person.step = std::holds_alternative<GivesUp>(deed) ? steps.size() + 1 : person.step + (isagain(deed) ? 0 : 1);
        clients.look(person.who.name, [&](client::ModelClient& c) {
            person.sounds = c.sounds.total();
            carryout(c, sight, deed);
        });
        person.acted = beat;
        person.due = beat + (hurried() ? 1 : 30 + person.dice.below(60));
        return true;
    }
    void begins(Person& person) {
        person.visit = nextvisit(person, hurried());
        person.step = 0;
        person.closed = 0;
        person.acted = beat;
        person.waited = 0;
    }
    // Hears what came of it, then closes whatever stands open.
    bool concludes(Person& person, const Sight& sight, bool cheered) {
        const bool givenup = person.step > person.visit->steps.size();
        const std::int64_t rest = hurried() ? shorthearing : hearing;
        if (!givenup && cheered && person.visit->trades) {
            ++trades;
            person.step = person.visit->steps.size() + 1;
        }
        if (person.closed >= mostforms || (!sight.asked && !sight.menu)) {
            if (person.waited >= rest || person.closed >= mostforms) endvisit(person);
            return false;
        }
        if (!givenup && !cheered && person.waited < hearing) return false;
        clients.look(person.who.name, [&](client::ModelClient& c) {
            if (sight.asked)
                c.answer(*sight.asked, "null");
            else
                c.close();
        });
        ++person.closed;
        person.acted = beat;
        person.due = beat + (hurried() ? 1 : 6);
        return true;
    }
    void endvisit(Person& person) {
        person.visit = nullptr;
        person.due = beat + (hurried() ? 1 : 40 + person.dice.below(120));
    }

    static bool isagain(const Deed& deed) {
        const auto* given = std::get_if<Answers>(&deed);
        return given != nullptr && given->again;
    }
    static Sight seen(const client::ModelClient& c) {
        Sight sight;
        if (!c.forms().empty()) {
            sight.asked = c.forms().front().id;
            sight.form = nlohmann::json::parse(c.forms().front().json);
        }
        sight.menu = c.container().has_value();
        constexpr int slots = 36;
        for (int slot = 0; slot < slots; ++slot) {
            const auto& item = c.slot(client::inventoryid, slot);
            if (item.networkid == 0)
                sight.slots.emplace_back();
            else
                sight.slots.push_back(
                    {c.itemname(item), c.displayname(item), static_cast<int>(item.aux), static_cast<int>(item.count)});
        }
        return sight;
    }
    static void carryout(client::ModelClient& c, const Sight& sight, const Deed& deed) {
        if (const auto* says = std::get_if<Says>(&deed)) c.command(says->line);
        if (const auto* answers = std::get_if<Answers>(&deed)) c.answer(*sight.asked, answers->value.dump());
        if (const auto* clicks = std::get_if<Clicks>(&deed)) c.click(clicks->container, clicks->slot);
    }
};

Bustle::Bustle(Server& server, Clients& clients) : parts_(std::make_shared<Parts>(server, clients)) {}

Bustle::~Bustle() { stop(); }

void Bustle::start(int players, std::uint64_t seed) {
    Parts& parts = *parts_;
    const std::lock_guard guard(parts.orders);
    if (const std::string why = bustlerefusal(parts.server); !why.empty()) throw std::runtime_error(why);
    if (players < 1 || players > mostaround)
        throw std::runtime_error(fmt::format("a bustle has 1 to {} players, not {}", mostaround, players));
    if (parts.wanted > 0) {
        parts.wanted = players;
        return;
    }
    parts.server.run([&] {
        parts.people.clear();
        std::uint64_t number = seed;
        for (const Figure& figure : figures()) {
            const Craft& craft = crafts()[number % crafts().size()];
            parts.people.push_back(
                std::make_unique<Person>(figure, defaultxuid(parts.server, figure.name), craft, number++));
        }
        for (const auto& person : parts.people) person->planned = firstvisits(*person);
        parts.trades = 0;
        parts.wanted = players;
        parts.listen();
    });
    parts.ending = false;
    if (!parts.manual()) parts.thread = std::thread([&parts] { parts.run(); });
    platform::Logger("Bustle").info("{} players bustle about the market, by seed {}", players, seed);
}

void Bustle::stop() {
    Parts& parts = *parts_;
    const std::lock_guard guard(parts.orders);
    if (parts.wanted == 0) return;
    parts.wanted = 0;
    if (parts.thread.joinable()) {
        {
            const std::lock_guard held(parts.lock);
            parts.ending = true;
            parts.wake.notify_one();
        }
        parts.thread.join();
    } else {
        parts.server.run([&] { parts.everybodyleaves(); });
    }
    platform::Logger("Bustle").info("The bustle is over after {} trades", parts.trades.load());
}

Bustle::State Bustle::state() const {
    return {parts_->wanted, parts_->around, parts_->trades, bustlerefusal(parts_->server)};
}

}  // namespace host
