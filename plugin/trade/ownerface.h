// The faces of an owner's dialogs as records, and the one place that turns the outcome of a step into what he reads and
// sees next. The forms tell some refusals in the chat and then open nothing; the chest always opens its view again, so
// that the owner is never left without one.
#pragma once

#include <array>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "platform/form.h"
#include "platform/item.h"
#include "plugin/base/screens.h"
#include "plugin/trade/faces.h"
#include "plugin/trade/ownerstep.h"

namespace ordomart {

enum class ownerside { form, chest };

struct ownerface {
    const char* place;  // names the dialog in the log
    reopening back;     // the form was closed; also behind a step, unless told otherwise
    struct exception {
        constexpr exception() = default;
        constexpr exception(refusal behind, reopening menu) : holds(true), why(behind), next(menu) {}
        bool holds = false;
        refusal why = refusal::none;
        reopening next = {};
    };
    std::array<exception, 4> unless{};
    bool chest = false;
};

// One of a dialog's two faces, in the order of ownerside.
[[nodiscard]] inline const ownerface& faceof(const ownerface (&faces)[2], ownerside side) {
    return faces[static_cast<std::size_t>(side)];
}

void goback(ServerPlayer* player, const ownerface& face);
// There is nothing to make the dialog for; the player has been told.
void lost(ServerPlayer* player, const ownerface& face);
// What is read of a step that was refused. Nothing for one that was not.
void tellrefusal(ServerPlayer* player, const ownerface& face, const ownerresult& step);
// Tells it, and opens what follows.
void follow(ServerPlayer* player, const ownerface& face, const ownerresult& step);
// The same behind all that the step has moved: money as a toast under the shop's name, and the sound of success.
void finishstep(ServerPlayer* player, const ownerface& face, const std::string& shopname, const ownerresult& step);
// A closed form goes back.
void senddialog(ServerPlayer* player, const ownerface& face, const Form::CustomForm& form,
                std::function<void(ServerPlayer*, const Form::Elements&)> answered);

// The title that a new record begins with: the item's description id behind its first colon.
[[nodiscard]] std::string standardname(const ItemStack& stack);
// What the next record costs, or nothing.
[[nodiscard]] std::string feetext(const Player& player, const nlohmann::json& records);

}  // namespace ordomart
