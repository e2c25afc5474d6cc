// What a world consists of, for the network that brings players into it.
#pragma once

#include "host/world/droppeditems.h"
#include "host/world/knownnames.h"
#include "host/world/levelimpl.h"
#include "host/world/moneystore.h"
#include "host/world/playerrecords.h"
#include "host/world/recordtables.h"
#include "host/world/scoreboardimpl.h"
#include "host/world/world.h"
#include "host/world/writestate.h"

namespace host {

struct World::Parts {
    Parts(const std::string& path, bool mustexist)
        : file(path, mustexist), records(file), ground(file), names(file), scoreboard(file), tables(file) {}

    Database file;
    PlayerRecords records;
    DroppedItems ground;
    KnownNames names;
    ScoreboardImpl scoreboard;
    RecordTables tables;
    MoneyStore money;
    LevelImpl level;
    Store* const stores[6] = {&records, &ground, &names, &scoreboard, &tables, &money};
    WriteState state{file.path()};
    // Called at the points of a write at which a kill would hurt most: "begun", "unfinished" (all is written, nothing
    // committed), "committed". For tests that kill.
    std::function<void(std::string_view point)> atwrite = [](std::string_view) {};

    // Writes everything that has changed, in one transaction; false when that did not work.
    bool write();
    void commit();
    void writestores();
    void forgetchanges();
    // Throws std::runtime_error when he cannot come in. What was left on his cursor is put away.
    ServerPlayerImpl& enter(const JoinRequest& request, ClientLink& link);
    void leave(ServerPlayerImpl& player);
    [[nodiscard]] ServerPlayerImpl& online(const std::string& name);  // throws std::runtime_error when he is not
};

}  // namespace host
