// Which fake chests are open, and what is done with a click on one. The manager knows nothing of shops: what a click
// means is told by the two handlers of the menu's record. A record belongs to a session and a container id, so that one
// that a player left behind can never be taken for another's. Server thread only, no lock.
//
// A click: counts only on what the client was shown; prehandler; true ends the menu, keeps the click as the selection
// and closes the client's screen.
// A close: the client gets its real stacks back, then mainhandler, with a null action, then the record goes.
//
// What a handler throws is logged and goes no further: a click has done nothing then, a close goes on to its end.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/packets/itemstackrequest.h"
#include "platform/player.h"
#include "platform/position.h"
#include "plugin/base/screens.h"

namespace containermenuguihelper {

using namespace platform;

struct ListenRecorder;

// Handlers keep no state of their own: a view change replaces the one that is running.
using plainhandler = bool (*)(ServerPlayer*, ItemStackRequestAction*, ListenRecorder*);
using handler = std::function<bool(ServerPlayer*, ItemStackRequestAction*, ListenRecorder*)>;

struct acceptedclick {
    std::uint8_t fromslot = 0;
    std::uint8_t fromcontainer = 255;
    std::uint8_t toslot = 0;
    std::uint8_t tocontainer = 255;
    std::uint8_t actiontype = 10;
    std::uint8_t actionflag = 0;

    [[nodiscard]] bool empty() const { return fromcontainer == 255 && tocontainer == 255; }
    [[nodiscard]] bool isfrom(ContainerName name) const { return fromcontainer == static_cast<std::uint8_t>(name); }
};

// What a listed slot of a picture shows: the place in the view's list, and a name that no other entry has, nor this one
// in another state, since the list behind a picture may have changed by the time of a choice.
struct pageentry {
    std::int64_t row = -1;  // none
    std::string name;
};

// What the client sees of a menu.
struct menupicture {
    ordomart::screen menu = ordomart::screen::none;  // none before the first paint: no click counts
    std::uint64_t number = 0;        // no two of a run are alike: tells opening, menu and painting in one
    bool complete = false;           // until then only the way back counts, in the offhand and on the cursor
    std::vector<pageentry> entries;  // what stands in the listed slots, in a view's own words

    [[nodiscard]] bool takes(const ItemStackRequestAction& click) const;
};
[[nodiscard]] std::uint64_t newpicturenumber();

struct ListenRecorder {
    BlockPos blockpos;
    std::int32_t dimensionid = -1;
    Vec3 openerpos;
    std::uint8_t containerid = 0;
    std::int8_t containertype = -1;  // -1 the inventory screen, 5 an anvil, anything else a chest
    bool closeonselect = true;
    bool restorepending = false;  // the client was shown blocks that are not there
    bool handleonclose = true;
    bool doublecontainer = false;
    bool selected = false;  // every later click is ignored
    handler mainhandler;
    handler prehandler;
    acceptedclick selection;
    menupicture picture;
    pageentry chosen;                  // the listed entry that the selection is, fixed at the click
    std::optional<ItemStack> created;  // the item that was picked out of the creative list
};

struct newblockcontainerlistenersconfig {
    bool delayopen = false;
    double delayticks = 0;
};

class BlockcontainerItemRequestListermanager {
public:
    virtual ~BlockcontainerItemRequestListermanager() = default;

    // Whether the click counts and ends the menu.
    virtual bool trylistenaction(ServerPlayer* player, unsigned char containerid, ItemStackRequestAction* action) = 0;
    // For a click that does: runs the handler, or leaves it to the close, and closes the client's screen.
    virtual bool runselectedaction(ServerPlayer* player, unsigned char containerid, ItemStackRequestAction* action) = 0;
    virtual void notifycontainerclose(ServerPlayer* player, unsigned char containerid) = 0;
    virtual bool removecontainerlistener(ServerPlayer* player, unsigned char containercounter,
                                         unsigned char containerid) = 0;
    // Tells the client which blocks really stand where a block-backed menu showed others.
    virtual void recoverrawblockenvir(ServerPlayer* player, ListenRecorder* record) = 0;

    // Takes a copy of the record; an older one of the same key is overwritten, and its selection lost. With an opening
    // that is delayed it goes again when by then the player cannot be served a screen.
    void addnewblockcontainerpacketlistener(ServerPlayer* player, unsigned char containerid,
                                            const ListenRecorder& record,
                                            const newblockcontainerlistenersconfig& config);
    // Null when there is none. The address is good until the record is removed.
    [[nodiscard]] ListenRecorder* find(const ServerPlayer* player, unsigned char containerid) const;
    // The menu that the player's clicks go to, unless it has ended by one already.
    [[nodiscard]] ListenRecorder* infront(const ServerPlayer* player) const;
    // Of the absent and the dead, who look at nothing, no record counts.
    [[nodiscard]] bool isusedbyanother(const ServerPlayer* player, BlockPos blockpos) const;
    // Whatever is kept of a session that ends.
    void forgetsession(std::uint64_t session);

protected:
    // The client's real stacks, but once a tick at most: a close of three bytes costs it an inventory.
    void answerclose(ServerPlayer* player);

    struct menukey {
        std::uint64_t session;
        std::uint8_t containerid;
        bool operator==(const menukey&) const = default;
    };
    // The keys lie side by side, since every click on the server looks through them.
    struct entry {
        menukey key;
        // A handler may open a menu, and its own record must stay where it is meanwhile.
        std::unique_ptr<ListenRecorder> record;
    };
    std::vector<entry> entries_;           // in order of insertion
    std::vector<std::uint64_t> answered_;  // sessions, in this tick
};

// The start of a mainhandler: true, with "NULL selected " told, when the player closed the screen himself.
bool nothingselected(ServerPlayer* player, const ListenRecorder& record);

// ---- handlers for whoever has none of his own
bool welcomehandler(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record);     // main
bool playerlisthandler(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record);  // main
bool acceptatclose(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record);      // main
bool acceptclick(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record);        // pre
bool takeorplacefilter(ServerPlayer* player, ItemStackRequestAction* action, ListenRecorder* record);  // pre

}  // namespace containermenuguihelper

namespace ChestInvontorymenuguihelper {

using namespace containermenuguihelper;

class ChestInvontoryItemRequestListermanager : public BlockcontainerItemRequestListermanager {
public:
    bool trylistenaction(ServerPlayer* player, unsigned char containerid, ItemStackRequestAction* action) override;
    bool runselectedaction(ServerPlayer* player, unsigned char containerid, ItemStackRequestAction* action) override;
    void notifycontainerclose(ServerPlayer* player, unsigned char containerid) override;
    bool removecontainerlistener(ServerPlayer* player, unsigned char containercounter,
                                 unsigned char containerid) override;
    void recoverrawblockenvir(ServerPlayer* player, ListenRecorder* record) override;
};

// The one table of open menus.
ChestInvontoryItemRequestListermanager& listenermanager();

}  // namespace ChestInvontorymenuguihelper
