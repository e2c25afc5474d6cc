// The card of both kinds of shop, written once.
#include "plugin/chestviews/shopcard.h"

#include "plugin/base/language.h"

namespace ordomart {

namespace {

constexpr std::int16_t headaux = 3;

// Discounts begin with a newline, which is no line of its own here.
void adddiscounts(falsestack& card, const std::string& lines) {
    if (!lines.empty()) addlorelines(card.tag, std::string_view(lines).substr(1));
}

template <class Shop>
void addpresentation(falsestack& card, Shop& shop, const std::string& language) {
    addloreline(card.tag, shop.describe);
    if (shop.isopshop) addloreline(card.tag, opshopmark);
    const auto discounts = discountlines(shop);
    if (discounts.empty()) return;
    addloreline(card.tag, "§r§b【§a" + tr(language, "shop.sales") + "§b】");
    adddiscounts(card, discounts);
}

void addlooker(falsestack& card, const ServerPlayer* player) {
    addloreline(card.tag, yourname(*player));
    addloreline(card.tag, yourmoney(*player));
}

template <class Shop>
void dresscard(falsestack& card, Shop& shop, const std::string& language) {
    setdisplayname(card.tag, shophead(shop, language, true));
    card.tag.putByte("Slot", 0);
    clearlore(card.tag);
    addpresentation(card, shop, language);
}

void loadicon(falsestack& card, const std::string& icon) {
    setitemname(card.tag, icon);
    card.tag.putShort("Damage", 0);
    card.load();
    if (!card.stack->isNull() && card.stack->getId() != 0) return;
    setitemname(card.tag, "minecraft:skull");
    card.tag.putShort("Damage", headaux);
    card.load();
}

void sendcard(ServerPlayer* player, const falsestack& card) { card.sendto(player, layout::armour, 0); }

}  // namespace

template <class Shop>
std::string cardtext(Shop& shop, const std::string& language) {
    falsestack card;
    dresscard(card, shop, language);
    loadicon(card, shop.shopitemicon);
    return card.tag.toSNBT();
}

template <class Rows>
void drawshopcard(ServerPlayer* player, const goodsview& view) {
    const auto& state = getplayershopstate(player->getXuid());
    auto& shop = Rows::shop(state.viewedshopid);
    falsestack card;
    dresscard(card, shop, player->getLanguageCode());
    addloreline(card.tag, greyline);
    addlooker(card, player);
    loadicon(card, shop.shopitemicon);
    sendcard(player, card);
    if (state.showhelper) drawsign(player, view);
    if (state.doubleclickmode) setcursorsign(player, true);
}

template <class Rows>
void drawownercard(ServerPlayer* player, const goodsview& view) {
    auto& shop = Rows::shop(effectiveshop(player));
    const auto& language = player->getLanguageCode();
    const auto [first, second] = countersof(shop, language);
    falsestack card;
    setdisplayname(card.tag, shop.shopname);
    card.tag.putByte("Slot", 0);
    clearlore(card.tag);
    addloreline(card.tag, fmt::format("{}:{}", tr(language, "shop.owner"), shop.ownername));
    addloreline(card.tag, first);
    addloreline(card.tag, second);
    addloreline(card.tag, greyline);
    addlooker(card, player);
    adddiscounts(card, discountlines(shop));
    if (shop.isopshop) addloreline(card.tag, opshopmark);
    adddiscounts(card, banlines(shop, language));
    setshine(card.tag);
    card.load();
    sendcard(player, card);
    drawsignandcursor(player, view);
}

template std::string cardtext(sellshop&, const std::string&);
template std::string cardtext(recycleshop&, const std::string&);
template void drawshopcard<sellrows>(ServerPlayer*, const goodsview&);
template void drawshopcard<recyclerows>(ServerPlayer*, const goodsview&);
template void drawownercard<sellrows>(ServerPlayer*, const goodsview&);
template void drawownercard<recyclerows>(ServerPlayer*, const goodsview&);

}  // namespace ordomart
