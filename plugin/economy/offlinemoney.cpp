// A collection moves the whole waiting sum or nothing.
#include "plugin/economy/offlinemoney.h"

#include <cstdint>
#include <stdexcept>

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/marketopen.h"
#include "plugin/economy/objectives.h"
#include "plugin/economy/paynotes.h"
#include "plugin/economy/scoreaccount.h"

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

// The account is emptied behind the score, and the score set back where that fails.
moneyrefusal move(ServerPlayer* player, const std::string& account, std::int32_t offline) {
    const scoreaccount score(player);
    if (auto refused = tried([&] { return score.give(offline); })) return refused;
    auto refused = tried([&]() -> moneyrefusal {
        if (scoreboard().setScore(offlineobjective, account, 0)) return {};
        return "the account cannot be emptied";
    });
    if (!refused) return refused;
    if (const auto twice = tried([&] { return score.ungive(offline); }))
        logger.fatal("{} TWICE: paid out to {} and still in {}, and it cannot be taken back: {}", offline,
                     player->getRealName(), account, *twice);
    return refused;
}

constexpr const char* overflowtext =
    "ERROR:DATAOVERFLOW! FAILURE OF DEAL! THE NUMBER IS TOO BIG!\n"
    "数据溢出，你的离线金钱太多了！请联系管理员调查解决";

void payout(ServerPlayer* player, const std::string& account, std::int64_t current, std::int32_t offline) {
    if (const auto refused = move(player, account, offline)) {
        logger.error("{} for {} stay in {}: {}", offline, player->getRealName(), account, *refused);
        player->sendText(isscore(current + offline) ? tr(player, owntext::offmoneystays) : overflowtext);
        return;
    }
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
        if (marketopen()) return payout(player, account, current, offline);
        return player->sendText(tr(player, closedtext()));
    }
    if (!verbose) return;
    player->sendText(tr(player, "getoffmoney.nooffmoney") + ":0");
    playsound(player, "mob.villager.no");
}

}  // namespace ordomart
