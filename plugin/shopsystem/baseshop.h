// What selling and recycling shops have in common: owner, presentation, ban state, and the book-keeping by which the
// cache saves and forgets. Has no lock: it is reached only in a turn.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "plugin/base/globals.h"

namespace shopsystem {

using nlohmann::json;

enum shoptype : int { sell = 0, recycle = 1 };

// Moved by tick and by the save task. There is no 3.
enum cachestates : std::int32_t { idle = 0, savewanted = 1, queued = 2, saved = 4 };

class baseshop {
public:
    explicit baseshop(const std::string& xuid = {});
    virtual ~baseshop() = default;
    baseshop(baseshop&&) = default;
    baseshop& operator=(baseshop&&) = default;

    // Copy the keys that are present; a wrong JSON type throws the library's type error. Always true.
    virtual bool loadfromjson(const json& section);
    virtual bool savetojson(json& section);

    // The ban test, which lifts a ban that has run out.
    bool isbanned();
    void setbanstate(bool banned, std::int64_t timeend, const std::string& reason);
    [[nodiscard]] std::string getbanreason() const;
    // Ends every change of a shop: not idle, one revision further, to be saved.
    void markshopchanged();

    bool keepincache = false;
    bool issystemshop = false;
    bool isbaned = false;
    std::string xuid, ownername, shopname, describe, shopitemicon, ownerlang;
    json shopstate;
    bool isloaded = false;
    bool isdirty = false;
    std::int32_t cachestate = idle;
    std::uint16_t revision = 0;
    std::int32_t idleticks = 0;

private:
    void refreshbanstate();
};

// Counters and amounts of a shop have 32 bits and no guard; they wrap.
inline void countup(std::int32_t& counter, std::int64_t more) {
    counter = static_cast<std::int32_t>(static_cast<std::uint32_t>(counter) + static_cast<std::uint32_t>(more));
}

// ---- the data file. Any thread; not in a turn, since they read and write files.
// `section` 0 gives the member "sell", 1 "recycles", anything else the whole document. A missing or empty file is made
// with the default content; a missing one gives null. Broken JSON throws shopfileerror, a file that is there and cannot
// be read std::runtime_error, both with the file untouched.
[[nodiscard]] json loadshopdata(const std::string& xuid, int section);
// Replaces one section and keeps the other as it stands on the disk. False, with a log line, when it cannot be written.
bool saveshopdata(const std::string& xuid, const json& value, int section);
void writedefaultshopfile(const std::string& xuid);

// The owner keys of all shop files, in listing order; names without ".json" left out, the rest cut at the first
// ".json", so that the name ".json" gives an empty key.
[[nodiscard]] std::vector<std::string> shopfilekeys();

// A fault in the content of a shop file, which its text names. One of the parser library's exceptions, so that whoever
// catches those catches it too.
class shopfileerror : public nlohmann::detail::exception {
public:
    shopfileerror(const std::string& xuid, const std::string& what);
};

// Runs the body on data of the owner's file; the library's exceptions leave it naming the file.
template <class Body>
decltype(auto) namingfile(const std::string& xuid, Body&& body) {
    try {
        return body();
    } catch (const shopfileerror&) {
        throw;
    } catch (const nlohmann::detail::exception& e) {
        throw shopfileerror(xuid, e.what());
    }
}

}  // namespace shopsystem
