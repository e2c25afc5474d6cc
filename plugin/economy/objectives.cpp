// Asked for at each money operation until the world is there, and made once.
#include "plugin/economy/objectives.h"

#include <stdexcept>
#include <tuple>

#include "platform/host.h"
#include "plugin/economy/economymanager.h"

namespace ordomart {

namespace {

bool objectivesready = false;

[[noreturn]] void missing() { throw std::runtime_error("the obj doesn't exist"); }

Objective& madeobjective(const std::string& name, const std::string& title) {
    Objective* objective = scoreboard().getObjective(name);
    if (objective == nullptr) objective = scoreboard().newObjective(name, title);
    if (objective == nullptr) missing();
    return *objective;
}

}  // namespace

bool ensureobjectives() {
    if (objectivesready) return true;
    if (host().level == nullptr || host().scoreboard == nullptr) {
        logger.error("NULL Global Level or Scoreboard !");
        return false;
    }
    objectivesready = true;
    moneyobjective();
    madeobjective(offlineobjective, offlineobjectivetitle);
    return true;
}

Scoreboard& scoreboard() {
    if (host().scoreboard == nullptr) missing();
    return *host().scoreboard;
}

Objective& existingobjective(const std::string& name) {
    Objective* const objective = scoreboard().getObjective(name);
    if (objective == nullptr) missing();
    return *objective;
}

void demandobjective(const std::string& name) { std::ignore = existingobjective(name); }

Objective& moneyobjective() { return madeobjective(scoremoneyname, moneyobjectivetitle); }

void giveinitialscore(ScoreboardId id, Objective& objective) {
    bool success = false;
    scoreboard().modifyPlayerScore(success, id, objective, 0, PlayerScoreSetFunction::Add);
}

}  // namespace ordomart
