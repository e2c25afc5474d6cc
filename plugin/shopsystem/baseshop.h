// What selling and recycling shops have in common: owner, presentation, ban state, and the book-keeping by which the
// cache saves and forgets. Has no lock: it is reached only in a turn.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "plugin/base/globals.h"

namespace shopsystem {

using nlohmann::json;

enum shoptype : int { sell = 0, recycle = 1 };

// Moved by tick and by the save task. There is no 3.
enum cachestates : std::int32_t { idle = 0, savewanted = 1, queued = 2, saved = 4 };

// A shop that nobody has asked for in so many ticks of the manager is forgotten.
inline constexpr std::int32_t maxidleticks = 3000;

class baseshop {
public:
    explicit baseshop(const std::string& xuid = {});
    virtual ~baseshop() = default;
    baseshop(baseshop&&) = default;
    baseshop& operator=(baseshop&&) = default;

    // Copy the keys that are present; a wrong JSON type throws fielderror. Always true.
    virtual bool loadfromjson(const json& section);
    virtual bool savetojson(json& section);
    [[nodiscard]] virtual shoptype kind() const = 0;
    // Its goods, and the key under which a section has them.
    struct goodsfield {
        const char* key;
        json& list;
    };
    [[nodiscard]] virtual goodsfield goods() = 0;

    // The ban test, which lifts a ban that has run out.
    bool isbanned();
    void setbanstate(bool banned, std::int64_t timeend, const std::string& reason);
    [[nodiscard]] std::string getbanreason() const;
    // When the ban lifts itself, in Unix seconds; nothing for one that does not.
    [[nodiscard]] std::optional<std::int64_t> banend() const;
    // Ends every change of a shop: not idle, one revision further, in the records of this pass, and to be saved.
    void markshopchanged();

    bool keepincache = false;
    bool issystemshop = false;
    bool isbaned = false;
    std::string xuid, ownername, shopname, describe, shopitemicon, ownerlang;
    json shopstate;
    bool isloaded = false;
    bool isdirty = false;
    std::int32_t cachestate = idle;
    // Counts the changes of the shop, and never comes back in a run: who has read it knows by it whether what he has
    // read still holds. Not stored.
    std::uint32_t revision = 0;
    std::int32_t idleticks = 0;

private:
    void refreshbanstate();
};

// Counters and amounts of a shop have 32 bits and no guard; they wrap.
inline void countup(std::int32_t& counter, std::int64_t more) {
    counter = static_cast<std::int32_t>(static_cast<std::uint32_t>(counter) + static_cast<std::uint32_t>(more));
}

}  // namespace shopsystem
