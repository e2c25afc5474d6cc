// What a world consists of, for the network that brings players into it.
#pragma once

#include "host/world/droppeditems.h"
#include "host/world/knownnames.h"
#include "host/world/levelimpl.h"
#include "host/world/playerrecords.h"
#include "host/world/scoreboardimpl.h"
#include "host/world/world.h"
#include "host/world/writestate.h"

namespace host {

struct World::Parts {
    Parts(const std::string& path, bool mustexist)
        : file(path, mustexist), records(file), ground(file), names(file), scoreboard(file) {}

    Database file;
    PlayerRecords records;
    DroppedItems ground;
    KnownNames names;
    ScoreboardImpl scoreboard;
    LevelImpl level;
    Store* const stores[4] = {&records, &ground, &names, &scoreboard};
    WriteState state{file.path()};

    // Writes everything that has changed, in one transaction; false when that did not work.
    bool write();
    void writestores();
    void forgetchanges();
    // Throws std::runtime_error when he cannot come in. What was left on his cursor is put away.
    ServerPlayerImpl& enter(const JoinRequest& request, ClientLink& link);
    void leave(ServerPlayerImpl& player);
    [[nodiscard]] ServerPlayerImpl& online(const std::string& name);  // throws std::runtime_error when he is not
};

}  // namespace host
