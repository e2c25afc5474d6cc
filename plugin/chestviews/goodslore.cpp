// The lines in their order; what both kinds of rows have is written once.
#include "plugin/chestviews/goodslore.h"

#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"
#include "plugin/formparts/commissionflags.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/rowkinds.h"

namespace ordomart {

namespace {

// One row on its way to the client.
template <class Rows>
struct writer {
    ServerPlayer* player;
    falsestack& good;
    const typename Rows::row& row;
    const bool detailed = getplayershopstate(player->getXuid()).detailmode;

    [[nodiscard]] std::string T(const char* key) const { return tr(player, key); }

    template <class... A>
    void line(fmt::format_string<A...> text, A&&... values) {
        addloreline(good.tag, fmt::format(text, std::forward<A>(values)...));
    }

    void title() {
        line("§f§r§l§f=====================");
        line("§f§r{}:§b{}", T("shop.shopitemname"), row.*Rows::name);
        line("§o{}", row.*Rows::describe);
        line("§f§r§b【§2{}§b】", row.*Rows::tag);
    }
    void owntitle() {
        line("§f§r§l§f=====================");
        line("§f§r§b{}:{}", T("shop.shopitemname"), row.*Rows::name);
        line("§o{}", row.*Rows::describe);
        line("§f§r§b【{}】", row.*Rows::tag);
    }
    void flag(const commissionflag& flag) { line("§f§r{}:{}", T(flag.labelkey), flag.glyph(row)); }
    void privacy() {
        if (!row.allowbesearched) line("§r§d【§b{}§d】", T("shop.private"));
    }
    void source() {
        line("§o{}:{}", T("shop.sourcefrom"), row.shopname);
        if (row.isopshop) addloreline(good.tag, opshopmark);
    }
};

}  // namespace

void addgoodlore(ServerPlayer* player, falsestack& good, const globalsellshopitem& row) {
    writer<sellrows> w{player, good, row};
    const bool discounted = row.price != row.realprice;
    if (w.detailed) {
        w.title();
        w.line("§f§r{}:§4{}§f/§2{}", w.T("item.damageinfo"), good.stack->getDamageValue(), good.stack->getMaxDamage());
    }
    w.line("§f§r{}:§6{}", w.T("shopitem.leftnum"), row.shopitemleftnum);
    const auto unit = fmt::format("{} {}/{}", row.realprice, getmoneyname(), w.T("measurement.entries"));
    if (discounted)
        w.line("§f§r§7{}§l-> §r§g{}", row.price, unit);
    else
        w.line("§f§r§g{}", unit);
    w.source();
    if (w.detailed && discounted) w.line("§r§b【§a{}§b】", w.T("shop.sales"));
}

void addgoodlore(ServerPlayer* player, falsestack& good, const globalrecycleshopitem& row) {
    writer<recyclerows> w{player, good, row};
    if (w.detailed) w.title();
    w.line("§f§r{}:{}", w.T("recycleshopitem.leftnum"), row.recycleitemleftwanna);
    w.line("§f§r{}:{}", w.T("recycleshopitem.hasrecyclenum"), row.nowhasrecyclenum);
    w.line("§f§r§g{} {}/{}", row.offer, getmoneyname(), w.T("measurement.entries"));
    for (const auto& flag : commissionflags) {
        if (w.detailed)
            w.flag(flag);
        else if (row.*flag.set)
            w.line("§f§r{}", w.T(flag.labelkey));
    }
    w.source();
}

void addownlore(ServerPlayer* player, falsestack& good, const globalsellshopitem& row) {
    writer<sellrows> w{player, good, row};
    w.owntitle();
    w.line("§f§r{}:{}", w.T("shopitem.leftnum"), row.shopitemleftnum);
    const auto unit = fmt::format("{} {}/{}", row.realprice, getmoneyname(), w.T("measurement.entries"));
    if (row.price != row.realprice)
        w.line("§f§r§7{} §f§l-> §r§g{}", row.price, unit);
    else
        w.line("§f§r§g{}", unit);
    w.privacy();
}

void addownlore(ServerPlayer* player, falsestack& good, const globalrecycleshopitem& row) {
    writer<recyclerows> w{player, good, row};
    w.owntitle();
    w.line("§f§r{}:{}", w.T("recycleshopitem.leftnum"), row.recycleitemleftwanna);
    w.line("§f§r{}:{}", w.T("recycleshopitem.hasrecyclenum"), row.nowhasrecyclenum);
    w.line("§f§r§g{} {}/{}", row.offer, getmoneyname(), w.T("measurement.entries"));
    for (const auto& flag : commissionflags) w.flag(flag);
    w.privacy();
}

}  // namespace ordomart
