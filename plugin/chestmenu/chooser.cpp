// Clicks are read by the common grammar; what is chosen is looked at on the server's side, whatever the client shows.
#include "plugin/chestmenu/chooser.h"

#include "platform/host.h"
#include "platform/packets/containers.h"
#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/chestmenu/clickgrammar.h"
#include "plugin/chestmenu/decoration.h"

namespace ordomart {

using ChestInvontorymenuguihelper::listenermanager;

namespace {

constexpr int creative = 1;

bool refuse(ServerPlayer* player, const std::string& text, bool inchat) {
    playsound(player, "mob.villager.no");
    if (inchat) player->sendText(text);
    systemtoast(player, text);
    return false;
}

bool mayuse(ServerPlayer* player, const ItemStack& stack) {
    if (stack.isNull()) return refuse(player, "Error:empty item", true);
    if (banshopitem.contains(stack.getTypeName())) return refuse(player, tr(player, "shopitem.banned"), false);
    return true;
}

bool accept(const chooserview& view, ServerPlayer* player) {
    playsound(player, view.heardchoice);
    return true;
}

// Clients tell a slot of the hotbar by its own container name, with the numbers of the inventory.
stackplace placeof(const containermenuguihelper::acceptedclick& chosen) {
    return {.worn = chosen.isfrom(ContainerName::armor), .slot = chosen.fromslot};
}

void showcreativelist(ServerPlayer* player) {
    CreativeContentPacket content;
    std::uint32_t id = 0;
    for (const ItemStack& stack : host().items->creativelist()) content.entries.push_back({++id, tonetwork(stack)});
    sendplayergametype(player, creative);
    player->sendNetworkPacket(topacket(content));
}

// Behind a screen that was closed late, another one of the kind may stand in front of him by now.
bool iscreativestill(const chooserview& view, const ServerPlayer* player, const ListenRecorder& closed) {
    const auto* front = listenermanager().infront(player);
    return front != nullptr && front != &closed && front->picture.menu == view.menu;
}

// The middle one of the three actions by which a client picks an item out of the creative list.
bool pick(const chooserview& view, ServerPlayer* player, const ItemStackRequestAction& action, ListenRecorder* record) {
    if (action.results.size() != 1) return refuse(player, "It's not support to upload the item not equal one !", true);
    auto item = fromnetwork(action.results.front());
    if (!mayuse(player, item)) return false;
    item.set(1);
    record->created = item;
    return accept(view, player);
}

}  // namespace

void leavecreative(ServerPlayer* player) { sendplayergametype(player, player->getPlayerGameType()); }

void drawchooser(ServerPlayer* player, const chooserview& view) {
    if (view.created != nullptr) showcreativelist(player);
    sendhelpsign(player, view.helpkey, view.lorekeys);
}

bool handlechooserclick(const chooserview& view, ServerPlayer* player, ItemStackRequestAction* action,
                        ListenRecorder* record) {
    if (view.created != nullptr && action->is(ActionType::craftresult)) return pick(view, player, *action, record);
    switch (readclick(*action).what) {
        case click::back:
            if (view.created != nullptr) {
                player->refreshInventory();
                leavecreative(player);
            }
            playsound(player, "random.click");
            switchmenu(player, record, view.back);
            return false;
        case click::hotbar:
            if (action->is(ActionType::drop)) return false;
            [[fallthrough]];
        case click::armour:
        case click::listed: {
            const stackplace place{.worn = action->source.container == static_cast<std::uint8_t>(ContainerName::armor),
                                   .slot = action->source.slot};
            return mayuse(player, place.stackof(*player)) && accept(view, player);
        }
        default:
            return false;
    }
}

bool handlechooserclosed(const chooserview& view, ServerPlayer* player, const ListenRecorder& record) {
    // His real stacks he has been sent by now, unless another menu stands in front of him.
    if (view.created != nullptr && !iscreativestill(view, player, record)) leavecreative(player);
    if (containermenuguihelper::nothingselected(player, record)) return false;
    envelope([&] {
        if (record.created)
            view.created(player, *record.created);
        else
            view.chosen(player, placeof(record.selection));
    });
    return true;
}

}  // namespace ordomart
