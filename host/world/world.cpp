#include "host/world/world.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "host/network/network.h"
#include "host/server.h"
#include "host/world/worldparts.h"
#include "platform/logger.h"

namespace host {

constexpr auto patienceatend = std::chrono::milliseconds(500);

ServerPlayerImpl& World::Parts::enter(const JoinRequest& request, ClientLink& link) {
    PlayerRecord& record = records.enter(request);
    if (!record.xuid.empty()) names.learn(record.xuid, record.name);
    ServerPlayerImpl& player = level.enter(record, ground, link);
    player.putcursorback();
    return player;
}

void World::Parts::leave(ServerPlayerImpl& player) {
    player.putcursorback();
    records.leave(player.record());
    level.leave(player.sessionid());
}

ServerPlayerImpl& World::Parts::online(const std::string& name) {
    ServerPlayerImpl* const player = level.of(records.named(name));
    if (player == nullptr) throw std::runtime_error(fmt::format("\"{}\" is not online", name));
    return *player;
}

World::World(const std::string& databasepath, bool mustexist) {
    try {
        parts_ = std::make_unique<Parts>(databasepath, mustexist);
    } catch (const SQLite::Exception& e) {
        throw StartError(fmt::format("{}: {}", databasepath, e.what()));
    }
}

World::~World() = default;

platform::Level& World::level() { return parts_->level; }
platform::Scoreboard& World::scoreboard() { return parts_->scoreboard; }
platform::KnownPlayers& World::knownplayers() { return parts_->names; }
platform::StoreState& World::stores() { return parts_->state; }
platform::Records& World::tables() { return parts_->tables; }
void World::join(const MoneyLibrary& library) { parts_->money.join(library); }

std::vector<PlayerSummary> World::players() const {
    std::vector<PlayerSummary> all;
    for (const auto& [key, record] : parts_->records.all())
        all.push_back({record.name, record.xuid, record.language, record.devicetype, record.permission, record.online,
                       record.alive});
    std::ranges::sort(all, {}, &PlayerSummary::name);
    return all;
}

void World::introduce(const std::string& name, const std::string& xuid, const std::string& language) {
    parts_->records.introduce(name, xuid, language);
    if (parts_->names.fromXuid(xuid).empty()) parts_->names.learn(xuid, name);
}

std::vector<DroppedItem> World::droppeditems() const { return parts_->ground.all(); }

void World::setalive(const std::string& playername, bool alive) {
    PlayerRecord& record = parts_->records.named(playername);
    record.alive = alive;
    parts_->records.mark(record);
}

void World::setpermission(const std::string& playername, int level) {
    if (level < 0 || level > 4) throw std::runtime_error("a permission level is 0 to 4");
    PlayerRecord& record = parts_->records.named(playername);
    record.permission = level;
    parts_->records.mark(record);
}

void World::setgametype(const std::string& playername, int gametype) {
    if (gametype != 0 && gametype != 1) throw std::runtime_error("a game type is 0, survival, or 1, creative");
    PlayerRecord& record = parts_->records.named(playername);
    record.gametype = gametype;
    parts_->records.mark(record);
    if (ServerPlayerImpl* const player = parts_->level.of(record)) player->sendgametype();
}

void World::setposition(const std::string& playername, platform::Vec3 position, int dimension) {
    static_cast<void>(parts_->level.blocks(dimension));
    PlayerRecord& record = parts_->records.named(playername);
    record.position = position;
    record.dimension = dimension;
    parts_->records.mark(record);
}

void World::setblock(int dimension, platform::BlockPos pos, const std::string& name, int layer) {
    parts_->level.blocks(dimension).set(pos, layer, name);
}

int World::score(const std::string& playername, const std::string& objective) const {
    return parts_->scoreboard.scoreof(parts_->records.named(playername).key, objective);
}

void World::setscore(const std::string& playername, const std::string& objective, int value) {
    parts_->scoreboard.setscoreof(parts_->records.named(playername).key, objective, value);
}

namespace {

int realslot(int slot) {
    if (slot < 0 || slot > offhandslot)
        throw std::runtime_error("a slot is 0 to 35 in the inventory, 36 to 39 of armour, 40 the offhand");
    return slot;
}

}  // namespace

platform::ItemStack World::item(const std::string& playername, int slot) const {
    return parts_->online(playername).inventory().slot(realslot(slot)).stack;
}

void World::setitem(const std::string& playername, int slot, const platform::ItemStack& stack) {
    parts_->online(playername).inventory().put(realslot(slot), stack);
}

bool World::Parts::write() {
    if (std::ranges::any_of(stores, [](const Store* store) { return store->changed(); })) {
        try {
            commit();
        } catch (const std::exception& e) {
            // Everything stays marked.
            state.failed(e.what());
            return false;
        }
        forgetchanges();
        state.worked();
    }
    state.runwaiting();
    return true;
}

void World::Parts::commit() {
    file.transaction([&] {
        atwrite("begun");
        writestores();
        atwrite("unfinished");
    });
    atwrite("committed");
}

void World::Parts::writestores() {
    for (Store* store : stores) store->write(file);
}

void World::Parts::forgetchanges() {
    for (Store* store : stores) store->written();
}

void World::flush() {
    if (showschanges) parts_->level.each([](ServerPlayerImpl& player) { player.sendchanges(); });
    if (parts_->state.istime()) parts_->write();
}

std::string World::lastflush() {
    Parts& parts = *parts_;
    parts.file.setpatience(patienceatend);
    if (parts.write()) return {};
    const bool kept = parts.file.keepaside([&] { parts.writestores(); });
    const auto fate = kept ? fmt::format("what changed since is kept in {} for the next start", parts.file.aside())
                           : "what changed since is lost";
    const auto line = fmt::format("{}; {}", parts.state.unwritable(), fate);
    parts.forgetchanges();
    parts.state.runwaiting();
    return line;
}

}  // namespace host
