// The two form main menus, from one table. The short one shows only the menus that are forms themselves.
#include <vector>

#include "plugin/base/language.h"
#include "plugin/base/screens.h"
#include "plugin/formparts/formtools.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/playershopstate.h"

namespace ordomart {

namespace {

enum menusize : std::uint8_t { shortmenu = 2, longmenu = 3 };  // the values of menumode

struct menubutton {
    const char* textkey;
    const char* image;
    void (*act)(ServerPlayer*);
    bool inshortmenu = false;
    bool operatorsonly = false;
};

using P = ServerPlayer*;

constexpr menubutton buttons[] = {
    {"mainmenu.buy", "textures/ui/icon_blackfriday.png", [](P p) { openscreen(screen::sellshops, p); }},
    {"mainmenu.recycle", "textures/ui/icon_deals.png", [](P p) { openscreen(screen::recycleshops, p); }},
    {"systemsellshop", "textures/ui/ImpulseSquare.png",
     [](P p) { openscreen(screen::singlesellshop, p, {.shop = systemshopid}); }},
    {"systemrecycleshop", "textures/ui/ImpulseSquare.png",
     [](P p) { openscreen(screen::singlerecycleshop, p, {.shop = systemshopid}); }},
    {"sellformUI.sellmenu", "textures/items/bed_light_blue.png", [](P p) { openOrdosellshopAsformmenu(p, true); },
     true},
    {"recycleformUI.recyclemenu", "textures/items/bed_brown.png", [](P p) { openOrdorecycleshopAsformmenu(p, true); },
     true},
    {"myshopformUI.myshopmenu", "textures/items/stick.png", [](P p) { openscreen(screen::myshopform, p); }, true},
    {"myshopformUI.systemshopmenu", "textures/ui/ImpulseSquare.png", [](P p) { openscreen(screen::systemshopform, p); },
     true},
    {"myshopformUI.switchmanagesystemshop", "textures/ui/op.png", [](P p) { openswitchsystemshop(p); }, true, true},
    {"mainmenu.myshop", "textures/ui/Friend2.png", [](P p) { openscreen(screen::myshop, p); }},
    {"searchform.title", "textures/ui/creative_icon.png", [](P p) { opensearchitemform(p, 0, false); }},
    {"sellshop.filterbyplayer", "textures/ui/icon_multiplayer.png", [](P p) { openscreen(screen::sellshoplist, p); }},
    {"recycleshop.filterbyplayer", "textures/ui/icon_multiplayer.png",
     [](P p) { openscreen(screen::recycleshoplist, p); }},
    {"sellshop.trybuy.form.menutitle", "textures/gui/newgui/Language18.png", [](P p) { readandopensellFormmenu(p); }},
    {"recycleshop.trybuy.form.menutitle", "textures/gui/newgui/Language18.png",
     [](P p) { readandopenrecycleFormmenu(p); }},
    // The settings do not exist yet; these are the words for it.
    {"player.setting", "textures/ui/settings_glyph_color_2x.png", [](P p) { p->sendText("咕咕咕"); }},
};

opresult openmainmenu(ServerPlayer* player, menusize size, const char* place) {
    getplayershopstate(player->getXuid()).menumode = size;
    const auto& locale = player->getLanguageCode();

    Form::SimpleForm form(tr(locale, "mainmenu"), tr(locale, "formUI.mainmenu.tips"));
    std::vector<const menubutton*> shown;
    for (const auto& button : buttons) {
        if (size == shortmenu && !button.inshortmenu) continue;
        if (button.operatorsonly && !isoperator(*player)) continue;
        form.addButton(tr(locale, button.textkey), button.image);
        shown.push_back(&button);
    }
    sendform(player, form, {place},
             [shown](ServerPlayer* who, int button) { shown.at(static_cast<std::size_t>(button))->act(who); });
    return opresult::opened;
}

const screenentry menuscreens[] = {
    {screen::mainmenuform, [](P p, const screenorder&) { return openFormmainmenu(p); }},
    {screen::shortmainmenuform, [](P p, const screenorder&) { return openOnlyFormmainmenu(p); }},
    {screen::lastmainmenuform, [](P p, const screenorder&) {
         openmenubymode(p);
         return opresult::opened;
     }}};

}  // namespace

opresult openFormmainmenu(ServerPlayer* player) { return openmainmenu(player, longmenu, "openFormmainmenu"); }
opresult openOnlyFormmainmenu(ServerPlayer* player) { return openmainmenu(player, shortmenu, "openOnlyFormmainmenu"); }

void openmenubymode(ServerPlayer* player) {
    switch (getplayershopstate(player->getXuid()).menumode) {
        case longmenu:
            openFormmainmenu(player);
            break;
        case shortmenu:
            openOnlyFormmainmenu(player);
            break;
        default:
            break;
    }
}

}  // namespace ordomart
