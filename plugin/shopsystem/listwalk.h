// What goes into a player's list, and the making of it. It runs beside the server thread and not in a turn: it takes
// one for a few rows of what has changed since somebody made a list last. What is broken is left out and told once.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "plugin/shopsystem/shopfilter.h"

namespace shopsystem {

struct playershopstate;

enum class listkind { globalsell, globalrecycle, systemsell, systemrecycle, singlesell, singlerecycle };

// What goes into a list. Orders that are equal are filled by one walk.
struct listorder {
    listkind kind;
    std::string shop;             // the one that it is of; empty for all
    shopfilter standing, search;  // as they were when the list was ordered
    bool searching = false;
    bool operator==(const listorder&) const = default;
};

// In a turn. Takes the player's filters as they are; the global lists use up a search that is set. `oneshop` is looked
// at for a single shop's list.
[[nodiscard]] listorder orderlist(playershopstate& state, listkind kind, const std::string& oneshop = {});
// In a turn. Empties the player's list of this kind, where its maker does. What was in it may be much and is given to
// whoever has the time to free it; as long as it is held, the same list is made anew at once.
[[nodiscard]] std::shared_ptr<void> emptylist(playershopstate& state, listkind kind);

class listwalk {
public:
    using question = std::function<bool()>;
    virtual ~listwalk() = default;
    // Finds the rows. `goeson` is asked before each shop that has to be read, not in a turn; when it says no the walk
    // ends, and the result is false.
    virtual bool run(const question& goeson) = 0;
    // Puts the rows, without those of his own shop where the list is of all shops, before a player, and clamps his
    // page. `iswanted` is asked in the turn in which that happens.
    virtual bool deliver(const std::string& xuid, const question& iswanted) const = 0;
};
[[nodiscard]] std::unique_ptr<listwalk> walkfor(const listorder& order);

// Whose shops the lists of all shops leave out for a player: his own, and the system shop where the settings say so.
[[nodiscard]] std::vector<std::string> leftoutfor(const std::string& xuid);

}  // namespace shopsystem
