// The one place that turns the outcome of a trade into what the player reads and sees next.
#include "plugin/trade/faces.h"

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/economy/paynotes.h"
#include "plugin/formparts/formtools.h"

namespace ordomart {

void reopen(ServerPlayer* player, const reopening& menu, const std::string& shopxuid) {
    if (menu.which != screen::none) openscreen(menu.which, player, {.shop = shopxuid, .refresh = menu.refresh});
}

std::string answerlanguage(const facerecord& face, const ServerPlayer* player, const std::string& formlanguage) {
    return face.manner.chest ? player->getLanguageCode() : formlanguage;
}

std::string hovertextfor(const facerecord& face, const ItemStack& stack, const std::string& language) {
    return face.manner.showscustomlore ? getitemhovertext(stack, language) : itemhovertext(stack, language);
}

void tell(const facerecord& face, ServerPlayer* player, const std::string& text) {
    if (face.manner.chest)
        systemtoast(player, text);
    else
        player->sendText(text);
}

void tellrefusal(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& text) {
    tell(face, player, text);
    if (face.manner.chest) reopen(player, face.closed, shopxuid);
}

void tellsuccess(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& language,
                 const tradesuccess& success) {
    if (face.manner.chest) {
        if (success.saystitle) player->sendText(tr(language, success.titlekey));
        moneytoast(player, success.shopname, success.sign, success.amount);
        reopen(player, face.goon, shopxuid);
        return;
    }
    const Form::ModalForm dialog(tr(language, success.titlekey), success.message, tr(language, "continue"),
                                 tr(language, "exit"));
    sendform(player, dialog, {face.place}, [&face, shopxuid](ServerPlayer* who, bool first) {
        reopen(who, first ? face.goon : face.leave, shopxuid);
    });
}

}  // namespace ordomart
