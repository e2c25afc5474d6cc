// The errand of a refresh and its way back.
#include "plugin/chestmenu/refresh.h"

#include "platform/turn.h"
#include "plugin/base/guards.h"
#include "plugin/chestmenu/later.h"
#include "plugin/shopsystem/listbuilders.h"

namespace ordomart {

namespace {

using drawing = void (*)(ServerPlayer*, const goodsview&);

void drawheadandpage(ServerPlayer* player, const goodsview& view) {
    view.plan.drawhead(player, view);
    drawpage(player, view);
}

// A picture that is not awaited any more is dropped.
void drawlater(const goodsview& view, const viewer& who, drawing draw) {
    later(who.session, view.plan.ticks, [&view, draw, picture = who.picture](ServerPlayer* player) {
        if (!isawaited(player, picture)) return;
        envelopeat(view.plan.place, [&] { draw(player, view); });
    });
}

playershopstate& stateof(const viewer& who) {
    const Turn turn;
    return getplayershopstate(who.xuid);
}

void fetch(const goodsview& view, const viewer& who, listwork& work) {
    const auto& plan = view.plan;
    const querytimer timer;
    if (who.reload && plan.list && !work.makelist()) return;
    if (plan.prepare != nullptr && (who.reload || plan.preparesalways)) plan.prepare(who);
    if (who.reload && plan.drawhead != nullptr && !plan.onetask) drawlater(view, who, plan.drawhead);
    if (plan.sort != nullptr) plan.sort(stateof(who));
    if (plan.timeline != nullptr && (who.reload || plan.timesalways)) timer.write(plan.timeline);
    drawlater(view, who, plan.onetask ? &drawheadandpage : &drawpage);
}

}  // namespace

void refresh(const goodsview& view, ServerPlayer* player, bool reload) {
    const viewer who{player->sessionid(),
                     player->getXuid(),
                     player->getRealName(),
                     player->getLanguageCode(),
                     getplayershopstate(player->getXuid()).viewedshopid,
                     effectiveshop(player),
                     reload,
                     beginpage(player)};
    const auto safely = [](const std::function<void()>& body) { envelope(body, nullptr, refreshenvelope); };
    safely([&] {
        listbuilders.order({.session = who.session,
                            .xuid = who.xuid,
                            .picture = &view,
                            .list = reload ? view.plan.list : std::nullopt,
                            .shop = who.viewedshop,
                            .isslow = view.plan.prepare != nullptr,
                            .body = [&view, who, safely](listwork& work) { safely([&] { fetch(view, who, work); }); }});
    });
}

void droprefresh(const goodsview& view, const ServerPlayer* player) { listbuilders.drop(player->sessionid(), &view); }

}  // namespace ordomart
