// The owner's menus, lists and slots for both of his shops, as descriptions.
#include "plugin/forms/openers.h"
#include "plugin/forms/ownshop.h"
#include "plugin/trade/commissionforms.h"
#include "plugin/trade/goodsforms.h"
#include "plugin/trade/shopforms.h"

namespace ordomart {

namespace {

using P = ServerPlayer*;
using S = const std::string&;

constexpr ownmenubutton sellbuttons[] = {
    {"myshop.shopedit.form.menutitle", [](P p, S shop) { offeredit(p, shop, sell, ownerside::form); }},
    {"shop.eventlogger", [](P p, S shop) { showeventlog(p, shop, sell, ownerside::form); }},
    {"myshop.adjustshop.form.menutitle", [](P p, S) { openOrdomyshopEditItemAsformmenu(p); }},
    {"myshop.onshop", [](P p, S) { openOrdomyshopuploadItemAsformmenu(p); }},
    {"myshop.replenishment", [](P p, S) { openOrdomyshopreplenishmentAsformmenu(p); }},
    {"shop.changetorecycleshop", [](P p, S) { openOrdomyrecycleshopAsformmenu(p, true); },
     "textures/items/blaze_rod.png"},
};
constexpr ownmenubutton recyclebuttons[] = {
    {"myshop.shopedit.form.menutitle", [](P p, S shop) { offeredit(p, shop, recycle, ownerside::form); }},
    {"shop.eventlogger", [](P p, S shop) { showeventlog(p, shop, recycle, ownerside::form); }},
    {"myrecycleshop.adjustshop.form.menutitle", [](P p, S) { openOrdomyrecycleshopEditItemAsformmenu(p); }},
    {"myrecycleshop.onrecycleshop", [](P p, S) { openOrdomyrecycleshopnewissueAsformmenu(p); }},
    {"myrecycleshop.pickupitem.form.menutitle", [](P p, S) { openOrdomyrecycleshoppickupAsformmenu(p); }},
    {"shop.changetosellshop", [](P p, S) { openOrdomyshopAsformmenu(p, true); }, "textures/items/stick.png"},
};
constexpr ownmenu ownsellmenu{"openOrdomyshopAsformmenu", sell, "mainmenu.myshop", sellbuttons};
constexpr ownmenu ownrecyclemenu{"openOrdomyrecycleshopAsformmenu", recycle, "mainmenu.myreshop", recyclebuttons};

constexpr ownlist adjustlist{"openOrdomyshopEditItemAsformmenu",
                             sell,
                             "myshop.adjustshop.form.menutitle",
                             screen::myshopform,
                             screen::goodslist,
                             &offeradjust};
// A turned page leads to the list of adjusting.
constexpr ownlist replenishlist{"openOrdomyshopreplenishmentAsformmenu",
                                sell,
                                "myshop.replenishmentshop.form.menutitle",
                                screen::myshopform,
                                screen::goodslist,
                                &offerreplenish};
constexpr ownlist commissionlist{"openOrdomyrecycleshopEditItemAsformmenu",
                                 recycle,
                                 "myrecycleshop.adjustshop.form.menutitle",
                                 screen::myrecycleshopform,
                                 screen::commissionlist,
                                 &offeradjustcommission};
constexpr ownlist pickuplist{"openOrdomyrecycleshoppickupAsformmenu",
                             recycle,
                             "myrecycleshop.pickupitem.form.menutitle",
                             screen::myrecycleshopform,
                             screen::pickuplist,
                             &offerpickup,
                             true};
constexpr slotlist uploadlist{"openOrdomyshopuploadItemAsformmenu", sell, "myshop.onshop.form.menutitle",
                              screen::myshopform, &offerupload};
constexpr slotlist issuelist{"openOrdomyrecycleshopnewissueAsformmenu", recycle, "myrecycleshop.onrecycleshop",
                             screen::myrecycleshopform, &offercommission};

using O = const screenorder&;
const screenentry ownscreens[] = {
    {screen::myshopform, [](P p, O o) { return openOrdomyshopAsformmenu(p, o.refresh); }},
    {screen::myrecycleshopform, [](P p, O o) { return openOrdomyrecycleshopAsformmenu(p, o.refresh); }},
    {screen::goodslist, [](P p, O) { return openOrdomyshopEditItemAsformmenu(p); }},
    {screen::uploadlist, [](P p, O) { return openOrdomyshopuploadItemAsformmenu(p); }},
    {screen::replenishlist, [](P p, O) { return openOrdomyshopreplenishmentAsformmenu(p); }},
    {screen::commissionlist, [](P p, O) { return openOrdomyrecycleshopEditItemAsformmenu(p); }},
    {screen::issuelist, [](P p, O) { return openOrdomyrecycleshopnewissueAsformmenu(p); }},
    {screen::pickuplist, [](P p, O) { return openOrdomyrecycleshoppickupAsformmenu(p); }},
};

}  // namespace

opresult openOrdomyshopAsformmenu(ServerPlayer* player, bool updatelang) {
    return openownmenu(player, ownsellmenu, updatelang);
}
opresult openOrdomyrecycleshopAsformmenu(ServerPlayer* player, bool updatelang) {
    return openownmenu(player, ownrecyclemenu, updatelang);
}
opresult openOrdomyshopEditItemAsformmenu(ServerPlayer* player) { return openownlist(player, adjustlist); }
opresult openOrdomyshopreplenishmentAsformmenu(ServerPlayer* player) { return openownlist(player, replenishlist); }
opresult openOrdomyshopuploadItemAsformmenu(ServerPlayer* player) { return openslotlist(player, uploadlist); }
opresult openOrdomyrecycleshopEditItemAsformmenu(ServerPlayer* player) { return openownlist(player, commissionlist); }
opresult openOrdomyrecycleshoppickupAsformmenu(ServerPlayer* player) { return openownlist(player, pickuplist); }
opresult openOrdomyrecycleshopnewissueAsformmenu(ServerPlayer* player) { return openslotlist(player, issuelist); }

}  // namespace ordomart
