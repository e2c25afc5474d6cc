// How a fake chest comes to stand before a client: in one of two forms, the client's own inventory screen or a block
// that only he sees. The packets of an opening and their order:
//
//   tick 0  ContainerClose goes out; the record is kept
//   tick 1  ContainerOpen
//   tick 5  the paint; from here on clicks count
//
// Whoever has closed it meanwhile, has opened another or has died is shown no more of it. A block-backed opening shows
// its blocks behind the close packet. Server thread.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "plugin/base/guards.h"
#include "plugin/chestmenu/listeners.h"
#include "plugin/chestmenu/menutable.h"

namespace containermenuguihelper {

struct blockcontainerblockconfig {
    std::unique_ptr<CompoundTag> firstblocktag, secondblocktag;  // block entity data, or null
    bool placefirst = false, placesecond = false;                // either turns the block path on
    bool usesecond = false;
    bool pairtags = true;  // write each other's coordinates into the two tags
};

struct openingplace {
    std::int32_t dimensionid = -1;
    BlockPos blockpos;
};

// False, and nothing has happened, when the player is not ready, or the position belongs to another's menu.
bool opencontainerlistener(BlockcontainerItemRequestListermanager& manager, ServerPlayer* player,
                           unsigned char containerid, const openingplace& place, Vec3 position,
                           const blockcontainerblockconfig& blocks, const handler& mainhandler,
                           const handler& prehandler);
bool openblockcontainerlistener(BlockcontainerItemRequestListermanager& manager, ServerPlayer* player,
                                unsigned char containerid, const ListenRecorder& record,
                                const blockcontainerblockconfig& blocks,
                                const newblockcontainerlistenersconfig& listener);

}  // namespace containermenuguihelper

namespace ordomart {

// What each opener of a chest menu is. A single shop's view is given its shop. No menu stands on blocks as they are;
// one that does brings them.
opresult openchestmenu(ServerPlayer* player, screen which, std::optional<std::string> shopxuid = std::nullopt,
                       const containermenuguihelper::blockcontainerblockconfig& blocks = {});

}  // namespace ordomart
