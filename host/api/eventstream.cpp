#include "host/api/eventstream.h"

#include <fmt/format.h>

#include <chrono>

#include "host/api/clientstate.h"
#include "host/core/log.h"
#include "host/server.h"

namespace host {

using nlohmann::json;

namespace {

constexpr std::size_t keepheard = 5000;
constexpr std::size_t mostloglines = 200;  // in one batch
// Changes that come close together, as the packets of a page do, go out as one.
constexpr auto gathering = std::chrono::milliseconds(25);

std::string event(const char* name, const json& data) {
    return fmt::format("event: {}\ndata: {}\n\n", name, data.dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace

EventStreams::EventStreams(Server& server, Clients& clients) : server_(server), clients_(clients) {
    clientwatch_ = clients_.watch([this](const std::string& player) { changed(player); });
    logwatch_ = server_.log().watch([this](const LogLine&) { changed(); });
}

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
    std::lock_guard guard(lock_);
    for (json& what : fresh) heard_.push_back({++lastheard_, player, std::move(what)});
    while (heard_.size() > keepheard) heard_.pop_front();
}

std::vector<Heard> EventStreams::heardafter(std::uint64_t number) const {
    std::lock_guard guard(lock_);
    std::vector<Heard> all;
    for (const Heard& one : heard_)
        if (one.number > number) all.push_back(one);
    return all;
}

json EventStreams::serverstate() {
    json players = json::array();
    for (const JoinRequest& who : clients_.joined()) players.push_back(whostate(who));
    return {{"players", players}, {"speed", server_.speed()}, {"paused", server_.paused()}};
}

std::string EventStreams::next(Place& place, int milliseconds) {
    std::map<std::string, std::uint64_t> changedat;
    {
        std::unique_lock guard(lock_);
        wake_.wait_for(guard, std::chrono::milliseconds(milliseconds),
                       [&] { return stopped_ || changes_ > place.seen; });
        if (!stopped_ && changes_ > place.seen) wake_.wait_for(guard, gathering, [&] { return stopped_; });
        if (stopped_) return {};
        changedat = changedat_;
        for (const auto& [player, when] : changedat_)
            if (when <= place.seen) changedat.erase(player);
        place.seen = changes_;
    }
    std::string out;
    if (json state = serverstate(); state != place.server) {
        out += event("server", state);
        place.server = std::move(state);
    }
    for (const std::string& player : place.players) {
        const bool first = !place.shown.contains(player);
        if (!first && !changedat.contains(player)) continue;
        json state;
        if (!clients_.look(player, [&](client::ModelClient& c) { state = clientstate(c); })) {
            if (place.shown.erase(player) > 0) out += event("gone", {{"player", player}});
            continue;
        }
        if (first)
            out += event("client", {{"player", player}, {"state", state}});
        else if (json patch = json::diff(place.shown[player], state); !patch.empty())
            out += event("patch", {{"player", player}, {"patch", std::move(patch)}});
        place.shown[player] = std::move(state);
    }
    for (const Heard& one : heardafter(place.heard)) {
        if (place.players.contains(one.player))
            out += event("heard", {{"player", one.player}, {"number", one.number}, {"what", one.what}});
        place.heard = one.number;
    }
    if (place.log) {
        auto lines = server_.log().lines(place.logline);
        if (!lines.empty()) place.logline = lines.back().number;
        const std::size_t from = lines.size() > mostloglines ? lines.size() - mostloglines : 0;
        json told = json::array();
        for (std::size_t i = from; i < lines.size(); ++i) told.push_back(linestate(lines[i]));
        if (!told.empty()) out += event("log", told);
    }
    return out.empty() ? ": nothing new\n\n" : out;
}

void EventStreams::stop() {
    std::lock_guard guard(lock_);
    stopped_ = true;
    wake_.notify_all();
}

}  // namespace host
