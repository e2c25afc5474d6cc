// Everybody who was ever here, by key: the xuid, or the name of a player who has none. The inventory of a player is in
// memory from his join until he has left and all of it is in the file.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "host/world/database.h"
#include "host/world/inventory.h"
#include "platform/player.h"

namespace host {

struct JoinRequest;

struct PlayerRecord {
    std::string key, name, xuid, language;
    int devicetype = 7;
    int permission = 0;
    bool alive = true;
    platform::Vec3 position;
    int dimension = 0;
    int gametype = 0;

    bool unwritten = false;
    bool online = false;
    std::unique_ptr<Inventory> inventory;
};

// Letters of a name without their case: two names that differ in nothing else are one name.
[[nodiscard]] std::string foldedname(std::string_view name);
[[nodiscard]] std::string playerkey(std::string_view xuid, std::string_view name);

class PlayerRecords : public Store {
public:
    explicit PlayerRecords(Database& file);

    // The record of somebody who joins, with his inventory; made when he is new. The permission of a request counts
    // when it is above 0, so that a level given by the operator outlives a plain join. Throws std::runtime_error when
    // he is online already, when the name is another player's, or when his stored stacks are damaged.
    PlayerRecord& enter(const JoinRequest& request);
    // Somebody who is known before he first joins. Nothing when the xuid or the name is known already.
    void introduce(const std::string& name, const std::string& xuid, const std::string& language);
    void leave(PlayerRecord& record) { record.online = false; }
    void mark(PlayerRecord& record);  // something but his inventory has changed

    [[nodiscard]] PlayerRecord* find(std::string_view name);   // by name, case aside; null when unknown
    [[nodiscard]] PlayerRecord& named(std::string_view name);  // throws std::runtime_error instead
    [[nodiscard]] const std::map<std::string, PlayerRecord>& all() const { return records_; }

    [[nodiscard]] bool changed() const override;
    void write(Database& file) override;
    void written() override;

private:
    [[nodiscard]] std::unique_ptr<Inventory> readinventory(const PlayerRecord& record);

    Database& file_;
    std::map<std::string, PlayerRecord> records_;           // by key
    std::map<std::string, std::string, std::less<>> keys_;  // by folded name
    std::set<PlayerRecord*> active_;                        // online, or with something that is not written yet
};

}  // namespace host
