// Who is online, and the blocks of the three dimensions.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "host/world/blocks.h"
#include "host/world/playerimpl.h"

namespace host {

class LevelImpl : public platform::Level {
public:
    [[nodiscard]] platform::ServerPlayer* getPlayerByXuid(const std::string& xuid) override;
    [[nodiscard]] platform::ServerPlayer* getPlayer(std::uint64_t sessionid) override;
    [[nodiscard]] std::vector<platform::ServerPlayer*> getAllPlayers() override;  // in the order of their joins
    [[nodiscard]] platform::BlockSource* getBlockSource(int dimension) override;
    [[nodiscard]] std::uint32_t defaultBlockRuntimeId(const std::string& name) const override {
        return blockruntimeid(name);
    }

    ServerPlayerImpl& enter(PlayerRecord& record, DroppedItems& ground, ClientLink& link);
    void leave(std::uint64_t sessionid);
    [[nodiscard]] ServerPlayerImpl* of(const PlayerRecord& record);  // null when he is away
    [[nodiscard]] std::size_t online() const { return players_.size(); }
    [[nodiscard]] Blocks& blocks(int dimension);  // throws std::runtime_error when there is no such dimension
    template <class F>
    void each(F&& work) {
        for (auto& [session, player] : players_) work(*player);
    }

private:
    std::map<std::uint64_t, std::unique_ptr<ServerPlayerImpl>> players_;  // by session
    std::unordered_map<std::string, ServerPlayerImpl*> bykey_;
    std::array<Blocks, 3> dimensions_;  // overworld, nether, end
};

}  // namespace host
