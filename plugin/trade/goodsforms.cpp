// A dialog keeps a copy of the good and no reference to the shop: a shop that has changed since is known by its
// revision.
#include "plugin/trade/goodsforms.h"

#include <algorithm>

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/base/numbers.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/goods.h"
#include "plugin/trade/ownrow.h"

namespace ordomart {

namespace {

// In the order of ownerside.
constexpr ownerface adjustfaces[] = {
    {.place = "openOrdomyshopEditItemAsformmenu",
     .back = {screen::goodslist},
     .unless = {{{refusal::badnumbers, {screen::myshop}}, {refusal::recordgone, {}}, {refusal::itembroken, {}}}}},
    {.place = "openOrdomyshoppreviewmenu", .back = {screen::myshop}, .chest = true},
};
constexpr ownerface uploadfaces[] = {
    {.place = "openOrdomyshopuploadItemAsformmenu",
     .back = {screen::uploadlist},
     .unless = {{{refusal::feeshort, {screen::myshopform, false}},
                 {refusal::badnumbers, {screen::myshopform, false}},
                 {refusal::banned, {}},
                 {refusal::slotsempty, {}}}}},
    {.place = "openOrdomyshoponshopitempreviewmenu",
     .back = {screen::myshoponshop},
     .unless = {{{refusal::banned, {}}}},
     .chest = true},
};
constexpr ownerface replenishfaces[] = {
    {.place = "openOrdomyshopreplenishmentAsformmenu",
     .back = {screen::replenishlist},
     .unless = {{{refusal::recordgone, {}}}}},
    {.place = "openOrdomyshopreloaditempreviewmenu", .back = {screen::myshopreload}, .chest = true},
};
constexpr ownerface discountface{.place = "openOrdomyshoppreviewmenu", .back = {screen::myshop}, .chest = true};

// The elements of a good, as the adjust and the upload form name them.
struct goodelements {
    inputelement name, describe, price, tag;
    sliderelement count;
    toggleelement searchable;

    void show(Form::CustomForm& form, const std::string& language, const shopitem& item,
              const sliderelement::range& counts) const {
        name.show(form, language, item.shopitemname);
        describe.show(form, language, item.shopitemdescribe);
        price.show(form, language, std::to_string(item.price));
        tag.show(form, language, item.shopitemtag);
        count.show(form, language, counts);
        searchable.show(form, language, item.allowbesearched);
    }
    [[nodiscard]] shopitem read(const Form::Elements& answer) const {
        shopitem item;
        item.shopitemname = name.text(answer);
        item.shopitemdescribe = describe.text(answer);
        item.price = price.number(answer);
        item.shopitemtag = tag.text(answer);
        item.allowbesearched = searchable.on(answer);
        return item;
    }
};

constexpr goodelements adjustelements{
    {"myshop_adjustshopmenu_inputtitle", "myshop.onshop.form.inputshopitemname", "input name"},
    {"myshop_adjustshopmenu_inputtitle2", "myshop.onshop.form.inputshopitemdescribe", "input description"},
    {"myshop_adjustshopmenu_inputtitle3", "myshop.onshop.form.inputshopitemprice", "input number"},
    {"myshop_adjustshopmenu_inputtitle4", "myshop.onshop.form.inputshopitemtag",
     "input itemtag for managing your discount.."},
    {"myshop_adjustshopmenu_slidertitle", "myshop.onshop.form.inputshopitemnum"},
    {"myshop_adjustshopmenu_toggletitle", "myshop.onshop.form.inputshopitemcanbesearch"}};
constexpr goodelements uploadelements{
    {"myshop_onshopmenu_inputtitle", "myshop.onshop.form.inputshopitemname", "input name"},
    {"myshop_onshopmenu_inputtitle2", "myshop.onshop.form.inputshopitemdescribe", "input description"},
    {"myshop_onshopmenu_inputtitle3", "myshop.onshop.form.inputshopitemprice", "input number"},
    {"myshop_onshopmenu_inputtitle4", "myshop.onshop.form.inputshopitemtag",
     "input itemtag for managing your discount.."},
    {"myshop_onshopmenu_slidertitle", "myshop.onshop.form.inputshopitemnum"},
    {"myshop_onshopmenu_toggletitle", "myshop.onshop.form.inputshopitemcanbesearch"}};

constexpr inputelement opstock{"myshop_replenishmentshopmenu_opinputmode", nullptr};
constexpr const char* opstockhint = "OP just set the number you wish";
constexpr slotsliders refill{"myshop_replenishmentshopmenu_slidertitle", "myshop.onshop.form.inputshopitemnum"};

constexpr inputelement discounttag{"myshop_publishdiscount_inputtitle",
                                   "myshop.publishdiscount.form.inputdiscountshopitemtag", "input itemtag"};
constexpr inputelement discounttext{"myshop_publishdiscount_inputtitle2",
                                    "myshop.publishdiscount.form.inputdiscountformat", "discount format"};
constexpr inputelement discounttime{"myshop_publishdiscount_inputtitle3",
                                    "myshop.publishdiscount.form.inputdiscounttime", "input duration"};

goodsnapshot snapshotof(const globalsellshopitem& row) { return {row.xuid, row.index, row.revision}; }

void done(ServerPlayer* player, const ownerface& face, const std::string& shopxuid, const ownerresult& step) {
    finishstep(player, face, globalruntimeshopmanager.getsellshop(shopxuid).shopname, step);
}

void telloffshelf(ServerPlayer* player, const ownerface& face, const std::string& name) {
    const auto ended = tr(player, "offshelf.success");
    const auto text = face.chest ? ended + name : name + ended;
    player->sendText(text);
    systemtoast(player, text);
}

}  // namespace

void offeradjust(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side) {
    const auto& face = faceof(adjustfaces, side);
    ItemStack item;
    const auto row = ownrow<sellrows>(player, shopxuid, index, side, item);
    if (!row) return lost(player, face);
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "myshop.adjustshop.form.menutitle"));
    auto info = tr(language, "myshop.adjustshop.form.helper1");
    if (!face.chest) info += "\n" + itemhovertext(item, language);
    form.addLabel("Iteminfo", info);
    const int stock = std::max(row->shopitemleftnum, 0);
    adjustelements.show(form, language, *row, {0, stock, stock});
    senddialog(player, face, form, [&face, at = snapshotof(*row)](ServerPlayer* who, const Form::Elements& answer) {
        const auto step = adjustgood(who, at, adjustelements.read(answer), adjustelements.count.value(answer));
        if (step.ended) telloffshelf(who, face, step.name);
        done(who, face, at.shopxuid, step);
    });
}

void offerupload(ServerPlayer* player, const std::string& shopxuid, const stackplace& from, ownerside side) {
    const auto& face = faceof(uploadfaces, side);
    const auto stack = from.stackof(*player);
    if (stack.isNull()) return player->sendText("ERROR empty hand");
    const auto& language = player->getLanguageCode();
    const auto& shop = globalruntimeshopmanager.getsellshop(shopxuid);
    Form::CustomForm form(tr(language, "myshop.onshop.form.menutitle"));
    form.addLabel("Iteminfo", itemhovertext(stack, language));
    if (const auto fee = feetext(*player, shop.items); !fee.empty()) form.addLabel("chargeinfoextra", fee);
    shopitem standard;
    standard.shopitemname = standardname(stack);
    standard.allowbesearched = true;
    uploadelements.show(form, language, standard, {face.chest ? 1 : 0, stack.getCount(), stack.getCount()});
    senddialog(player, face, form,
               [&face, shopxuid, from, shown = itemtosnbt(stack)](ServerPlayer* who, const Form::Elements& answer) {
                   const auto step = uploadgood(who, shopxuid, from, shown, uploadelements.read(answer),
                                                uploadelements.count.value(answer));
                   done(who, face, shopxuid, step);
               });
}

void offerreplenish(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side) {
    const auto& face = faceof(replenishfaces, side);
    ItemStack item;
    const auto row = ownrow<sellrows>(player, shopxuid, index, side, item);
    if (!row) return lost(player, face);
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "myshop.replenishmentshop.form.menutitle"));
    form.addLabel("Iteminfo", itemhovertext(item, language));
    const auto at = snapshotof(*row);
    if (isoperator(*player) && (row->isopshop || !face.chest)) {
        const auto present = std::to_string(row->shopitemleftnum);
        form.addInput(opstock.name, face.chest ? tr(language, refill.labelkey) : opstockhint,
                      face.chest ? opstockhint : "", present);
        senddialog(player, face, form, [&face, at](ServerPlayer* who, const Form::Elements& answer) {
            done(who, face, at.shopxuid, setstock(who, at, opstock.number(answer)));
        });
        return;
    }
    const auto slots = findsameitems(*player, row->itemnbt);
    refill.show(form, language, slots, face.chest);
    senddialog(player, face, form, [&face, at, slots](ServerPlayer* who, const Form::Elements& answer) {
        done(who, face, at.shopxuid, replenishgood(who, at, slots, refill.values(answer, slots)));
    });
}

void offerdiscount(ServerPlayer* player, const std::string& shopxuid) {
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "myshop.publishdiscount.form.menutitle"));
    form.addLabel("Iteminfo", tr(language, "myshop.publishdiscount.helper1"));
    discounttag.show(form, language);
    discounttext.show(form, language);
    discounttime.show(form, language, "7200");
    senddialog(player, discountface, form, [shopxuid](ServerPlayer* who, const Form::Elements& answer) {
        done(who, discountface, shopxuid,
             publishdiscount(*who, shopxuid, discounttag.text(answer), discounttext.text(answer),
                             typednumber64(discounttime.text(answer))));
    });
}

}  // namespace ordomart
