#include "host/world/levelimpl.h"

#include <fmt/format.h>

#include <stdexcept>

namespace host {

namespace {

std::uint64_t newsession() {
    static std::uint64_t last = 0;
    return ++last;
}

}  // namespace

platform::ServerPlayer* LevelImpl::getPlayerByXuid(const std::string& xuid) {
    // The key of a player without a xuid is no number, so that no text from outside can find him here.
    const auto found = bykey_.find(xuid);
    return found == bykey_.end() || found->second->getXuid() != xuid ? nullptr : found->second;
}

platform::ServerPlayer* LevelImpl::getPlayer(std::uint64_t sessionid) {
    const auto found = players_.find(sessionid);
    return found == players_.end() ? nullptr : found->second.get();
}

std::vector<platform::ServerPlayer*> LevelImpl::getAllPlayers() {
    std::vector<platform::ServerPlayer*> all;
    each([&](ServerPlayerImpl& player) { all.push_back(&player); });
    return all;
}

platform::BlockSource* LevelImpl::getBlockSource(int dimension) {
    return dimension >= 0 && dimension < static_cast<int>(dimensions_.size()) ? &blocks(dimension) : nullptr;
}

Blocks& LevelImpl::blocks(int dimension) {
    if (dimension < 0 || dimension >= static_cast<int>(dimensions_.size()))
        throw std::runtime_error(fmt::format("there is no dimension {}", dimension));
    return dimensions_[static_cast<std::size_t>(dimension)];
}

ServerPlayerImpl& LevelImpl::enter(PlayerRecord& record, DroppedItems& ground, ClientLink& link) {
    const std::uint64_t session = newsession();
    auto& player = players_[session];
    player = std::make_unique<ServerPlayerImpl>(record, session, ground, link);
    bykey_[record.key] = player.get();
    return *player;
}

void LevelImpl::leave(std::uint64_t sessionid) {
    const auto found = players_.find(sessionid);
    if (found == players_.end()) return;
    bykey_.erase(found->second->record().key);
    players_.erase(found);
}

ServerPlayerImpl* LevelImpl::of(const PlayerRecord& record) {
    const auto found = bykey_.find(record.key);
    return found == bykey_.end() ? nullptr : found->second;
}

}  // namespace host
