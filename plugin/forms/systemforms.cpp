// The shared shop as forms: its menu and its two lists. A trade with it is a trade with a shop of its key, and nothing
// else.
#include "platform/turn.h"
#include "plugin/base/screens.h"
#include "plugin/formparts/shoplines.h"
#include "plugin/forms/listform.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/lists.h"
#include "plugin/shopsystem/rowkinds.h"
#include "plugin/shopsystem/taskpool.h"

namespace ordomart {

namespace {

std::string systemmark(const std::string& language) {
    return fmt::format(" §f§r§o§6【{}】", tr(language, "systemshop"));
}

std::string lookerlines(const Player& player) {
    return fmt::format("\n{}\n{}\n{}", greyline, yourname(player), yourmoney(player));
}

template <class Row>
std::string markof(const std::string& language, const Row&) {
    return systemmark(language);
}

struct systemlist {
    const char* place;
    const char* titlekey;
    const char* contentkey;
    void (*prepare)(const std::string& playerxuid);
    screen self;
};
constexpr systemlist selllist{"openOrdosystemshopsellAsformmenu", "sellmenu", "sellformUI.content", &preparesystemsell,
                              screen::systemsellform};
constexpr systemlist recyclelist{"openOrdosystemshoprecycleAsformmenu", "recyclemenu", "recycleformUI.content",
                                 &preparesystemrecycle, screen::systemrecycleform};

template <class Rows>
listform formof(const systemlist& list) {
    listform form{.place = list.place, .titlekey = list.titlekey, .contentkey = list.contentkey, .page = Rows::page};
    showsreadlist(form, Rows::list, markof<typename Rows::row>, tradeface::systemform);
    form.wrongrow = [](ServerPlayer*) { logger.error("wrong castindex"); };
    form.turned = [&list](ServerPlayer* player) { openscreen(list.self, player, {.refresh = false}); };
    form.closed = [](ServerPlayer* player) { openscreen(screen::systemshopform, player); };
    return form;
}

// In front of the list. Both lists show it by the page of the first.
template <class Rows>
std::string headerof(const std::string& playerxuid, const std::string& language) {
    auto& shop = Rows::shop(systemshopid);
    if (getplayershopstate(playerxuid).sellpage != 0) return {};
    return shophead(shop, language, false) + "\n§f§r§l§5" + shop.describe +
           (shop.issystemshop ? systemmark(language) : "") + discountlines(shop);
}

template <class Rows>
void show(ServerPlayer* player, const systemlist& list, const std::string& header, const std::string& ban) {
    if (!ban.empty()) return player->sendText(ban);
    auto form = formof<Rows>(list);
    form.header = header + lookerlines(*player) + "\n§f§r";
    sendlistform(player, form);
}

template <class Rows>
opresult openlist(ServerPlayer* player, const systemlist& list, bool refresh) {
    taskpool.enqueue([&list, refresh, xuid = player->getXuid(), language = player->getLanguageCode()] {
        formenvelope(list.place, [&] {
            globalruntimeshopmanager.bringin(systemshopid, Rows::type);
            if (refresh) {
                const querytimer timer;
                list.prepare(xuid);
                timer.write("total query time:{}s at {}", list.place);
            }
            const Turn turn;
            backtoplayer(
                xuid, list.place,
                [&list, header = headerof<Rows>(xuid, language), ban = banlines(Rows::shop(systemshopid), language)](
                    ServerPlayer* who) { show<Rows>(who, list, header, ban); });
        });
    });
    return opresult::opened;
}

using P = ServerPlayer*;
using O = const screenorder&;
const screenentry systemscreens[] = {
    {screen::systemshopform, [](P p, O o) { return openOrdosystemshopAsformmenu(p, o.refresh); }},
    {screen::systemsellform, [](P p, O o) { return openOrdosystemshopsellAsformmenu(p, o.refresh); }},
    {screen::systemrecycleform, [](P p, O o) { return openOrdosystemshoprecycleAsformmenu(p, o.refresh); }},
};

}  // namespace

opresult openOrdosystemshopAsformmenu(ServerPlayer* player, bool) {
    constexpr const char* place = "openOrdosystemshopAsformmenu";
    taskpool.enqueue([xuid = player->getXuid()] {
        backtoplayer(xuid, place, [](ServerPlayer* who) {
            Form::SimpleForm form(tr(who, "myshopformUI.systemshopmenu"), lookerlines(*who));
            form.addButton(tr(who, "systemsellshop"));
            form.addButton(tr(who, "systemrecycleshop"));
            sendform(who, form, {place, [](P p) { openscreen(screen::lastmainmenuform, p); }}, [](P p, int button) {
                openscreen(button == 0 ? screen::systemsellform : screen::systemrecycleform, p);
            });
        });
    });
    return opresult::opened;
}

opresult openOrdosystemshopsellAsformmenu(ServerPlayer* player, bool refresh) {
    return openlist<sellrows>(player, selllist, refresh);
}

opresult openOrdosystemshoprecycleAsformmenu(ServerPlayer* player, bool refresh) {
    if (refresh) getplayershopstate(player->getXuid()).recyclereadlist.clear();
    return openlist<recyclerows>(player, recyclelist, refresh);
}

}  // namespace ordomart
