// A collection moves the whole waiting sum or, where it does not fit into a score, nothing.
#include "plugin/economy/offlinemoney.h"

#include <cstdint>
#include <stdexcept>

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/objectives.h"
#include "plugin/economy/paynotes.h"

namespace ordomart {

std::string offlineaccount(const std::string& xuid) { return "a" + xuid; }

bool ensureofflineaccount(const std::string& name) {
    Objective& objective = existingobjective(offlineobjective);
    ScoreboardId id = scoreboard().getScoreboardId(name);
    if (!id.isValid()) {
        debuglogger.warn("try to create offmoneyxuidaccount: {}...", name);
        id = scoreboard().createScoreboardId(name);
    }
    if (objective.hasScore(id)) return true;
    debuglogger.warn("try to add initscore(0) for offmoneyxuidaccount: {}...", name);
    giveinitialscore(id, objective);
    return true;
}

namespace {

// Whether the 32-bit sum leaves its range.
bool overflows(std::int32_t current, std::int32_t added) {
    const auto sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(current) + static_cast<std::uint32_t>(added));
    return added < 0 ? current < 0 && sum > 0 : current >= 0 && sum < 0;
}

// Makes what a balance needs, one piece at a time: an id that had to be made gets its score at the next attempt.
template <class Whose>
void repairscore(const Whose& whose, const std::string& name, const std::string& objectivename) {
    const ScoreboardId id = scoreboard().getScoreboardId(whose);
    if (!id.isValid()) {
        logger.warn("try to create offmoneyxuid for {}...", name);
        scoreboard().createScoreboardId(whose);
        return;
    }
    Objective& objective = existingobjective(objectivename);
    if (objective.hasScore(id)) return;
    giveinitialscore(id, objective);
    logger.warn("try to add initscore(0) for {}...", name);
}

void repair(const ServerPlayer& player, const std::string& account) {
    repairscore(account, account, offlineobjective);
    repairscore<Player>(player, player.getRealName(), scoremoneyname);
}

void payout(ServerPlayer* player, const std::string& account, std::int32_t offline) {
    scoreboard().addScore(*player, scoremoneyname, offline);
    scoreboard().setScore(offlineobjective, account, 0);
    const std::string success = tr(player, "getoffmoney.success");
    playsound(player, "mob.villager.yes");
    player->sendText(success + ":" + std::to_string(offline));
    moneytoast(player, success, '+', offline);
}

}  // namespace

void getoffmoney(ServerPlayer* player, bool verbose) {
    ensureobjectives();
    const std::string account = offlineaccount(player->getXuid());
    std::int32_t offline = 0, current = 0;
    try {
        offline = scoreboard().getScore(offlineobjective, account);
        current = scoreboard().getScore(*player, scoremoneyname);
    } catch (const std::runtime_error& e) {
        player->sendText(tr(player, "getoffmoney.nooffmoney"));
        logger.error("error Info:{}\nerror at get offmoney for {}", e.what(), account);
        return repair(*player, account);
    }
    if (offline != 0) {
        if (overflows(current, offline))
            return player->sendText(
                "ERROR:DATAOVERFLOW! FAILURE OF DEAL! THE NUMBER IS TOO BIG!\n"
                "数据溢出，你的离线金钱太多了！请联系管理员调查解决");
        return payout(player, account, offline);
    }
    if (!verbose) return;
    player->sendText(tr(player, "getoffmoney.nooffmoney") + ":0");
    playsound(player, "mob.villager.no");
}

}  // namespace ordomart
