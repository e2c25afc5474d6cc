// Both back ends of taking and giving are rows of one table. A failure in the middle of a transfer is logged and the
// transfer goes on.
#include "plugin/economy/economymanager.h"

#include "platform/host.h"
#include "platform/level.h"
#include "plugin/base/directories.h"
#include "plugin/base/language.h"
#include "plugin/economy/moneylibrary.h"
#include "plugin/economy/objectives.h"
#include "plugin/economy/offlinemoney.h"
#include "plugin/economy/paynotes.h"

namespace ordomart {

bool offlinenbtlookup = false;

namespace {

bool issystem(const std::string& xuid) { return xuid.empty() || xuid == "0"; }

ServerPlayer* onlineplayer(const std::string& xuid) {
    return host().level != nullptr ? host().level->getPlayerByXuid(xuid) : nullptr;
}

// An absent player has no score that could be reached: his offline account stands for it.
std::string accountofabsent(const std::string& xuid, const char* operation, const char* verb) {
    if (offlinenbtlookup)
        logger.warn("cant find {}'s nbt scoreboardid in {}, now {} offlineaccount...", xuid, operation, verb);
    std::string account = offlineaccount(xuid);
    ensureofflineaccount(account);
    return account;
}

// How taking and giving differ.
struct movement {
    const char* operation;
    bool (*inlibrary)(const std::string&, std::int64_t);
    bool (Scoreboard::*online)(Player&, const std::string&, int);
    bool (Scoreboard::*absent)(const std::string&, const std::string&, int);
};

constexpr movement taking = {"MCGLOBALECONOMYMANAGER::reduceMoneyhas", &moneylibrary::reduce, &Scoreboard::reduceScore,
                             &Scoreboard::reduceScore};
constexpr movement giving = {"MCGLOBALECONOMYMANAGER::addMoney", &moneylibrary::add, &Scoreboard::addScore,
                             &Scoreboard::addScore};

bool changebalance(const movement& how, const std::string& xuid, std::int64_t amount) {
    ensureobjectives();
    if (issystem(xuid)) return false;
    if (moneymode == 1) return how.inlibrary(xuid, amount);
    const int score = static_cast<int>(amount);
    if (ServerPlayer* const player = onlineplayer(xuid))
        return (scoreboard().*how.online)(*player, scoremoneyname, score);
    (scoreboard().*how.absent)(offlineobjective, accountofabsent(xuid, how.operation, "operator"), score);
    return true;
}

}  // namespace

void bindeconomy() {
    if (moneymode == 1 && !moneylibrary::bind()) {
        logger.info("failed to find LLmoney.dll");
        moneymode = 0;
    }
    if (moneymode != 1) moneymode = 0;
    ensuredirectory(paths::log, LogLevel::error);
    Logger::setDefaultFile(paths::simpletrade, true);
    tradelogger.consolelevel = 0;
}

std::string getmoneyname() {
    ensureobjectives();
    static const std::string key = "ordomart.moneyname", notset = "moneyname";
    if (std::string name = tr(std::string(), key); name != notset) return name;
    return moneymode == 1 ? "LLmoney" : moneyobjective().getDisplayName();
}

std::int64_t MCGLOBALECONOMYMANAGER::queryMoneyhas(const std::string& xuid) {
    ensureobjectives();
    if (moneymode == 1) return moneylibrary::get(xuid);
    if (ServerPlayer* const player = onlineplayer(xuid)) return scoreboard().getScore(*player, scoremoneyname);
    return scoreboard().getScore(offlineobjective,
                                 accountofabsent(xuid, "MCGLOBALECONOMYMANAGER::queryMoneyhas", "return"));
}

bool MCGLOBALECONOMYMANAGER::reduceMoneyhas(const std::string& xuid, std::int64_t amount) {
    return changebalance(taking, xuid, amount);
}

bool MCGLOBALECONOMYMANAGER::addMoney(const std::string& xuid, std::int64_t amount) {
    return changebalance(giving, xuid, amount);
}

std::int64_t transferfee(std::int64_t amount, int percent) {
    if (percent == 0) return 0;
    // In two parts, so that a large amount does not leave 64 bits on the way.
    const std::int64_t fee = amount / 100 * percent + amount % 100 * percent / 100;
    return fee != 0 ? fee : 1;
}

bool createmoneyTrans(const std::string& from, const std::string& to, std::int64_t amount, const std::string& note) {
    ensureobjectives();
    const std::int64_t fee = transferfee(amount, tax);
    if (moneymode == 1) {
        const auto party = [](const std::string& xuid) { return issystem(xuid) ? std::string() : xuid; };
        MCGLOBALECONOMYMANAGER::reduceMoneyhas(from, fee);
        return moneylibrary::trans(party(from), party(to), amount - fee, note);
    }
    // A trade that has begun is finished: neither failure stops the transfer.
    if (!issystem(from) && !MCGLOBALECONOMYMANAGER::reduceMoneyhas(from, amount))
        logger.error("error at createmoneyTrans when reduce {} money for {} when use scoreboard ecc,\nnote:{}", amount,
                     from, note);
    if (!issystem(to)) {
        if (MCGLOBALECONOMYMANAGER::addMoney(to, amount - fee))
            writepayline(from, amount, to, note);
        else
            logger.error("error at createmoneyTrans when add {} money for {} when use scoreboard ecc,\nnote:{}",
                         amount - fee, to, note);
    }
    return true;
}

}  // namespace ordomart
