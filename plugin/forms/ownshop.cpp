// The worker reads the file where that is needed, so that the server does not wait for it.
#include "plugin/forms/ownshop.h"

#include <algorithm>

#include "platform/turn.h"
#include "plugin/base/effects.h"
#include "plugin/formparts/shoplines.h"
#include "plugin/shopsystem/rowkinds.h"
#include "plugin/shopsystem/taskpool.h"

namespace ordomart {

namespace {

// `look` runs on the worker in a turn, with the shop in the cache, and gives what `show` draws on the server thread.
template <class Look, class Show>
opresult lookandshow(ServerPlayer* player, const std::string& shopxuid, shoptype kind, const char* place, Look look,
                     Show show) {
    taskpool.enqueue([xuid = player->getXuid(), shopxuid, kind, place, look, show] {
        formenvelope(place, [&] {
            globalruntimeshopmanager.bringin(shopxuid, kind);
            const Turn turn;
            backtoplayer(xuid, place, [show, seen = look()](ServerPlayer* who) { show(who, seen); });
        });
    });
    return opresult::opened;
}

// Who has lost the right to manage the shop since the form was sent gets no further.
bool maystill(ServerPlayer* player, const std::string& shopxuid) {
    const bool may = mayrun(*player, shopxuid);
    if (!may) systemtoast(player, tr(player, "permission.deny"));
    return may;
}

std::size_t recordcount(const std::string& shopxuid, shoptype kind) {
    const auto& records =
        kind == shoptype::sell ? sellrows::shop(shopxuid).items : recyclerows::shop(shopxuid).recycleitems;
    return records.is_array() ? records.size() : 0;
}

std::string waitingtext(const std::string& language, const globalrecycleshopitem& row) {
    return namepart(language, row.recycleitemname, row.itemnbt, "") +
           fmt::format("\n§f§r{}:§{}{}", tr(language, "recycleshopitem.hasrecyclenum"),
                       row.nowhasrecyclenum > 0 ? 'a' : 'c', row.nowhasrecyclenum);
}

std::string textofrow(const ownlist& list, const std::string& shopxuid, const std::string& language, int index) {
    if (list.kind == shoptype::sell) return rowtext(language, sellrows::at(sellrows::shop(shopxuid), index), "");
    const auto row = recyclerows::at(recyclerows::shop(shopxuid), index);
    return list.showswaiting ? waitingtext(language, row) : rowtext(language, row, "");
}

listform formof(const ownlist& list, const std::string& shopxuid) {
    listform form{.place = list.place,
                  .titlekey = list.titlekey,
                  .contentkey = list.kind == shoptype::sell ? "sellformUI.content" : "recycleformUI.content",
                  .page = &playershopstate::myshoppage};
    form.size = [shopxuid, kind = list.kind](ServerPlayer*) { return recordcount(shopxuid, kind); };
    form.text = [&list, shopxuid](ServerPlayer* player, std::size_t row) {
        return textofrow(list, shopxuid, player->getLanguageCode(), static_cast<int>(row));
    };
    form.choose = [&list, shopxuid](ServerPlayer* player, std::size_t row) {
        if (maystill(player, shopxuid)) list.offer(player, shopxuid, static_cast<std::int64_t>(row), ownerside::form);
    };
    form.wrongrow = [](ServerPlayer* player) {
        logger.error("wrong castindex");
        player->sendText("wrong castindex");
    };
    form.turned = [&list](ServerPlayer* player) { openscreen(list.turned, player); };
    form.closed = [&list](ServerPlayer* player) { openscreen(list.closed, player, {.refresh = false}); };
    return form;
}

// The shop's front page, but for what is the player's own.
template <class Shop>
std::string frontpage(Shop& shop, const firstlook& look) {
    notelook(shop, look);
    return shophead(shop, look.language, true) + "\n§f§r§l§5" + shop.describe +
           (shop.isopshop ? "\n" + opshopmark : "") + discountlines(shop) + banlines(shop, look.language);
}

}  // namespace

opresult openownlist(ServerPlayer* player, const ownlist& list) {
    const auto shopxuid = effectiveshop(player);
    return lookandshow(
        player, shopxuid, list.kind, list.place, [shopxuid, kind = list.kind] { return recordcount(shopxuid, kind); },
        [&list, shopxuid](ServerPlayer* who, std::size_t count) {
            auto& page = getplayershopstate(who->getXuid()).myshoppage;
            page = std::min(page, static_cast<std::int32_t>(count / pagesize));
            sendlistform(who, formof(list, shopxuid));
        });
}

opresult openslotlist(ServerPlayer* player, const slotlist& list) {
    const auto shopxuid = effectiveshop(player);
    return lookandshow(
        player, shopxuid, list.kind, list.place, [] { return true; },
        [&list, shopxuid](ServerPlayer* who, bool) {
            const auto& language = who->getLanguageCode();
            Form::SimpleForm form(tr(language, list.titlekey), "");
            const auto& supplies = who->getSupplies();
            for (int slot = 0; slot < supplies.getContainerSize(); ++slot) {
                const ItemStack& stack = supplies.getItem(slot);
                form.addButton(fmt::format("{} {}\n§r§f§{}§f", tr(language, "measurement.slot"), slot,
                                           stack.isNull() ? "cEMPTY" : "a" + itemlocalname(stack, language)));
            }
            sendform(who, form,
                     {list.place, [&list](ServerPlayer* p) { openscreen(list.closed, p, {.refresh = false}); }},
                     [&list, shopxuid](ServerPlayer* p, int button) {
                         if (maystill(p, shopxuid)) list.offer(p, shopxuid, {.slot = button}, ownerside::form);
                     });
        });
}

opresult openownmenu(ServerPlayer* player, const ownmenu& menu, bool updatelang) {
    const auto shopxuid = effectiveshop(player);
    const firstlook look{player->getXuid(), player->getRealName(), player->getLanguageCode(), "'s shop", updatelang};
    return lookandshow(
        player, shopxuid, menu.kind, menu.place,
        [shopxuid, kind = menu.kind, look] {
            return kind == shoptype::sell ? frontpage(sellrows::shop(shopxuid), look)
                                          : frontpage(recyclerows::shop(shopxuid), look);
        },
        [&menu, shopxuid](ServerPlayer* who, const std::string& page) {
            Form::SimpleForm form(tr(who, menu.titlekey),
                                  page + "\n" + greyline + "\n" + yourname(*who) + "\n" + yourmoney(*who));
            for (const auto& button : menu.buttons) form.addButton(tr(who, button.textkey), button.image);
            sendform(who, form, {menu.place, [](ServerPlayer* p) { openscreen(screen::lastmainmenuform, p); }},
                     [&menu, shopxuid](ServerPlayer* p, int button) {
                         if (maystill(p, shopxuid)) menu.buttons[static_cast<std::size_t>(button)].act(p, shopxuid);
                     });
        });
}

}  // namespace ordomart
