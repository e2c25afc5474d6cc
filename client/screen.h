// The slots of the inventory screen: what the server painted, and on top of it what the client expects its own requests
// to do until they are answered. A refused request is rolled back; what the server paints meanwhile stands over any
// expectation, so that a roll-back never brings back a picture that the server has replaced.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "platform/packets/itemstackrequest.h"

namespace client {

// Container ids of the packets that paint the screen. The selected-slot row is kept, and shows nothing of its own.
inline constexpr std::uint32_t inventoryid = 0, offhandid = 119, armorid = 120, selectedid = 122, uiid = 124;

struct Place {
    std::uint32_t container = 0;
    int index = 0;
    bool operator==(const Place&) const = default;
};

// The place that a slot of a request means; nothing for containers that the screen does not show.
[[nodiscard]] std::optional<Place> placeof(std::uint8_t containername, int slot);

// Whether the two may lie in one slot.
[[nodiscard]] bool stackable(const platform::NetworkItem& a, const platform::NetworkItem& b);

class Screen {
public:
    [[nodiscard]] const platform::NetworkItem& at(Place place) const;  // the empty stack for what was never painted

    // The server's word.
    void paint(Place place, platform::NetworkItem item);
    void paint(std::uint32_t container, std::vector<platform::NetworkItem> items);

    // Shows what the request will do if it is accepted. Actions that cannot be foreseen change nothing.
    void predict(const platform::ItemStackRequest& request);
    void take(const platform::ItemStackResponse& response);

private:
    struct Undo {
        Place place;
        platform::NetworkItem before;
    };
    struct Pending {
        std::int32_t id = 0;
        std::vector<Undo> undos;
    };
    struct Prediction;

    platform::NetworkItem& slot(Place place);
    // What a place shows, leaving the predictions behind the first `settled` out of account.
    platform::NetworkItem& base(Place place, std::size_t settled);

    std::map<std::uint32_t, std::vector<platform::NetworkItem>> slots_;
    std::deque<Pending> pending_;  // as sent
};

}  // namespace client
