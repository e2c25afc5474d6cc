// A dialog keeps the commission's place and the shop's revision and no reference to the shop.
#include "plugin/trade/commissionforms.h"

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/formparts/commissionflags.h"
#include "plugin/formparts/formtools.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/trade/commissions.h"
#include "plugin/trade/ownrow.h"

namespace ordomart {

namespace {

// In the order of ownerside.
constexpr ownerface issuefaces[] = {
    {.place = "openOrdomyrecycleshopnewissueAsformmenu",
     .back = {screen::issuelist},
     .unless = {{{refusal::banned, {}}}}},
    {.place = "openOrdomyrecycleshoponreshoppreviewmenu",
     .back = {screen::myrecycleshoponreshop},
     .unless = {{{refusal::banned, {}}}},
     .chest = true},
};
constexpr ownerface adjustfaces[] = {
    {.place = "openOrdomyrecycleshopEditItemAsformmenu",
     .back = {screen::commissionlist},
     .unless = {{{refusal::recordgone, {}}}}},
    {.place = "openOrdomyrecycleshoppreviewmenu", .back = {screen::myrecycleshop}, .chest = true},
};
constexpr ownerface pickupfaces[] = {
    {.place = "openOrdomyrecycleshoppickupAsformmenu",
     .back = {screen::pickuplist},
     .unless = {{{refusal::none, {}}, {refusal::recordgone, {}}}}},
    {.place = "openOrdomyrecycleshoppickupitemmenu", .back = {screen::myrecycleshoppickup}, .chest = true},
};

// The elements of a commission, as both forms name them.
struct commissionelements {
    inputelement name, describe, offer, count, tag;
    toggleelement searchable, toggles[3];  // the toggles in the order of commissionflags

    void show(Form::CustomForm& form, const std::string& language, const recycleshopitem& item) const {
        name.show(form, language, item.recycleitemname);
        describe.show(form, language, item.recycleitemdescribe);
        offer.show(form, language, std::to_string(item.offer));
        count.show(form, language, std::to_string(item.recycleitemleftwanna));
        tag.show(form, language, item.recycleitemtag);
        searchable.show(form, language, item.allowbesearched);
        for (std::size_t i = 0; i < std::size(toggles); ++i)
            toggles[i].show(form, language, item.*commissionflags[i].set);
    }
    [[nodiscard]] recycleshopitem read(const Form::Elements& answer) const {
        recycleshopitem item;
        item.recycleitemname = name.text(answer);
        item.recycleitemdescribe = describe.text(answer);
        item.offer = offer.number(answer);
        item.recycleitemleftwanna = count.number(answer);
        item.recycleitemtag = tag.text(answer);
        item.allowbesearched = searchable.on(answer);
        for (std::size_t i = 0; i < std::size(toggles); ++i) item.*commissionflags[i].set = toggles[i].on(answer);
        return item;
    }
};

constexpr commissionelements issueelements{
    {"myrecycleshop_onreshopmenu_inputtitle", "myshop.onshop.form.inputshopitemname", "input name"},
    {"myrecycleshop_onreshopmenu_inputtitle2", "myshop.onshop.form.inputshopitemdescribe", "input description"},
    {"myrecycleshop_onreshopmenu_inputtitle3", "myrecycleshop.onreshop.form.inputoffer", "input number"},
    {"myrecycleshop_onreshopmenu_inputtitle4", "myrecycleshop.onreshop.form.inputnum", "input number"},
    {"myrecycleshop_onreshopmenu_inputtitle5", "myshop.onshop.form.inputshopitemtag", "input itemtag"},
    {"myrecycleshop_onreshopmenu_toggletitle", "myshop.onshop.form.inputshopitemcanbesearch"},
    {{"myrecycleshop_onreshopmenu_toggletitle2", "myrecycleshop.onreshop.form.inputfilterauxdamage"},
     {"myrecycleshop_onreshopmenu_toggletitle3", "myrecycleshop.onreshop.form.inputshopfilterench"},
     {"myrecycleshop_onreshopmenu_toggletitle4", "myrecycleshop.onreshop.form.inputshopfilteritemnbt"}}};
constexpr commissionelements adjustelements{
    {"myrecycleshop_adjustshopmenu_inputtitle", "myshop.onshop.form.inputshopitemname", "input name"},
    {"myrecycleshop_adjustshopmenu_inputtitle2", "myshop.onshop.form.inputshopitemdescribe", "input description"},
    {"myrecycleshop_adjustshopmenu_inputtitle3", "myrecycleshop.onreshop.form.inputoffer", "input number"},
    {"myrecycleshop_adjustshopmenu_inputtitle4", "myrecycleshop.onreshop.form.inputnum", "input number"},
    {"myrecycleshop_adjustshopmenu_inputtitle5", "myshop.onshop.form.inputshopitemtag", "input itemtag"},
    {"myrecycleshop_adjustshopmenu_toggletitle", "myshop.onshop.form.inputshopitemcanbesearch"},
    {{"myrecycleshop_adjustshopmenu_toggletitle2", "myrecycleshop.onreshop.form.inputfilterauxdamage"},
     {"myrecycleshop_adjustshopmenu_toggletitle3", "myrecycleshop.onreshop.form.inputshopfilterench"},
     {"myrecycleshop_adjustshopmenu_toggletitle4", "myrecycleshop.onreshop.form.inputshopfilteritemnbt"}}};

const std::string& nameof(const std::string& shopxuid) {
    return globalruntimeshopmanager.getrecycleshop(shopxuid).shopname;
}

void done(ServerPlayer* player, const ownerface& face, const std::string& shopxuid, const ownerresult& step) {
    finishstep(player, face, nameof(shopxuid), step);
}

void tellended(ServerPlayer* player, const ownerface& face, const ownerresult& step) {
    const auto ended = tr(player, "offshelf.success");
    const auto total = "Total get num:" + std::to_string(step.pieces);
    if (face.chest)
        systemtoast(player, total + ended);
    else
        player->sendToastPacket(step.name + ended, total);
}

// He may have lost the right to manage the shop since the dialog opened.
template <class Step>
ownerresult ifallowed(const ServerPlayer* player, const std::string& shopxuid, Step step) {
    const auto why = mayact(*player, shopxuid);
    return why == refusal::none ? step() : refused(why);
}

using publisher = std::function<ownerresult(ServerPlayer*, recycleshopitem wanted)>;

void sendissueform(ServerPlayer* player, const ownerface& face, const std::string& shopxuid, const ItemStack& like,
                   const publisher& publish) {
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "myrecycleshop.onreshop.form.menutitle"));
    form.addLabel("Iteminfo", itemhovertext(like, language));
    const auto& records = globalruntimeshopmanager.getrecycleshop(shopxuid).recycleitems;
    if (const auto fee = feetext(*player, records); !fee.empty()) form.addLabel("chargeinfoextra", fee);
    recycleshopitem standard;
    standard.recycleitemname = standardname(like);
    standard.recycleitemleftwanna = 1;
    standard.allowbesearched = standard.filterauxordamage = true;
    issueelements.show(form, language, standard);
    senddialog(player, face, form, [&face, shopxuid, publish](ServerPlayer* who, const Form::Elements& answer) {
        done(who, face, shopxuid, ifallowed(who, shopxuid, [&] { return publish(who, issueelements.read(answer)); }));
    });
}

// At most five of the stacks that wait, a line each.
std::string waitingtext(const recycleshopitem& item) {
    constexpr std::size_t most = 5;
    std::string text = "get ALL item?\n";
    for (std::size_t i = 0; i < std::min(most, item.recycleditemnbtlist.size()); ++i) {
        const auto tag = CompoundTag::fromSNBT(item.recycleditemnbtlist[i]).value_or(CompoundTag());
        text += fmt::format("{} * {}\n", tag.getString("Name"), static_cast<std::uint8_t>(tag.getByte("Count")));
    }
    // The tail depends on the fifth line alone.
    if (item.recycleditemnbtlist.size() >= most)
        text += fmt::format("and {} more...", item.recycleditemnbtlist.size() - most);
    return text;
}

}  // namespace

void offercommission(ServerPlayer* player, const std::string& shopxuid, const stackplace& like, ownerside side) {
    const auto stack = like.stackof(*player);
    if (stack.isNull()) return player->sendText("ERROR empty hand");
    const auto& rules = side == ownerside::chest ? chestslotpublish : formpublish;
    sendissueform(player, faceof(issuefaces, side), shopxuid, stack,
                  [shopxuid, like, shown = itemtosnbt(stack), &rules](ServerPlayer* who, recycleshopitem wanted) {
                      if (!stillholds(*who, like, shown)) return refused(refusal::slotschanged);
                      wanted.itemnbt = itemtosnbtasis(like.stackof(*who));
                      return publishcommission(who, shopxuid, wanted, rules);
                  });
}

void offercommission(ServerPlayer* player, const std::string& shopxuid, const ItemStack& like) {
    sendissueform(player, faceof(issuefaces, ownerside::chest), shopxuid, like,
                  [shopxuid, text = itemtosnbtasis(like)](ServerPlayer* who, recycleshopitem wanted) {
                      wanted.itemnbt = text;
                      return publishcommission(who, shopxuid, wanted, chestcreativepublish);
                  });
}

void offeradjustcommission(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side) {
    const auto& face = faceof(adjustfaces, side);
    ItemStack item;
    const auto row = ownrow<recyclerows>(player, shopxuid, index, side, item);
    if (!row) return lost(player, face);
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "myrecycleshop.adjustshop.form.menutitle"));
    form.addLabel("Iteminfo", itemhovertext(item, language));
    adjustelements.show(form, language, *row);
    senddialog(player, face, form,
               [&face, shopxuid, place = row->index, revision = row->revision](ServerPlayer* who,
                                                                               const Form::Elements& answer) {
                   const auto step = ifallowed(who, shopxuid, [&] {
                       return adjustcommission(who, shopxuid, place, revision, adjustelements.read(answer));
                   });
                   if (step.ended) tellended(who, face, step);
                   done(who, face, shopxuid, step);
               });
}

void offerpickup(ServerPlayer* player, const std::string& shopxuid, std::int64_t index, ownerside side) {
    const auto& face = faceof(pickupfaces, side);
    const auto& shop = globalruntimeshopmanager.getrecycleshop(shopxuid);
    if (!holdsplace(shop.recycleitems, index)) {
        tellrefusal(player, face, refused(refusal::recordgone));
        return lost(player, face);
    }
    const auto item = shop.getrecycleitem(static_cast<int>(index));
    const Form::ModalForm form(tr(player, "myrecycleshop.pickupitem.form.menutitle"), waitingtext(item), "yes", "no");
    sendform(player, form, {face.place},
             [&face, shopxuid, place = static_cast<int>(index), revision = shop.revision](ServerPlayer* who, bool yes) {
                 if (!yes) return goback(who, face);
                 const auto step =
                     ifallowed(who, shopxuid, [&] { return pickupcommission(who, shopxuid, place, revision); });
                 if (step.ok())
                     who->sendToastPacket(nameof(shopxuid), (face.chest ? "Total get num :" : "Total get num : ") +
                                                                std::to_string(step.pieces));
                 done(who, face, shopxuid, step);
             });
}

}  // namespace ordomart
