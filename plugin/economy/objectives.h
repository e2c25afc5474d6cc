// The two objectives that scoreboard money lives on. Server thread.
#pragma once

#include <string>

#include "platform/scoreboard.h"
#include "plugin/base/globals.h"

namespace ordomart {

inline const std::string moneyobjectivetitle = "coins", offlineobjectivetitle = "offlinemoney";

// All three throw std::runtime_error, "the obj doesn't exist", where the objective or the whole scoreboard is missing.
[[nodiscard]] Scoreboard& scoreboard();
[[nodiscard]] Objective& existingobjective(const std::string& name);
void demandobjective(const std::string& name);

// The objective `scoremoneyname`, made when it is missing.
Objective& moneyobjective();

// Adds 0, which gives the id a score.
void giveinitialscore(ScoreboardId id, Objective& objective);

}  // namespace ordomart
