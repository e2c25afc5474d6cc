// The ledger of the market: each trade, and each movement of an owner's goods or deposit, is one numbered entry in the
// server's records, written in the pass in which it happens or not at all. On a host without records there is none.
// In a turn; entries are written on the server thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plugin/ledger/days.h"
#include "plugin/ledger/entry.h"
#include "plugin/ledger/replay.h"

namespace ledger {

// At the start, before anything is traded.
void start();
[[nodiscard]] bool isopen();

// What the one who changes a shop says of it, behind the change.
struct happening {
    kind what = kind::purchase;
    std::string actor = {};
    bool byoperator = false;
    std::string itemnbt = {};  // of the record
    std::int64_t pieces = 0, price = 0, paid = 0, fee = 0;
    std::optional<rowstate> before = {}, after = {};
    std::vector<std::pair<std::string, std::int64_t>> piles = {};  // texts of single pieces, and how many
    std::string title = {};                                        // as its owner calls it
    const entry* undoes = nullptr;
    std::string undoneby = {};  // the operator's xuid
};
// The entry's number; 0 where nothing is written. Nothing is thrown: the trade has happened.
std::uint64_t write(const shopsystem::baseshop& shop, const happening& what);

// ---- reading
[[nodiscard]] std::optional<entry> find(std::uint64_t number);
// Entries from one number on, in their order, at most so many; backwards: those before the number, the newest first.
// One that cannot be read is left out and named in the log; `next` goes on behind them, and is 0 at the end.
struct entries {
    std::vector<entry> all;
    std::uint64_t next = 0;
};
[[nodiscard]] entries readfrom(std::uint64_t number, std::size_t most);
[[nodiscard]] entries readbefore(std::uint64_t number, std::size_t most);
[[nodiscard]] std::uint64_t nextnumber();
[[nodiscard]] std::optional<std::uint64_t> undoneby(std::uint64_t number);
// The text that an entry's hash stands for; empty when it is not known.
[[nodiscard]] std::string textof(std::uint64_t tag);
[[nodiscard]] variant variantof(std::uint64_t tag);
// What was traded: an entry's item, or what it took.
[[nodiscard]] std::vector<std::pair<variant, std::int64_t>> goodsin(const entry& trade);

// ---- the books with which shops began
[[nodiscard]] std::vector<std::pair<std::string, shopbooks>> openings(const std::string& from, std::size_t most);
[[nodiscard]] std::optional<shopbooks> openingof(const std::string& xuid, int section);
// The shop is right as it is, whatever the ledger says of it so far.
void openanew(const shopsystem::baseshop& shop);

// ---- a ledger that is written down, or taken over from another market
// While it is held, nothing is thinned. Any thread.
class thinningheld {
public:
    thinningheld();
    ~thinningheld();
    thinningheld(const thinningheld&) = delete;
    thinningheld& operator=(const thinningheld&) = delete;
};
// One piece of it. The numbers are this ledger's already, from nextnumber() on; a sum is added to what there is of its
// day. Until all of it is here and start() has been called, nobody may write.
void takein(const entry& one);
void takein(const std::string& tagtext);
void takein(const std::string& xuid, int section, const shopbooks& opening);
// Entries from one number on, up to another, are another market's: their money was moved by another library, and their
// times may be earlier than those of entries before them.
void notetakenover(std::uint64_t first, std::uint64_t end);
// The first number of the part that an entry was taken over with; 0 for one of this market's own.
[[nodiscard]] std::uint64_t takenoverwith(std::uint64_t number);

// Each second, on the server thread: entries and sums older than the settings ask for go, a few at a time. The books of
// the shops are carried on over what goes.
void thin();

}  // namespace ledger
