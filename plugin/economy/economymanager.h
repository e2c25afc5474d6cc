// The one road by which money is read and moved, over LLMoney or a scoreboard objective. Money is addressed by xuid;
// "0" and the empty string are the system, which has no account. Server thread. Amounts are signed 64 bits; a
// scoreboard keeps 32. What moves money says whether it moved: false means that everybody has what he had, and that an
// error line tells from whom to whom, how much and why not. Nothing here throws because money could not be moved.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "plugin/base/globals.h"

namespace ordomart {

// Binds LLMoney, or falls back to the scoreboard by setting moneymode to 0.
void bindeconomy();
// Makes the two objectives. False, with an error line, while the world is not there.
bool ensureobjectives();
[[nodiscard]] std::string getmoneyname();

// The balance; nothing, with an error line, when whoever keeps it cannot tell.
[[nodiscard]] std::optional<std::int64_t> moneyof(const std::string& xuid);

struct MCGLOBALECONOMYMANAGER {
    // For a look: 0 for a balance that cannot be told.
    static std::int64_t queryMoneyhas(const std::string& xuid);
    // A negative amount is refused, as the library does: it would move money the other way.
    [[nodiscard]] static bool reduceMoneyhas(const std::string& xuid, std::int64_t amount);
    [[nodiscard]] static bool addMoney(const std::string& xuid, std::int64_t amount);
};

// Whether the saved data of an absent player is asked for his score before his offline account is used. Nothing sets
// it; the platform offers no saved data, so that set it only adds the warning that the search failed.
extern bool offlinenbtlookup;

// `percent` of the amount, towards zero; at least 1 with any tax, for an amount of 0 too.
[[nodiscard]] std::int64_t transferfee(std::int64_t amount, int percent);

// What a transfer has moved: what left the payer, and what of it the receiver does not get. A receiver on the
// scoreboard may be asked for the fee of a payment of nothing: then the fee is more than what was paid.
struct transferred {
    std::int64_t paid = 0, fee = 0;
};

// Moves the amount, less the tax. Does not check the balance, which the library does and a scoreboard does not.
[[nodiscard]] bool createmoneyTrans(const std::string& from, const std::string& to, std::int64_t amount,
                                    const std::string& note, transferred* told = nullptr);

}  // namespace ordomart
