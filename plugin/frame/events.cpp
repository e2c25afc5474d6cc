// In scoreboard mode a joining player is given what his money will need: an id, and an account for the time he is away.
#include "plugin/frame/events.h"

#include "platform/host.h"
#include "platform/player.h"
#include "platform/scoreboard.h"
#include "plugin/base/guards.h"
#include "plugin/chestmenu/listeners.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/objectives.h"
#include "plugin/economy/offlinemoney.h"
#include "plugin/ledger/away.h"
#include "plugin/shopsystem/listbuilders.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace ordomart {

namespace {

// Scores need an id of the player on the scoreboard, and an account for what comes in while he is away.
void preparescores(ServerPlayer& player) {
    ensureobjectives();
    demandobjective(scoremoneyname);
    if (!scoreboard().getScoreboardId(player).isValid()) {
        debuglogger.warn("try to create scoreboardid for player: {}...", player.getRealName());
        scoreboard().createScoreboardId(player);
    }
    ensureofflineaccount(offlineaccount(player.getXuid()));
}

}  // namespace

bool onplayerjoin(const Event::PlayerJoinEvent& event) {
    ServerPlayer& player = *event.player;
    if (player.getXuid().empty()) return true;
    getplayershopstate(player.getXuid()).setatjoin(player.getDeviceType());
    if (moneymode == 0) preparescores(player);
    envelope([&] { ledger::tellaway(player); });
    return true;
}

bool onplayerleft(const Event::PlayerLeftEvent& event) {
    listbuilders.drop(event.player->sessionid());
    getplayershopstate(event.player->getXuid()).resetatleave();
    ChestInvontorymenuguihelper::listenermanager().forgetsession(event.player->sessionid());
    return true;
}

bool onserverstopping(const Event::ServerStoppingEvent&) {
    globalruntimeshopmanager.savealldirty();
    return true;
}

bool onserverstopped(const Event::ServerStoppedEvent& event) {
    globalruntimeshopmanager.tellunsaved(event.unsaved);
    return true;
}

}  // namespace ordomart
