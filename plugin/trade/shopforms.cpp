// A history is read by the worker, so that a long file does not hold the server up.
#include "plugin/trade/shopforms.h"

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/economy/offlinemoney.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/taskpool.h"
#include "plugin/shopsystem/tradelog.h"
#include "plugin/trade/goods.h"

namespace ordomart {

namespace {

constexpr inputelement nameinput{"myshop_shopedit_inputtitle", "myshop.shopedit.form.inputshopname", "input name"};
constexpr inputelement describeinput{"myshop_shopedit_inputtitle2", "myshop.shopedit.form.inputshopdescription",
                                     "input description"};
constexpr inputelement iconinput{"myshop_shopedit_inputtitle3", "myshop.shopedit.form.inputshopicon", "input itemicon"};
constexpr toggleelement opshoptoggle{"myshop_shopedit_toggletitle", "myshop.shopedit.form.inputisopshop"};

// By kind and side. The form of a recycle shop's history has always read the sales of its twin.
constexpr ownerface shopfaces[2][2] = {
    {{.place = "openOrdomyshopAsformmenu", .back = {screen::myshopform, false}},
     {.place = "openOrdomyshoppreviewmenu", .back = {screen::myshop}, .chest = true}},
    {{.place = "openOrdomyrecycleshopAsformmenu", .back = {screen::myrecycleshopform, false}},
     {.place = "openOrdomyrecycleshoppreviewmenu", .back = {screen::myrecycleshop}, .chest = true}}};
constexpr const char* logsuffixes[2][2] = {{".log", ".log"}, {".log", ".relog"}};

template <class Shop>
shoptexts textsof(const Shop& shop) {
    return {shop.shopname, shop.describe, shop.shopitemicon, shop.isopshop};
}

}  // namespace

void offeredit(ServerPlayer* player, const std::string& shopxuid, shoptype kind, ownerside side) {
    const auto& face = faceof(shopfaces[kind], side);
    const auto texts = kind == shoptype::sell ? textsof(globalruntimeshopmanager.getsellshop(shopxuid))
                                              : textsof(globalruntimeshopmanager.getrecycleshop(shopxuid));
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "myshop.shopedit.form.menutitle"));
    nameinput.show(form, language, texts.shopname);
    describeinput.show(form, language, texts.describe);
    iconinput.show(form, language, texts.shopitemicon);
    opshoptoggle.show(form, language, texts.isopshop);
    senddialog(player, face, form, [&face, shopxuid, kind](ServerPlayer* who, const Form::Elements& answer) {
        const auto step = editshop(
            *who, shopxuid, kind,
            {nameinput.text(answer), describeinput.text(answer), iconinput.text(answer), opshoptoggle.on(answer)});
        playsound(who, step.ok() ? "mob.villager.yes" : "mob.villager.no");
        follow(who, face, step);
    });
}

void showeventlog(ServerPlayer* player, const std::string& shopxuid, shoptype kind, ownerside side) {
    if (moneymode == 0) getoffmoney(player, false);
    const auto& face = faceof(shopfaces[kind], side);
    taskpool.enqueue(
        [&face, shopxuid, xuid = player->getXuid(), suffix = logsuffixes[kind][static_cast<std::size_t>(side)]] {
            backtoplayer(xuid, face.place, [&face, text = readeventlog(shopxuid, suffix)](ServerPlayer* who) {
                Form::CustomForm form(tr(who, "myshop.shopeventlog.form.menutitle"));
                form.addLabel("Iteminfo", text);
                senddialog(who, face, form, [&face](ServerPlayer* p, const Form::Elements&) { goback(p, face); });
            });
        });
}

}  // namespace ordomart
