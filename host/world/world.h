// Everything that outlives a restart: players with their inventories, scoreboard, known names; kept in one SQLite file
// (WAL) under the server directory and written as it changes. Server thread, but for what says otherwise.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/item.h"
#include "platform/level.h"
#include "platform/records.h"
#include "platform/scoreboard.h"
#include "platform/stores.h"

namespace host {

struct JoinRequest;
struct MoneyLibrary;
class ServerPlayerImpl;

struct DroppedItem {
    platform::ItemStack stack;
    platform::Vec3 position;
    int dimension = 0;
};

// What is known of a player, online or not.
struct PlayerSummary {
    std::string name, xuid, language;
    int devicetype = 7;
    int permission = 0;
    bool online = false;
    bool alive = true;
};

class World {
public:
    // Opens the file, or makes it unless it must exist. Throws StartError that names it.
    explicit World(const std::string& databasepath, bool mustexist = false);
    ~World();

    [[nodiscard]] platform::Level& level();
    [[nodiscard]] platform::Scoreboard& scoreboard();
    [[nodiscard]] platform::KnownPlayers& knownplayers();  // any thread
    [[nodiscard]] platform::StoreState& stores();
    [[nodiscard]] platform::Records& tables();
    // Any thread: from now on what changes in a money library that leaves the writing to its host is written with
    // everything else.
    void join(const MoneyLibrary& library);

    [[nodiscard]] std::vector<PlayerSummary> players() const;
    [[nodiscard]] std::vector<DroppedItem> droppeditems() const;  // in the order they fell
    // Makes somebody known who has not joined yet, so that he can be named; nothing when he is.
    void introduce(const std::string& name, const std::string& xuid, const std::string& language);
    // What an operator sets from outside the game; each works for players who are away too (names as known).
    // They throw std::runtime_error with a clear text.
    void setalive(const std::string& playername, bool alive);
    void setpermission(const std::string& playername, int level);
    void setgametype(const std::string& playername, int gametype);  // 0 survival, 1 creative
    void setposition(const std::string& playername, platform::Vec3 position, int dimension = 0);
    [[nodiscard]] int score(const std::string& playername, const std::string& objective) const;
    void setscore(const std::string& playername, const std::string& objective, int value);
    // Real stacks: 0 to 35 inventory, 36 to 39 armour, 40 offhand. Online players only.
    [[nodiscard]] platform::ItemStack item(const std::string& playername, int slot) const;
    void setitem(const std::string& playername, int slot, const platform::ItemStack& stack);
    // A block on layer 0, or an extra block on layer 1; it stands until the server stops.
    void setblock(int dimension, platform::BlockPos pos, const std::string& name, int layer = 0);
    // The end of a pass: shows online players what changed in their slots otherwise than by their own requests, and
    // writes everything that is not written yet, in one transaction. What cannot be written is logged and tried again,
    // with growing pauses; a file that is locked is waited for some 20 ms.
    void flush();
    // The last one, with more patience: what cannot be written is kept aside for the next start. What became of it
    // then, or nothing when all is written.
    [[nodiscard]] std::string lastflush();
    // Off, a client sees a change only where somebody shows it to him: for tests of those who must.
    bool showschanges = true;

    struct Parts;
    [[nodiscard]] Parts& parts() { return *parts_; }

private:
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
