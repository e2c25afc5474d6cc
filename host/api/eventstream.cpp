#include "host/api/eventstream.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <utility>

#include "host/api/clientstate.h"
#include "host/core/log.h"
#include "host/server.h"

namespace host {

using nlohmann::json;

namespace {

constexpr std::size_t mostloglines = 200;  // in one batch
// Changes that come close together, as the packets of a page do, go out as one.
constexpr auto gathering = std::chrono::milliseconds(25);
// Looked at again, so long after he was found to be reading still.
constexpr auto slowly = std::chrono::milliseconds(50);
constexpr auto heartbeat = std::chrono::seconds(15);
using Clock = std::chrono::steady_clock;

std::string event(const char* name, const json& data) {
    return fmt::format("event: {}\ndata: {}\n\n", name, data.dump(-1, ' ', false, json::error_handler_t::replace));
}

std::string randomname() {
    std::random_device random;
    return fmt::format("{:08x}{:08x}", random(), random());
}

}  // namespace

// One subscriber's place in the stream.
struct EventStreams::Subscriber {
    Wish wish;
    std::shared_ptr<Outlet> outlet = std::make_shared<Outlet>();
    std::uint64_t seen = 0;  // change counter of the last batch
    Clock::time_point told = Clock::now();
    std::map<std::string, json> shown;
    json server;
};

EventStreams::EventStreams(Server& server, Clients& clients)
    : server_(server), clients_(clients), serverrun_(randomname()) {
    clientwatch_ = clients_.watch([this](const std::string& player) { changed(player); });
    logwatch_ = server_.log().watch([this](const LogLine&) { changed(); });
}

EventStreams::~EventStreams() { stop(); }

void EventStreams::changed() {
    std::lock_guard guard(lock_);
    ++changes_;
    wake_.notify_all();
}

void EventStreams::changed(const std::string& player) {
    listen(player);
    std::lock_guard guard(lock_);
    changedat_[player] = ++changes_;
    wake_.notify_all();
}

void EventStreams::listen(const std::string& player) {
    if (clients_.isextra(player)) return;
    std::lock_guard listening(listening_);
    std::vector<json> fresh;
    const bool joined = clients_.look(player, [&](client::ModelClient& c) {
        Ears& ears = ears_[player];
        const auto take = [&](std::uint64_t& seen, const auto& list, auto told) {
            for (const auto& heard : list.from(std::exchange(seen, list.total()))) fresh.push_back(told(heard));
        };
        take(ears.replies, c.replies, [](const auto& r) {
            return json{{"kind", "reply"}, {"success", r.success}, {"text", r.text}};
        });
        take(ears.chat, c.chat, [](const auto& line) { return json{{"kind", "chat"}, {"text", line}}; });
        take(ears.toasts, c.toasts, [](const auto& t) {
            return json{{"kind", "toast"}, {"title", t.title}, {"text", t.content}};
        });
        take(ears.sounds, c.sounds, [](const auto& s) {
            return json{{"kind", "sound"}, {"name", s.name}, {"volume", s.volume}, {"pitch", s.pitch}};
        });
    });
    if (!joined) ears_.erase(player);
    heard_.add(player, std::move(fresh));
}

std::shared_ptr<Outlet> EventStreams::subscribe(Wish wish) {
    const std::lock_guard guard(lock_);
    std::erase_if(outlets_, [](const auto& outlet) { return !outlet->open(); });
    if (outlets_.size() >= most) return nullptr;
    if (!wish.run.empty() && wish.run != serverrun_) wish.heard = wish.logline = 0;
    arriving_.push_back(std::make_unique<Subscriber>(std::move(wish)));
    outlets_.push_back(arriving_.back()->outlet);
    wake_.notify_all();
    return outlets_.back();
}

void EventStreams::start() {
    thread_ = std::thread([this] { run(); });
}

void EventStreams::stop() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard guard(lock_);
        stopped_ = true;
        wake_.notify_all();
    }
    thread_.join();
}

void EventStreams::run() {
    std::uint64_t seen = 0;
    for (;;) {
        const bool behind = std::ranges::any_of(subscribers_, [&](const auto& one) { return one->seen < seen; });
        std::map<std::string, std::uint64_t> changedat;
        {
            std::unique_lock guard(lock_);
            const auto something = [&] { return stopped_ || changes_ > seen || !arriving_.empty(); };
            wake_.wait_for(guard, behind ? slowly : Clock::duration(heartbeat), something);
            if (something()) wake_.wait_for(guard, gathering, [&] { return stopped_; });
            if (stopped_) return;
            for (auto& one : std::exchange(arriving_, {})) subscribers_.push_back(std::move(one));
            seen = changes_;
            if (!subscribers_.empty()) changedat = changedat_;
        }
        std::erase_if(subscribers_, [](const auto& one) { return !one->outlet->open(); });
        tell(seen, changedat);
    }
}

void EventStreams::tell(std::uint64_t changes, const std::map<std::string, std::uint64_t>& changedat) {
    for (const auto& one : subscribers_) {
        if (!one->outlet->empty()) continue;
        try {
            std::string text = one->seen < changes ? news(*one, changedat) : "";
            one->seen = changes;
            if (text.empty() && Clock::now() - one->told >= heartbeat) text = ": nothing new\n\n";
            if (text.empty()) continue;
            one->told = Clock::now();
            one->outlet->put(text);
        } catch (const std::exception&) {
            one->outlet->close();  // whoever listens asks again, and is told everything anew
        }
    }
}

json EventStreams::serverstate() {
    json players = json::array();
    for (const JoinRequest& who : clients_.joined()) players.push_back(whostate(who));
    return {{"run", serverrun_}, {"players", players}, {"speed", server_.speed()}, {"paused", server_.paused()}};
}

// What has changed since the batch before, as event-stream text.
std::string EventStreams::news(Subscriber& subscriber, const std::map<std::string, std::uint64_t>& changedat) {
    std::string out;
    if (json state = serverstate(); state != subscriber.server) {
        out += event("server", state);
        subscriber.server = std::move(state);
    }
    Wish& wish = subscriber.wish;
    for (const std::string& player : wish.players) {
        const auto shown = subscriber.shown.find(player);
        const bool first = shown == subscriber.shown.end();
        const auto changed = changedat.find(player);
        if (!first && (changed == changedat.end() || changed->second <= subscriber.seen)) continue;
        json state;
        if (!clients_.look(player, [&](client::ModelClient& c) { state = clientstate(c); })) {
            if (subscriber.shown.erase(player) > 0) out += event("gone", {{"player", player}});
            continue;
        }
        if (first)
            out += event("client", {{"player", player}, {"state", state}});
        else if (json patch = json::diff(shown->second, state); !patch.empty())
            out += event("patch", {{"player", player}, {"patch", std::move(patch)}});
        subscriber.shown[player] = std::move(state);
    }
    for (const SharedHeard& one : heard_.after(wish.heard)) {
        if (wish.players.contains(one->player))
            out += event("heard", {{"player", one->player}, {"number", one->number}, {"what", one->what}});
        wish.heard = one->number;
    }
    if (wish.log) {
        json told = json::array();
        for (const LogLine& line : server_.log().lines(wish.logline, mostloglines)) {
            told.push_back(linestate(line));
            wish.logline = line.number;
        }
        if (!told.empty()) out += event("log", told);
    }
    return out;
}

}  // namespace host
