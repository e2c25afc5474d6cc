// A shop that changes is put into the server's records in the pass in which it changes, whole with the money and the
// stacks that changed with it. Its file follows some seconds later and is never ahead of the records; when it has
// caught up, the record goes. What a run leaves behind, killed or not able to write files, the next one brings in:
// until its file has caught up, what the record says is the shop. A host without records has only files.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plugin/shopsystem/baseshop.h"

namespace shopsystem {

// In a turn: the section is the shop from this pass on, whatever its file says. A shop that is not in the cache is
// brought in from its record when it is next asked for.
void putsection(const std::string& xuid, int kind, const json& section);
// In a turn. The shop is looked at when the pass is written.
void putrecord(baseshop& shop);
void eraserecord(const std::string& xuid, int kind);
// Whether what the shop looks like now is on the disk and may go to its file.
[[nodiscard]] bool recordwritten(const std::string& xuid, int kind);

// At the start, before anybody reads a shop: what the last run has left. The shops are brought in beside the server;
// who needs one earlier gets it from its record as well.
void bringinrecords();
// The section that the last run left in the records, which stands above what the file says. One that does not parse is
// put aside. Any thread; not while a mutex is held that is taken in a turn.
[[nodiscard]] std::optional<json> leftrecord(const std::string& xuid, int kind);
[[nodiscard]] bool hasleftrecord(const std::string& xuid, int kind);
// Owners and kinds of the first ones, at most so many.
[[nodiscard]] std::vector<std::pair<std::string, int>> leftrecords(std::size_t most);
// One that is broken: it is named and kept in the table "shops.broken", and the file stands.
void setasideleftrecord(const std::string& xuid, int kind, const std::string& why);
// The shop is in the cache.
void forgetleftrecord(const std::string& xuid, int kind);

}  // namespace shopsystem
