// The player's standing filter, and the search of one list. A search always looks at item names; its result is shown in
// the chest lists, whose next prepare step takes it.
#include <nlohmann/json.hpp>
#include <tuple>
#include <utility>

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/base/screens.h"
#include "plugin/formparts/formtools.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/playershopstate.h"

namespace ordomart {

namespace {

template <class T>
struct filterfield {
    inputelement element;
    T shopfilter::*field;
};

constexpr filterfield<std::string> textfields[] = {
    {{"filter.form.inputtitle1", "setfilter.inputfiltershopownername", "input string"}, &shopfilter::ownernamefilter},
    {{"filter.form.inputtitle2", "setfilter.inputfiltershopdescname", "input string"}, &shopfilter::shopdescfilter},
    {{"filter.form.inputtitle3", "setfilter.inputfiltershopitemname", "input string"}, &shopfilter::itemnamefilter},
    {{"filter.form.inputtitle4", "setfilter.inputfiltershopitemdescname", "input string"}, &shopfilter::itemdescfilter},
    {{"filter.form.inputtitle5", "setfilter.inputfiltershopitemtagname", "input string"}, &shopfilter::itemtagfilter},
};
constexpr filterfield<std::int32_t> limitfields[] = {
    {{"filter.form.inputtitle01", "setfilter.inputPurchasedtimelimit", "input number"}, &shopfilter::minsellcount},
    {{"filter.form.inputtitle02", "setfilter.inputtotalsalelimit", "input number"}, &shopfilter::minsalesvolume},
    {{"filter.form.inputtitle03", "setfilter.inputrecycletimelimit", "input number"}, &shopfilter::minrecycleamount},
    {{"filter.form.inputtitle04", "setfilter.inputtotalcostlimit", "input number"}, &shopfilter::minrecyclecost},
};

// -1, no limit, up to 99999998.
bool islimit(std::int32_t number) { return static_cast<std::uint32_t>(number) + 1U <= 99999999U; }

void setfilter(ServerPlayer* player, const Form::Elements& answer) {
    auto& filter = getplayershopstate(player->getXuid()).filter;
    auto changed = filter;
    for (const auto& limit : limitfields) {
        const auto number = limit.element.number(answer);
        if (!islimit(number)) {
            player->sendText(tr(player, "sellshop.error.invalid"));
            return;
        }
        changed.*limit.field = number;
    }
    for (const auto& text : textfields) changed.*text.field = text.element.text(answer);
    filter = changed;
    playsound(player, "mob.villager.yes");
    player->sendText(tr(player, "command.reload.success"));
}

constexpr toggleelement searchintag{"inputsearchitemtag", "searchform.searchfromitemtag"};
constexpr toggleelement searchindesc{"inputsearchitemdesc", "searchform.searchfromitemdesc"};
constexpr inputelement searchtext{"inputtext", "searchform.inputfilterstr"};

// The elements' places in the raw answer.
enum searchanswer : std::size_t { textplace, typeplace, intagplace, indescplace };

const screenentry entry{screen::searchform, [](ServerPlayer* player, const screenorder& order) {
                            return opensearchitemform(player, order.type, order.indescription);
                        }};

}  // namespace

void setmyshopitemfiter(ServerPlayer* player) {
    const auto& filter = getplayershopstate(player->getXuid()).filter;
    const auto& language = player->getLanguageCode();
    Form::CustomForm form("Filter Settings");
    for (const auto& text : textfields) text.element.show(form, language, filter.*text.field);
    for (const auto& limit : limitfields) limit.element.show(form, language, std::to_string(filter.*limit.field));
    sendform(player, form, {"setmyshopitemfiter"}, setfilter);
}

opresult opensearchitemform(ServerPlayer* player, int type, bool descdefault) {
    const auto& language = player->getLanguageCode();
    Form::CustomForm form(tr(language, "searchform.title"));
    searchtext.show(form, language);
    form.addDropdown("inputtype", tr(language, "searchform.inputtype"), {tr(language, "sell"), tr(language, "recycle")},
                     type);
    searchintag.show(form, language, true);
    searchindesc.show(form, language, descdefault);
    sendrawform(player, form, {"opensearchitemform"}, [](ServerPlayer* who, const nlohmann::json& answer) {
        searchbyfilter(who, answer.at(typeplace).get<int>(), answer.at(textplace).get<std::string>(),
                       answer.at(indescplace).get<bool>(), answer.at(intagplace).get<bool>(), true);
    });
    return opresult::opened;
}

opresult searchbyfilter(ServerPlayer* player, int type, const std::string& text, bool indesc, bool intag,
                        bool initemname) {
    if (type != sell && type != recycle) return opresult::refused;
    auto& state = getplayershopstate(player->getXuid());
    const auto earlier = std::pair(state.searchfilter, state.searchmode);
    state.searchfilter = {};
    if (initemname) state.searchfilter.itemnamefilter = text;
    if (intag) state.searchfilter.itemtagfilter = text;
    if (indesc) state.searchfilter.itemdescfilter = text;
    state.searchmode = true;
    const auto result = openscreen(type == sell ? screen::sellshops : screen::recycleshops, player);
    // Without a list of its own, the search would narrow the next one.
    if (result != opresult::opened) std::tie(state.searchfilter, state.searchmode) = earlier;
    return result;
}

}  // namespace ordomart
