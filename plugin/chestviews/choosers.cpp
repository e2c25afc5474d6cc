// Where the owner chooses a stack: one to put on sale, and one like which he wants others; the second may be an item
// that he does not have.
#include "plugin/chestmenu/chooser.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestviews/openers.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/trade/commissionforms.h"
#include "plugin/trade/goodsforms.h"

namespace ordomart {

namespace {

using P = ServerPlayer*;

constexpr chooserview upload{
    .menu = screen::myshoponshop,
    .helpkey = "myshop.onshop.helper1",
    .lorekeys = {"myshop.returnback"},
    .back = screen::myshop,
    .heardchoice = "random.click",
    .chosen = [](P p, const stackplace& place) { offerupload(p, effectiveshop(p), place, ownerside::chest); }};
constexpr chooserview commission{
    .menu = screen::myrecycleshoponreshop,
    .helpkey = "myrecycleshop.onreshop.helper1",
    .lorekeys = {"myrecycleshop.onreshop.helper2", "myrecycleshop.onreshop.helper3", "myrecycleshop.onreshop.helper4",
                 "myshop.returnback"},
    .back = screen::myrecycleshop,
    .heardchoice = "mob.villager.haggle",
    .chosen = [](P p, const stackplace& place) { offercommission(p, effectiveshop(p), place, ownerside::chest); },
    .created = [](P p, const ItemStack& item) { offercommission(p, effectiveshop(p), item); }};

const chooserentry<upload, &openOrdomyshoponshopitempreviewmenu> uploadentered;
const chooserentry<commission, &openOrdomyrecycleshoponreshoppreviewmenu> commissionentered;

}  // namespace

opresult openOrdomyshoponshopitempreviewmenu(ServerPlayer* player) { return openchestmenu(player, upload.menu); }
opresult openOrdomyrecycleshoponreshoppreviewmenu(ServerPlayer* player) {
    return openchestmenu(player, commission.menu);
}

}  // namespace ordomart
