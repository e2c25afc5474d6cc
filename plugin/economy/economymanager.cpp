// A transfer has two halves, and the first is taken back when the second is refused. Where there is a choice, the half
// that can be refused for want of money comes first, so that there is seldom anything to take back.
#include "plugin/economy/economymanager.h"

#include <algorithm>
#include <functional>

#include "platform/host.h"
#include "plugin/base/directories.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/economy/moneylibrary.h"
#include "plugin/economy/objectives.h"
#include "plugin/economy/paynotes.h"
#include "plugin/economy/scoreaccount.h"

namespace ordomart {

bool offlinenbtlookup = false;

namespace {

bool issystem(const std::string& xuid) { return xuid.empty() || xuid == "0"; }

scoreaccount accountof(const std::string& xuid, const char* operation, const char* verb) {
    scoreaccount account(xuid);
    if (offlinenbtlookup && account.isofabsent())
        logger.warn("cant find {}'s nbt scoreboardid in {}, now {} offlineaccount...", xuid, operation, verb);
    return account;
}

struct payment {
    std::string from, to;  // empty: the system
    std::int64_t amount;
    std::string note = {};
    std::int64_t fee = 0;
    transferred* told = nullptr;

    void tell(std::int64_t paid, std::int64_t charged) const {
        if (told != nullptr) *told = {paid, charged};
    }
};

std::string named(const std::string& xuid) { return issystem(xuid) ? "SYSTEM" : xuid; }

// Whether it moved.
bool moved(const payment& asked, const std::function<moneyrefusal(const payment&)>& move) {
    const auto refused = tried([&]() -> moneyrefusal {
        ensureobjectives();
        if (asked.amount < 0) return "it is less than nothing";
        return move(asked);
    });
    if (refused)
        logger.error("The payment of {} from {} to {} is refused: {}{}", asked.amount, named(asked.from),
                     named(asked.to), *refused, asked.note.empty() ? "" : "\nnote:" + asked.note);
    return !refused;
}

// The first half of a refused payment goes back to the payer.
template <class Move>
void giveback(const payment& of, std::int64_t amount, const Move& move) {
    if (const auto refused = tried(move))
        logger.fatal("{} LOST: taken from {} for a payment to {} that was refused, and it cannot be given back: {}",
                     amount, named(of.from), named(of.to), *refused);
}

// How taking and giving differ.
struct movement {
    const char* operation;
    moneyrefusal (*inlibrary)(const std::string&, std::int64_t);
    moneyrefusal (scoreaccount::*inscores)(std::int64_t) const;
};

constexpr movement taking = {"MCGLOBALECONOMYMANAGER::reduceMoneyhas", &moneylibrary::reduce, &scoreaccount::take};
constexpr movement giving = {"MCGLOBALECONOMYMANAGER::addMoney", &moneylibrary::add, &scoreaccount::give};

moneyrefusal changebalance(const movement& how, const std::string& xuid, std::int64_t amount) {
    if (issystem(xuid)) return "the system has no account";
    if (moneymode == 1) return how.inlibrary(xuid, amount);
    return (accountof(xuid, how.operation, "operator").*how.inscores)(amount);
}

// What the payer is asked for beside the receiver's share. Where the fee is more than the whole amount, there is no
// share: he pays of it what he has, but the amount at least.
std::int64_t feeinlibrary(const payment& p) {
    if (issystem(p.from) || p.fee <= 0) return 0;
    if (p.fee <= p.amount) return p.fee;
    return std::min(p.fee, std::max(p.amount, moneylibrary::get(p.from).value_or(0)));
}

moneyrefusal transferinlibrary(const payment& p) {
    const auto party = [](const std::string& xuid) { return issystem(xuid) ? std::string() : xuid; };
    const std::int64_t fee = feeinlibrary(p), rest = p.amount - p.fee;
    p.tell(fee + std::max<std::int64_t>(rest, 0), fee);
    if (fee != 0)
        if (auto refused = moneylibrary::reduce(p.from, fee)) return refused;
    if (rest < 0) return {};
    auto refused = tried([&] { return moneylibrary::trans(party(p.from), party(p.to), rest, p.note); });
    if (refused && fee != 0) giveback(p, fee, [&] { return moneylibrary::add(p.from, fee); });
    return refused;
}

// A half that is refused has a line of its own.
template <class Move>
moneyrefusal half(const char* what, std::int64_t amount, const std::string& xuid, const std::string& note,
                  const Move& move) {
    auto refused = tried(move);
    if (refused)
        logger.error("error at createmoneyTrans when {} {} money for {} when use scoreboard ecc,\nnote:{}", what,
                     amount, xuid, note);
    return refused;
}

moneyrefusal transferinscores(const payment& p) {
    p.tell(p.amount, p.fee);
    // Both accounts are there before either is changed.
    std::optional<scoreaccount> payer, payee;
    if (!issystem(p.from)) payer = accountof(p.from, taking.operation, "operator");
    if (!issystem(p.to)) payee = accountof(p.to, giving.operation, "operator");
    if (payer)
        if (auto refused = half("reduce", p.amount, p.from, p.note, [&] { return payer->take(p.amount); }))
            return refused;
    if (!payee) return {};
    const std::int64_t rest = p.amount - p.fee;
    auto refused = half("add", rest, p.to, p.note, [&] { return payee->give(rest); });
    if (refused && payer) giveback(p, p.amount, [&] { return payer->untake(p.amount); });
    return refused;
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

std::optional<std::int64_t> moneyof(const std::string& xuid) {
    std::optional<std::int64_t> balance;
    const auto refused = tried([&]() -> moneyrefusal {
        ensureobjectives();
        balance = moneymode == 1 ? moneylibrary::get(xuid)
                                 : accountof(xuid, "MCGLOBALECONOMYMANAGER::queryMoneyhas", "return").score();
        return {};
    });
    if (refused) logger.error("The balance of {} cannot be read: {}", xuid, *refused);
    return balance;
}

std::int64_t MCGLOBALECONOMYMANAGER::queryMoneyhas(const std::string& xuid) { return moneyof(xuid).value_or(0); }

bool MCGLOBALECONOMYMANAGER::reduceMoneyhas(const std::string& xuid, std::int64_t amount) {
    return moved({xuid, "", amount}, [](const payment& p) { return changebalance(taking, p.from, p.amount); });
}

bool MCGLOBALECONOMYMANAGER::addMoney(const std::string& xuid, std::int64_t amount) {
    return moved({"", xuid, amount}, [](const payment& p) { return changebalance(giving, p.to, p.amount); });
}

std::int64_t transferfee(std::int64_t amount, int percent) {
    if (percent == 0) return 0;
    // In two parts, so that a large amount does not leave 64 bits on the way.
    const std::int64_t fee = amount / 100 * percent + amount % 100 * percent / 100;
    return fee != 0 ? fee : 1;
}

bool createmoneyTrans(const std::string& from, const std::string& to, std::int64_t amount, const std::string& note,
                      transferred* told) {
    const bool done = moved({from, to, amount, note, transferfee(amount, tax), told},
                            moneymode == 1 ? &transferinlibrary : &transferinscores);
    // The money has moved, whatever becomes of the line.
    if (done && moneymode != 1 && !issystem(to)) envelope([&] { writepayline(from, amount, to, note); });
    return done;
}

}  // namespace ordomart
