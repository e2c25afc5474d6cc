// The faces of an owner's dialogs as records, and the one place that turns the outcome of a step into what he reads and
// sees next. The forms tell some refusals in the chat and then open nothing; the chest always opens its view again, so
// that the owner is never left without one.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>

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
    bool showscustomlore = false;
};

// The shop that an owner's dialog is about, as it was when the dialog opened.
[[nodiscard]] std::string targetshop(const Player* player);

void goback(ServerPlayer* player, const ownerface& face);
// There is nothing to make the dialog for; the player has been told.
void lost(ServerPlayer* player, const ownerface& face);
// What is read of a step that was refused. Nothing for one that was not.
void tellrefusal(ServerPlayer* player, const ownerface& face, const ownerresult& step);
// Tells it, and opens what follows.
void follow(ServerPlayer* player, const ownerface& face, const ownerresult& step);
// The money that a step took, as a toast under the shop's name.
void tellcharge(ServerPlayer* player, const std::string& shopname, const ownerresult& step);

// The title that a new record begins with: the item's description id behind its first colon.
[[nodiscard]] std::string standardname(const ItemStack& stack);
// What the next record costs, or nothing.
[[nodiscard]] std::string feetext(const Player& player, const nlohmann::json& records);

}  // namespace ordomart
