// The sort button of the global views.
#include "plugin/chestviews/globalgoods.h"

#include "plugin/base/language.h"
#include "plugin/chestmenu/refresh.h"

namespace ordomart {

namespace {

constexpr const char* sortkeys[] = {"globalshop.filterbyitemname", "globalshop.filterbyitemtag",
                                    "globalshop.filterbyitemleftnum", "globalshop.filterbyitemprice",
                                    "globalshop.returntozero"};

}  // namespace

const char* sortkey(const playershopstate& state) {
    return state.filterstep < std::size(sortkeys) ? sortkeys[state.filterstep] : "globalshop.zerostate";
}

bool turnsort(const press& at) {
    auto& step = getplayershopstate(at.player->getXuid()).filterstep;
    step = static_cast<std::uint8_t>((step + 1) % std::size(sortkeys));
    const bool fileorder = step == 0;
    // No language table has this key, so that the key itself is read. The recycle view uses it as well.
    if (fileorder) at.player->sendToastPacket(at.player->getRealName(), tr(at.player, "sellshop.zerostate"));
    clearplayerviewcontainers(at.player, {layout::inventory});
    refresh(at.view, at.player, fileorder);
    return false;
}

}  // namespace ordomart
