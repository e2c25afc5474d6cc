// The table of players, and the moments at which a record is reset. A record stays for the whole run.
#include "plugin/shopsystem/playershopstate.h"

#include <unordered_map>

#include "plugin/shopsystem/listbuilders.h"

namespace shopsystem {

namespace {
constexpr int desktopclient = 7;
}

void playershopstate::resetatleave() {
    myshoppage = myrecycleshoppage = sellpage = recyclepage = shoplistpage = 0;
    viewedshopid.clear();
    managedid = ordomart::managesnobody;
    menuopentime = 0;
    for (const auto kind : {listkind::globalsell, listkind::globalrecycle})
        listbuilders.discard(emptylist(*this, kind));  // it may take long to free
    searchfilter = {};
    filterstep = 0;
    doubleclickmode = false;
    showhelper = true;
    searchmode = false;
}

void playershopstate::setatjoin(int devicetype) {
    detailmode = devicetype == desktopclient;
    if (!detailmode) doubleclickmode = true;
}

void playershopstate::manage(const std::string& xuid) {
    myshoppage = myrecycleshoppage = 0;
    managedid = xuid;
}

playershopstate& getplayershopstate(const std::string& xuid) {
    static std::unordered_map<std::string, playershopstate> states(8);
    return states[xuid];
}

bool isoperator(const Player& player) { return player.getCommandPermissionLevel() > CommandPermissionLevel::Any; }

std::string effectiveshop(const Player* player) {
    playershopstate& state = getplayershopstate(player->getXuid());
    if (state.managedid != ordomart::managesnobody && !isoperator(*player)) state.manage(ordomart::managesnobody);
    return state.managedid == ordomart::managesnobody ? player->getXuid() : state.managedid;
}

}  // namespace shopsystem
