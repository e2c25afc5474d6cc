// The lists of all goods and of all commissions. A list is made beside the server thread and shown on it; page turns
// and the way back from a confirm form show it as it was.
#include "plugin/base/screens.h"
#include "plugin/forms/listform.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/listbuilders.h"

namespace ordomart {

namespace {

template <class Row>
std::string opmark(const std::string&, const Row& row) {
    return row.isopshop ? " " + opshopmark : "";
}

listform sellform() {
    listform form{.place = "openOrdosellshopAsformmenu",
                  .titlekey = "sellmenu",
                  .contentkey = "sellformUI.content",
                  .page = &playershopstate::sellpage};
    showsreadlist(form, &playershopstate::sellreadlist, opmark, tradeface::formlist);
    form.wrongrow = [](ServerPlayer*) { logger.error("wrong castindex"); };
    form.turned = [](ServerPlayer* player) { openOrdosellshopAsformmenu(player, false); };
    form.closed = openmenubymode;
    return form;
}

listform recycleform() {
    listform form{.place = "openOrdorecycleshopAsformmenu",
                  .titlekey = "recyclemenu",
                  .contentkey = "recycleformUI.content",
                  .page = &playershopstate::recyclepage};
    showsreadlist(form, &playershopstate::recyclereadlist, opmark, tradeface::formlist);
    form.wrongrow = [](ServerPlayer*) { logger.error("wrong castindex in {}", "openOrdorecycleshopAsformmenu"); };
    form.turned = [](ServerPlayer* player) { openOrdorecycleshopAsformmenu(player, false); };
    form.closed = openmenubymode;
    return form;
}

opresult openlist(ServerPlayer* player, bool refresh, const listform& form, listkind list, const char* timing) {
    const auto show = [xuid = player->getXuid(), &form] {
        backtoplayer(xuid, form.place, [&form](ServerPlayer* who) { sendlistform(who, form); });
    };
    if (!refresh) {
        show();
        return opresult::opened;
    }
    listbuilders.order({.session = player->sessionid(),
                        .xuid = player->getXuid(),
                        .picture = &form,
                        .list = list,
                        .body = [&form, timing, show](listwork& work) {
                            formenvelope(form.place, [&] {
                                const querytimer timer;
                                if (!work.makelist()) return;
                                timer.write(timing, form.place);
                                show();
                            });
                        }});
    return opresult::opened;
}

const screenentry listscreens[] = {
    {screen::sellform, [](ServerPlayer* p, const screenorder& o) { return openOrdosellshopAsformmenu(p, o.refresh); }},
    {screen::recycleform,
     [](ServerPlayer* p, const screenorder& o) { return openOrdorecycleshopAsformmenu(p, o.refresh); }}};

}  // namespace

opresult openOrdosellshopAsformmenu(ServerPlayer* player, bool refresh) {
    static const listform form = sellform();
    return openlist(player, refresh, form, listkind::globalsell, "total query time:{}s at {}");
}

opresult openOrdorecycleshopAsformmenu(ServerPlayer* player, bool refresh) {
    static const listform form = recycleform();
    return openlist(player, refresh, form, listkind::globalrecycle, "total query time:{}s");
}

}  // namespace ordomart
