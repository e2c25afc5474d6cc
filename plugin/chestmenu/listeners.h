// Which fake chests are open, and what is done with a click on one. The manager knows nothing of shops: what a click
// means is told by the two handlers of the menu's record. A record belongs to a session and a container id, so that one
// that a player left behind can never be taken for another's. Server thread only, no lock.
//
// A click: prehandler; true ends the menu, keeps the click as the selection and closes the client's screen.
// A close: the client gets its real stacks back, then mainhandler, with a null action, then the record goes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/packets/itemstackrequest.h"
#include "platform/player.h"
#include "platform/position.h"

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

    // Takes a copy of the record; an older one of the same key is overwritten, and its selection lost.
    void addnewblockcontainerpacketlistener(ServerPlayer* player, unsigned char containerid,
                                            const ListenRecorder& record,
                                            const newblockcontainerlistenersconfig& config);
    // Null when there is none. The address is good until the record is removed.
    [[nodiscard]] ListenRecorder* find(const ServerPlayer* player, unsigned char containerid) const;
    [[nodiscard]] bool isusedbyanother(const ServerPlayer* player, BlockPos blockpos) const;

protected:
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
    std::vector<entry> entries_;  // in order of insertion
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
