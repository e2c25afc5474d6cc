// The texts that came to the market behind its two fixed tables. They are merged into the language file with those, so
// that operators translate and change them there like any other.
#pragma once

#include "platform/text.h"

namespace ordomart {

namespace owntext {
inline constexpr const char* paymentrefused = "money.refused";
inline constexpr const char* cannotsave = "market.cannotsave";
inline constexpr const char* takingover = "market.takingover";
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
inline constexpr const char* enchantedname = "ledger.enchanted";   // {0}: an item's name
inline constexpr const char* pricestitle = "ledger.prices.title";  // {0}: the item, {1}: the money's name
inline constexpr const char* pricesdays = "ledger.prices.days";    // {0}: how many
inline constexpr const char* pricesline =
    "ledger.prices.line";  // {0}: days, middle, lowest, highest, trades, pieces, money
inline constexpr const char* pricesnone = "ledger.prices.none";  // {0}: days
inline constexpr const char* pricesnever = "ledger.prices.never";
inline constexpr const char* pricesoffers = "ledger.prices.offers";
inline constexpr const char* pricescommissions = "ledger.prices.commissions";
inline constexpr const char* pricesoffer = "ledger.prices.offer";      // {0}: price, {1}: pieces, {2}: shop
inline constexpr const char* pricesunknown = "ledger.prices.unknown";  // {0}: as typed
inline constexpr const char* pricesempty = "ledger.prices.empty";
inline constexpr const char* noledger = "ledger.missing";
inline constexpr const char* tradestitle = "ledger.trades.title";
inline constexpr const char* tradesnone = "ledger.trades.none";
// {0}: number, {1}: time, {2}: who, {3}: pieces, {4}: item, {5}: whose shop, {6}: money, {7}: its name
inline constexpr const char* tradesbought = "ledger.trades.bought";
inline constexpr const char* tradessold = "ledger.trades.sold";
inline constexpr const char* tradesundo = "ledger.trades.undo";      // {0}: number, {1}: time, {2}: the trade's number
inline constexpr const char* tradesundone = "ledger.trades.undone";  // {0}: its line, {1}: number of what undid it
inline constexpr const char* undoaway = "ledger.undo.away";          // {0}: player
inline constexpr const char* undopieces = "ledger.undo.pieces";      // {0}: player, {1} of {2} pieces, {3}: item
inline constexpr const char* undomoney = "ledger.undo.money";    // {0}: player, has {1} of {2}, {3}: the money's name
inline constexpr const char* undostored = "ledger.undo.stored";  // {0}: owner, {1} of {2} pieces, {3}: item
inline constexpr const char* undocommission = "ledger.undo.commission";  // {0}: item, {1}: offer
inline constexpr const char* undooffer = "ledger.undo.offer";            // {0}: item, {1}: offer
inline constexpr const char* undounknown = "ledger.undo.unknown";        // {0}: item
inline constexpr const char* undonone = "ledger.undo.none";              // {0}: number
inline constexpr const char* undonotrade = "ledger.undo.notrade";        // {0}: number, {1}: kind
inline constexpr const char* undotwice = "ledger.undo.twice";            // {0}: number, {1}: of the entry that did it
// {0}: number, {1}: pieces, {2}: item, {3}: money, {4}: its name, {5}: who traded, {6}: whose shop, {7}: of the entry
inline constexpr const char* undodone = "ledger.undo.done";
inline constexpr const char* undotold = "ledger.undo.told";
inline constexpr const char* kindwords = "ledger.kind.";  // and the name of a kind of entries
inline constexpr const char* auditbegins = "ledger.audit.begins";
inline constexpr const char* auditruns = "ledger.audit.runs";
inline constexpr const char* auditends = "ledger.audit.ends";          // {0}: entries, {1}: shops, {2}: differences
inline constexpr const char* auditaccepted = "ledger.audit.accepted";  // {0}: shops
inline constexpr const char* auditmore = "ledger.audit.more";          // {0}: how many lines
// ---- settings and texts read again
inline constexpr const char* reloadruns = "market.reload.runs";
inline constexpr const char* reloadrefused = "market.reload.refused";
inline constexpr const char* reloadfault = "market.reload.fault";      // {0}: file, key and why
inline constexpr const char* reloadchanged = "market.reload.changed";  // {0}: key, {1}: before, {2}: now
inline constexpr const char* reloadwaits = "market.reload.waits";      // {0}: key, {1}: in force, {2}: in the file
inline constexpr const char* reloaddone = "market.reload.done";        // {0}: settings, {1} of {2} texts
// ---- a market that is handed over; {0}: the file, {1} shops, {2} goods, {3} commissions, {4} entries of the ledger
inline constexpr const char* handoverruns = "market.handover.runs";
inline constexpr const char* handovername = "market.handover.name";  // {0}: as typed
inline constexpr const char* exportbegins = "market.export.begins";  // {0}
inline constexpr const char* exportshops = "market.export.shops";    // {0} to {3}
inline constexpr const char* exportdone = "market.export.done";
inline constexpr const char* exportthere = "market.export.there";      // {0}
inline constexpr const char* exportfailed = "market.export.failed";    // {0}: why
inline constexpr const char* importbegins = "market.import.begins";    // {0}
inline constexpr const char* importmissing = "market.import.missing";  // {0}
inline constexpr const char* importmoney = "market.import.money";      // {0}, {1}: the money there, {2}: here
inline constexpr const char* importchecked = "market.import.checked";
inline constexpr const char* importdone = "market.import.done";
inline constexpr const char* importrefused = "market.import.refused";  // {0}: why
}  // namespace owntext

// The fixed tables and these rows. Any thread.
[[nodiscard]] const platform::LangData& alllangdata();

}  // namespace ordomart
