// The histories of shops, one text file for each shop and kind. Server thread, but for readeventlog.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/nbt/tags.h"
#include "plugin/base/globals.h"

namespace shopsystem {

// A line in the file of a shop: suffix ".log" or ".relog". It is there when what it tells of is on the disk.
void writeshopline(const std::string& xuid, const char* suffix, const std::string& message);
// The last 5000 bytes from a line's end on, or "failed to open". Any thread.
[[nodiscard]] std::string readeventlog(const std::string& xuid, const char* suffix);

// The two sentences that tell of a trade, in the log and to the player: the keys of a purchase and of a recycling.
inline constexpr const char* purchasesentence = "Player {0} paid {1} for {2} from {3}";
inline constexpr const char* recyclesentence = "Player {0} gain {1} for {2} from {3}";
// One of them in a language. A text that cannot be filled is logged, and the key takes its place.
[[nodiscard]] std::string tradesentence(const std::string& locale, const char* key, const std::string& player,
                                        std::int64_t money, const std::string& item, const std::string& shopname);
// What both kinds of trade record hold, read off the item: the name, both damages, the enchanted flag, the text; pieces
// and money. The names of player and goods are the caller's to add.
[[nodiscard]] nlohmann::json traderecord(const CompoundTag& itemtag, const std::string& itemnbt, std::int64_t pieces,
                                         std::int64_t money);

}  // namespace shopsystem
