// The texts that came to the market behind its two fixed tables. They are merged into the language file with those, so
// that operators translate and change them there like any other.
#pragma once

#include "platform/text.h"

namespace ordomart {

namespace owntext {
inline constexpr const char* paymentrefused = "money.refused";
inline constexpr const char* cannotsave = "market.cannotsave";
inline constexpr const char* slotschanged = "recycleshop.error.slotchanged";
inline constexpr const char* toomanypieces = "trade.error.toomany";
inline constexpr const char* stackskept = "myrecycleshop.pickupitem.kept";  // {0}: how many
inline constexpr const char* offmoneystays = "getoffmoney.refused";
// ---- the ledger
inline constexpr const char* awaytitle = "ledger.away.title";
// {0}: trades, {1}: pieces, {2}: money, {3}: its name
inline constexpr const char* awaysales = "ledger.away.sales";
inline constexpr const char* awaypurchases = "ledger.away.purchases";
inline constexpr const char* awaysoldout = "ledger.away.soldout";  // {0}: titles
inline constexpr const char* awayfull = "ledger.away.full";        // {0}: titles
inline constexpr const char* andmore = "ledger.andmore";           // {0}: titles, {1}: how many more
}  // namespace owntext

// The fixed tables and these rows. Any thread.
[[nodiscard]] const platform::LangData& alllangdata();

}  // namespace ordomart
