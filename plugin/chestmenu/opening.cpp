// The opening routine of both forms, and the one shape of all openers.
#include "plugin/chestmenu/opening.h"

#include "platform/clock.h"
#include "plugin/chestmenu/blocks.h"
#include "plugin/chestmenu/decoration.h"
#include "plugin/chestmenu/later.h"
#include "plugin/shopsystem/playershopstate.h"

namespace containermenuguihelper {

using namespace ordomart;

namespace {

void showpretended(ServerPlayer* player, BlockPos position, std::int8_t containertype, const CompoundTag* data) {
    sendblock(player, position, containerblock(containertype), blocklayer::extrablock);
    if (data != nullptr) sendblockdata(player, position, *data);
}

void pairwith(CompoundTag& tag, BlockPos other) {
    tag.putInt("pairx", other.x);
    tag.putInt("pairz", other.z);
}

void showblocks(ServerPlayer* player, const ListenRecorder& record, const blockcontainerblockconfig& blocks) {
    const auto first = record.blockpos, second = secondposition(first);
    auto *const firsttag = blocks.firstblocktag.get(), *const secondtag = blocks.secondblocktag.get();
    if (blocks.pairtags && blocks.usesecond && firsttag != nullptr && secondtag != nullptr) {
        pairwith(*firsttag, second);
        pairwith(*secondtag, first);
    }
    showpretended(player, first, record.containertype, firsttag);
    if (blocks.usesecond && secondtag != nullptr) showpretended(player, second, record.containertype, secondtag);
}

}  // namespace

bool openblockcontainerlistener(BlockcontainerItemRequestListermanager& manager, ServerPlayer* player,
                                unsigned char containerid, const ListenRecorder& record,
                                const blockcontainerblockconfig& blocks,
                                const newblockcontainerlistenersconfig& listener) {
    const bool blockbacked = blocks.placefirst || blocks.placesecond;
    if (blockbacked && manager.isusedbyanother(player, record.blockpos)) {
        logger.info("BlockPos has been used by others!");
        return false;
    }
    sendcontainerclose(player, containerid);
    if (blockbacked) showblocks(player, record, blocks);
    manager.addnewblockcontainerpacketlistener(player, containerid, record, listener);
    return true;
}

bool opencontainerlistener(BlockcontainerItemRequestListermanager& manager, ServerPlayer* player,
                           unsigned char containerid, const openingplace& place, Vec3 position,
                           const blockcontainerblockconfig& blocks, const handler& mainhandler,
                           const handler& prehandler) {
    if (!player->isReadyForContainer()) return false;
    ListenRecorder record;
    record.blockpos = place.blockpos;
    record.dimensionid = place.dimensionid;
    record.openerpos = position;
    record.containerid = containerid;
    record.doublecontainer = blocks.usesecond;
    record.mainhandler = mainhandler;
    record.prehandler = prehandler;
    return openblockcontainerlistener(manager, player, containerid, record, blocks, {true, 1.0});
}

}  // namespace containermenuguihelper

namespace ordomart {

using ChestInvontorymenuguihelper::listenermanager;

namespace {

// Readiness, then cool-down; stores the time of an opening that may go on. A refusal by cool-down is told to the
// player.
opresult guardopening(ServerPlayer* player) {
    if (!player->isReadyForContainer()) return opresult::notready;
    const std::int64_t now = unixseconds();
    auto& last = getplayershopstate(player->getXuid()).menuopentime;
    // A time that is still to come was stored before the clock was set back.
    if (last + 1 < now || last > now) {
        last = now;
        return opresult::opened;
    }
    player->sendText(" Execution times are too frequent ");
    return opresult::cooldown;
}

}  // namespace

opresult openchestmenu(ServerPlayer* player, screen which, std::optional<std::string> shopxuid,
                       const containermenuguihelper::blockcontainerblockconfig& blocks) {
    if (const auto guarded = guardopening(player); guarded != opresult::opened) return guarded;
    const auto position = player->getPosition();
    const auto* const front = listenermanager().infront(player);
    const auto replaced = front != nullptr ? front->picture.menu : screen::none;
    const auto containerid = player->_nextContainerCounter();
    const auto& menu = menuof(which);
    if (!containermenuguihelper::opencontainerlistener(listenermanager(), player, containerid,
                                                       {player->getDimensionId(), position.toBlockPos()}, position,
                                                       blocks, menu.mainhandler, menu.prehandler))
        return opresult::refused;
    // Its close may never come.
    if (replaced != screen::none && menuof(replaced).leave != nullptr) menuof(replaced).leave(player);
    constexpr std::uint64_t paintticks = 5;
    later(player->sessionid(), paintticks,
          [which, opening = listenermanager().find(player, containerid)->picture.number,
           shop = std::move(shopxuid)](ServerPlayer* who) {
              if (!isawaited(who, opening)) return;
              auto& record = *listenermanager().infront(who);
              if (!who->isReadyForContainer()) return sendcontainerclose(who, record.containerid);
              if (shop) getplayershopstate(who->getXuid()).viewedshopid = *shop;
              showmenu(who, record, which);
          });
    return opresult::opened;
}

}  // namespace ordomart
