// The owner's pages: his goods and his commissions, to be adjusted, and the same to be replenished or picked up. All
// act on the shop that he manages, or on his own.
#include <fmt/format.h>

#include "platform/turn.h"
#include "plugin/base/effects.h"
#include "plugin/chestmenu/refresh.h"
#include "plugin/chestmenu/viewentry.h"
#include "plugin/chestviews/goodslore.h"
#include "plugin/chestviews/openers.h"
#include "plugin/chestviews/shopcard.h"
#include "plugin/chestviews/views.h"
#include "plugin/trade/commissionforms.h"
#include "plugin/trade/goodsforms.h"
#include "plugin/trade/shopforms.h"

namespace ordomart {

namespace {

using P = ServerPlayer*;

template <class Rows>
std::size_t countown(ServerPlayer* player) {
    const auto& records = Rows::shop(effectiveshop(player)).*Rows::records;
    return records.is_array() ? records.size() : 0;
}

std::int32_t listprice(const globalsellshopitem& row) { return row.price; }
std::int32_t listprice(const globalrecycleshopitem& row) { return row.offer; }

// Names a row by what its owner has written, not by what trade changes: a sale that comes between picture and click
// must not refuse him the dialog, and another record of the same item must not open in this one's place.
template <class Rows>
std::string ownname(const typename Rows::row& row) {
    return fmt::format("{}\n{}\n{}\n{}\n{}\n{}", row.xuid, row.*Rows::name, row.*Rows::describe, row.*Rows::tag,
                       listprice(row), row.itemnbt);
}

template <class Rows>
std::string drawown(ServerPlayer* player, falsestack& good, std::size_t i) {
    const auto row = Rows::at(Rows::shop(effectiveshop(player)), static_cast<int>(i));
    good.startgood(row.itemnbt);
    addownlore(player, good, row);
    good.finishgood();
    return ownname<Rows>(row);
}

// The dialog of the entry, while the same record stands in its place.
template <class Rows, void (*Offer)(ServerPlayer*, const std::string&, std::int64_t, ownerside)>
void choose(ServerPlayer* player, const pageentry& entry) {
    const auto shopxuid = effectiveshop(player);
    const auto& shop = Rows::shop(shopxuid);
    const bool same = holdsplace(shop.*Rows::records, entry.row) &&
                      ownname<Rows>(Rows::at(shop, static_cast<int>(entry.row))) == entry.name;
    Offer(player, shopxuid, same ? entry.row : -1, ownerside::chest);
}

// His first look gives a new shop its names.
template <class Rows>
void prepare(const viewer& who) {
    globalruntimeshopmanager.bringin(who.ownshop, Rows::type);
    const Turn turn;
    notelook(Rows::shop(who.ownshop),
             {who.xuid, who.realname, who.language, Rows::type == sell ? "'s shop" : "'s recycleshop", who.reload});
}

template <class Rows>
bool isbanned(ServerPlayer* player) {
    return Rows::shop(effectiveshop(player)).isbanned();
}

constexpr viewbutton onarmour(int slot, icon look) {
    viewbutton button{.slot = slot, .look = look};
    button.row = buttonrow::armour;
    return button;
}
constexpr viewbutton silent(viewbutton button) {
    button.heard = {};
    return button;
}
constexpr viewbutton leading(viewbutton button, screen to) {
    button.leadsto = to;
    return button;
}
constexpr viewbutton ending(viewbutton button, void (*after)(ServerPlayer*)) {
    button.after = after;
    return button;
}
constexpr viewbutton refusedbyban(viewbutton button) {
    button.unlessbanned = true;
    return button;
}
// A client that holds the sign presses the first two by a swap, as in every view that has them.
constexpr viewbutton onhotbar(int slot, icon look) { return {.slot = slot, .look = look, .byswap = slot <= 3}; }

constexpr icon card{}, label{"minecraft:stick", 0, "shop.setting"};
constexpr icon history{"minecraft:book", 0, "shop.eventlogger", {"shop.eventlogger.helper1"}};

constexpr viewbutton sellbuttons[] = {
    refusedbyban(leading(onhotbar(2, {"minecraft:redstone", 0, "myshop.onshop"}), screen::myshoponshop)),
    refusedbyban(leading(onhotbar(3, {"minecraft:apple", 0, "myshop.replenishment"}), screen::myshopreload)),
    refusedbyban(ending(onhotbar(4, {"minecraft:emerald", 0, "myshop.publishdiscount"}),
                        [](P p) {
                            playsound(p, "mob.villager.haggle");
                            offerdiscount(p, effectiveshop(p));
                        })),
    spyglassbutton,
    ending(onarmour(0, card), [](P p) { offeredit(p, effectiveshop(p), sell, ownerside::chest); }),
    silent(onarmour(1, label)),
    leading(onarmour(2, {"minecraft:compass", 0, "shop.changetorecycleshop"}), screen::myrecycleshop),
    ending(onarmour(3, history), [](P p) { showeventlog(p, effectiveshop(p), sell, ownerside::chest); }),
};
constexpr viewbutton recyclebuttons[] = {
    refusedbyban(
        leading(onhotbar(2, {"minecraft:redstone", 0, "myrecycleshop.onrecycleshop"}), screen::myrecycleshoponreshop)),
    leading(onhotbar(3, {"minecraft:golden_apple", 0, "myrecycleshop.pickuprecycleitem"}), screen::myrecycleshoppickup),
    spyglassbutton,
    ending(onarmour(0, card), [](P p) { offeredit(p, effectiveshop(p), recycle, ownerside::chest); }),
    silent(onarmour(1, label)),
    leading(onarmour(2, {"minecraft:compass", 0, "shop.changetosellshop"}), screen::myshop),
    ending(onarmour(3, history), [](P p) { showeventlog(p, effectiveshop(p), recycle, ownerside::chest); }),
};
constexpr viewbutton listbuttons[] = {spyglassbutton};

constexpr goodsview sellview{
    .menu = screen::myshop,
    .helpkey = "myshop.helper1",
    .page = &playershopstate::myshoppage,
    .count = &countown<sellrows>,
    .row = &drawown<sellrows>,
    .buttons = sellbuttons,
    .back = screen::ordomenu,
    .heardchoice = clicksound,
    .chosen = &choose<sellrows, &offeradjust>,
    .isbanned = &isbanned<sellrows>,
    .plan = {.place = "Ordomyshoppreviewprehandlermain",
             .prepare = &prepare<sellrows>,
             .preparesalways = true,
             .drawhead = &drawownercard<sellrows>},
};
constexpr goodsview reloadview{
    .menu = screen::myshopreload,
    .helpkey = "myshop.replenishmentshop.helper1",
    .page = &playershopstate::myshoppage,
    .count = &countown<sellrows>,
    .row = &drawown<sellrows>,
    .buttons = listbuttons,
    .back = screen::myshop,
    .heardchoice = clicksound,
    .chosen = &choose<sellrows, &offerreplenish>,
    .plan = {.place = "Ordomyshopreplenishmentshopprehandlermain",
             .prepare = &prepare<sellrows>,
             .drawhead = &drawsignandcursor},
};
constexpr goodsview recycleview{
    .menu = screen::myrecycleshop,
    .helpkey = "myrecycleshop.helper1",
    .page = &playershopstate::myrecycleshoppage,
    .count = &countown<recyclerows>,
    .row = &drawown<recyclerows>,
    .buttons = recyclebuttons,
    .back = screen::ordomenu,
    .heardchoice = clicksound,
    .chosen = &choose<recyclerows, &offeradjustcommission>,
    .isbanned = &isbanned<recyclerows>,
    .plan = {.place = "Ordomyrecycleshoppreviewprehandlermain",
             .prepare = &prepare<recyclerows>,
             .preparesalways = true,
             .drawhead = &drawownercard<recyclerows>},
};
constexpr goodsview pickupview{
    .menu = screen::myrecycleshoppickup,
    .helpkey = "myrecycleshop.pickuprecycleitem.helper1",
    .page = &playershopstate::myrecycleshoppage,
    .count = &countown<recyclerows>,
    .row = &drawown<recyclerows>,
    .buttons = listbuttons,
    .back = screen::myrecycleshop,
    .heardchoice = clicksound,
    .chosen = &choose<recyclerows, &offerpickup>,
    .plan = {.place = "Ordomyrecycleshoppickupitemprehandlermain",
             .prepare = &prepare<recyclerows>,
             .drawhead = &drawsignandcursor},
};

const viewentry<sellview, &Ordomyshoppreviewprehandlermain, &openOrdomyshoppreviewmenu> sellentered;
const viewentry<reloadview, &Ordomyshopreplenishmentshopprehandlermain, &openOrdomyshopreloaditempreviewmenu>
    reloadentered;
const viewentry<recycleview, &Ordomyrecycleshoppreviewprehandlermain, &openOrdomyrecycleshoppreviewmenu> recycleentered;
const viewentry<pickupview, &Ordomyrecycleshoppickupitemprehandlermain, &openOrdomyrecycleshoppickupitemmenu>
    pickupentered;

}  // namespace

void Ordomyshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(sellview, player, reload); }
void Ordomyshopreplenishmentshopprehandlermain(ServerPlayer* player, bool reload) {
    refresh(reloadview, player, reload);
}
void Ordomyrecycleshoppreviewprehandlermain(ServerPlayer* player, bool reload) { refresh(recycleview, player, reload); }
void Ordomyrecycleshoppickupitemprehandlermain(ServerPlayer* player, bool reload) {
    refresh(pickupview, player, reload);
}

opresult openOrdomyshoppreviewmenu(ServerPlayer* player) { return openchestmenu(player, sellview.menu); }
opresult openOrdomyshopreloaditempreviewmenu(ServerPlayer* player) { return openchestmenu(player, reloadview.menu); }
opresult openOrdomyrecycleshoppreviewmenu(ServerPlayer* player) { return openchestmenu(player, recycleview.menu); }
opresult openOrdomyrecycleshoppickupitemmenu(ServerPlayer* player) { return openchestmenu(player, pickupview.menu); }

}  // namespace ordomart
