// The one place that turns the outcome of a trade into what the player reads and sees next.
#include "plugin/forms/faces.h"

#include "plugin/chestmenu/decoration.h"
#include "plugin/forms/formtools.h"
#include "plugin/frame/effects.h"
#include "plugin/frame/language.h"

namespace ordomart {

std::string answerlanguage(const facerecord& face, const ServerPlayer* player, const std::string& formlanguage) {
    return face.manner.freshlanguage ? player->getLanguageCode() : formlanguage;
}

std::string hovertextfor(const facerecord& face, const ItemStack& stack, const std::string& language) {
    return face.manner.showscustomlore ? getitemhovertext(stack, language) : itemhovertext(stack, language);
}

void tellrefusal(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& text) {
    if (face.manner.toasts) {
        systemtoast(player, text);
        face.closed(player, shopxuid);
    } else {
        player->sendText(text);
    }
}

void tellsuccess(const facerecord& face, ServerPlayer* player, const std::string& shopxuid, const std::string& language,
                 const tradesuccess& success) {
    if (!face.manner.resultdialog) {
        if (success.saystitle) player->sendText(tr(language, success.titlekey));
        moneytoast(player, success.shopname, success.sign, success.amount);
        face.goon(player, shopxuid);
        return;
    }
    const Form::ModalForm dialog(tr(language, success.titlekey), success.message, tr(language, "continue"),
                                 tr(language, "exit"));
    sendform(player, dialog, {face.place},
             [&face, shopxuid](ServerPlayer* who, bool first) { (first ? face.goon : face.leave)(who, shopxuid); });
}

}  // namespace ordomart
