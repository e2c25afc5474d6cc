// Drawing a page: rows, page buttons, the view's buttons. A slot that nothing is sent for stays as it was blanked.
#include "plugin/chestmenu/pageview.h"

#include <fmt/format.h>

#include "plugin/base/guards.h"
#include "plugin/base/language.h"

namespace ordomart {

namespace {

constexpr std::string_view sixblanks = "      ";

struct pagebutton {
    int slot;
    std::string name, lore;
};

void drawpagebutton(ServerPlayer* player, falsestack& builder, const pagebutton& button) {
    auto& tag = builder.tag;
    clearlore(tag);
    setdisplayname(tag, button.name);
    tag.putByte("Slot", static_cast<std::int8_t>(button.slot));
    addloreline(tag, button.lore);
    setitemname(tag, "minecraft:book");
    setshine(tag);
    builder.load();
    builder.sendto(player, layout::inventory, static_cast<std::uint32_t>(button.slot));
}

void drawpagebuttons(ServerPlayer* player, falsestack& builder, std::int64_t page, std::int64_t lastpage) {
    const auto place = fmt::format("{}/{}", page + 1, lastpage + 1);
    if (page >= 1)
        drawpagebutton(player, builder,
                       {0, "\uE04DLast page", fmt::format("{}上一页{}{}", sixblanks, sixblanks, place)});
    if (page < lastpage)
        drawpagebutton(player, builder, {8, "Next page\uE04F", fmt::format("下一页   {}{}", place, sixblanks)});
}

void drawbutton(ServerPlayer* player, falsestack& builder, const viewbutton& button) {
    auto look = button.look;
    if (look.item == nullptr) return;
    if (button.statekey != nullptr) look.namekey = button.statekey(getplayershopstate(player->getXuid()));
    dress(builder, player, look, button.slot);
    builder.sendto(player, button.row == buttonrow::armour ? layout::armour : layout::inventory,
                   static_cast<std::uint32_t>(button.slot));
}

}  // namespace

void dress(falsestack& builder, const ServerPlayer* player, const icon& look, int slot) {
    auto& tag = builder.tag;
    clearlore(tag);
    setdisplayname(tag, tr(player, look.namekey));
    tag.putByte("Slot", static_cast<std::int8_t>(slot));
    for (const auto* key : look.lorekeys)
        if (key != nullptr) addloreline(tag, tr(player, key));
    setitemname(tag, look.item);
    if (look.damage) tag.putShort("Damage", *look.damage);
    if (look.shines)
        setshine(tag);
    else
        clearshine(tag);
    builder.load();
}

void drawpage(ServerPlayer* player, const goodsview& view) {
    auto& page = getplayershopstate(player->getXuid()).*view.page;
    const auto count = static_cast<std::int64_t>(view.count(player));
    const auto lastpage = count / pagesize;
    if (view.lostpageisfirst && page > lastpage) page = 0;

    falsestack goods;
    std::vector<pageentry> entries(pagesize);
    auto slot = layout::firstlisted;
    for (auto i = std::int64_t{page} * pagesize; i < count && slot <= layout::lastlisted; ++i, ++slot) {
        // One good that cannot be shown must not take the rest of the page with it.
        envelopeat(view.plan.place, [&] {
            auto entry = view.row(player, goods, static_cast<std::size_t>(i));
            goods.sendto(player, layout::inventory, static_cast<std::uint32_t>(slot));
            entries.at(static_cast<std::size_t>(slot - layout::firstlisted)) = {i, std::move(entry)};
        });
    }

    falsestack buttons;
    drawpagebuttons(player, buttons, page, lastpage);
    for (const auto& button : view.buttons) drawbutton(player, buttons, button);
    completepage(player, std::move(entries));
}

pageentry entryat(const ListenRecorder& record, int slot) {
    const auto& shown = record.picture.entries;
    const auto place = static_cast<std::size_t>(slot - layout::firstlisted);
    return place < shown.size() ? shown[place] : pageentry();
}

void drawsign(ServerPlayer* player, const goodsview& view) { sendhelpsign(player, view.helpkey); }

void drawsignandcursor(ServerPlayer* player, const goodsview& view) {
    drawsign(player, view);
    if (getplayershopstate(player->getXuid()).doubleclickmode) setcursorsign(player, true);
}

bool putsignoncursor(const press& at) {
    setcursorsign(at.player, true);
    return false;
}

}  // namespace ordomart
