#include "host/clients.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>

#include "host/server.h"
#include "host/world/items.h"
#include "platform/level.h"
#include "platform/logger.h"
#include "platform/text.h"

namespace host {

namespace {

// The item table as the server announces it to a client that starts the game.
client::ItemNames announceditems(const platform::Texts& texts, const std::string& language) {
    client::ItemNames names;
    for (const ItemRow& row : itemtable().rows()) {
        auto& announced = names[row.info.networkid];
        announced = {row.info.name, row.info.maxstack, row.info.maxdamage,
                     texts.gametext(row.info.descriptionid, language)};
        for (const ItemVariant& one : row.variants)
            announced.byaux[static_cast<std::uint32_t>(one.aux)] = texts.gametext(one.descriptionid, language);
    }
    return names;
}

std::runtime_error notjoined(const std::string& name) {
    return std::runtime_error(fmt::format("no player \"{}\" is joined here", name));
}

}  // namespace

std::string defaultxuid(Server& server, const std::string& name) {
    if (std::string known = server.services().knownplayers->getXuid(name); !known.empty()) return known;
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
    return std::to_string(2535400000000000ULL + hash % 100000000000ULL);
}

Clients::Clients(Server& server) : server_(server) {}

Clients::~Clients() { leaveall(); }

void Clients::join(const JoinRequest& request) {
    auto seat = std::make_shared<Seat>();
    seat->who = request;
    // What the client says before the server has named the connection waits for it.
    auto connection = std::make_shared<std::atomic<ConnectionId>>(0);
    seat->client =
        std::make_unique<client::ModelClient>(announceditems(*server_.services().texts, request.language),
                                              request.devicetype != 7, [this, connection](std::string packet) {
                                                  if (const ConnectionId id = *connection; id != 0)
                                                      server_.network().receive(id, std::move(packet));
                                              });
    // Seated before the first packet comes, so that a watcher finds the client whose picture it is told about.
    {
        std::lock_guard guard(lock_);
        if (std::ranges::any_of(seats_, [&](const auto& other) { return other->who.name == request.name; }))
            throw std::runtime_error(fmt::format("{} is joined here already", request.name));
        seats_.push_back(seat);
    }
    try {
        server_.run([&] {
            const std::weak_ptr<Seat> weak = seat;
            seat->connection = server_.network().join(request, [this, weak](std::string packet) {
                if (const auto held = weak.lock()) deliver(*held, packet);
            });
            *connection = seat->connection;
        });
    } catch (...) {
        std::lock_guard guard(lock_);
        std::erase(seats_, seat);
        throw;
    }
}

void Clients::deliver(Seat& seat, const std::string& packet) {
    try {
        std::lock_guard guard(seat.lock);
        seat.client->receive(packet);
    } catch (const std::exception& e) {
        platform::Logger("Client").error("{} could not read a packet of the server: {}", seat.who.name, e.what());
    }
    watchers_.tell(seat.who.name);
}

void Clients::leave(const std::string& name) {
    const auto going = seat(name);
    if (!going) throw notjoined(name);
    server_.run([&] {
        server_.network().leave(going->connection);
        {
            std::lock_guard guard(lock_);
            std::erase(seats_, going);
        }
        watchers_.tell(name);
    });
}

void Clients::leaveall() {
    for (const JoinRequest& who : joined()) leave(who.name);
}

std::vector<JoinRequest> Clients::joined() const {
    std::lock_guard guard(lock_);
    std::vector<JoinRequest> all;
    for (const auto& seat : seats_) all.push_back(seat->who);
    return all;
}

bool Clients::has(const std::string& name) const { return seat(name) != nullptr; }

bool Clients::isextra(const std::string& name) const {
    const auto held = seat(name);
    return held && held->who.extra;
}

std::shared_ptr<Clients::Seat> Clients::seat(const std::string& name) const {
    std::lock_guard guard(lock_);
    const auto found = std::ranges::find_if(seats_, [&](const auto& seat) { return seat->who.name == name; });
    return found == seats_.end() ? nullptr : *found;
}

bool Clients::look(const std::string& name, const std::function<void(client::ModelClient&)>& work) {
    const auto held = seat(name);
    if (!held) return false;
    std::lock_guard guard(held->lock);
    work(*held->client);
    return true;
}

void Clients::with(const std::string& name, const std::function<void(client::ModelClient&)>& work) {
    if (!look(name, work)) throw notjoined(name);
}

std::shared_ptr<void> Clients::watch(std::function<void(const std::string&)> watcher) {
    return watchers_.add(std::move(watcher));
}

}  // namespace host
