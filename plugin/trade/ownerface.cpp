// Each refusal has one text, whatever the dialog.
#include "plugin/trade/ownerface.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/economy/economymanager.h"
#include "plugin/economy/paynotes.h"
#include "plugin/formparts/formtools.h"

namespace ordomart {

namespace {

// These are told in the chat, all others by a toast.
constexpr refusal toldinchat[] = {refusal::recordgone, refusal::itembroken, refusal::slotsempty};

// The chest leads on from the dialog; the form ends there.
void tellban(ServerPlayer* player, const ownerface& face) {
    const auto text = tr(player, "shop.banned");
    if (!face.chest) return sendform(player, Form::SimpleForm(text, text), {face.place}, [](ServerPlayer*, int) {});
    const Form::ModalForm dialog(text, text, tr(player, "continue"), tr(player, "exit"));
    sendform(player, dialog, {face.place}, [&face](ServerPlayer* who, bool) { goback(who, face); });
}

std::string textof(const ServerPlayer* player, const ownerface& face, const ownerresult& step) {
    auto text = refusaltext(step.why, player->getLanguageCode());
    if (step.why == refusal::feeshort || step.why == refusal::moneyshort)
        text += fmt::format("({}/{})", step.has, step.needed);
    if (step.why == refusal::recordgone && !face.chest) text.insert(0, "catcherror:");
    return text;
}

}  // namespace

void goback(ServerPlayer* player, const ownerface& face) { reopen(player, face.back, {}); }

void lost(ServerPlayer* player, const ownerface& face) {
    if (face.chest) goback(player, face);
}

void tellrefusal(ServerPlayer* player, const ownerface& face, const ownerresult& step) {
    if (step.why == refusal::banned) return tellban(player, face);
    const auto text = textof(player, face, step);
    if (text.empty()) return;
    if (std::ranges::find(toldinchat, step.why) != std::end(toldinchat))
        player->sendText(text);
    else
        systemtoast(player, text);
}

void follow(ServerPlayer* player, const ownerface& face, const ownerresult& step) {
    tellrefusal(player, face, step);
    for (const auto& exception : face.unless)
        if (exception.holds && exception.why == step.why) return reopen(player, exception.next, {});
    goback(player, face);
}

void finishstep(ServerPlayer* player, const ownerface& face, const std::string& shopname, const ownerresult& step) {
    if (step.slotschanged) systemtoast(player, refusaltext(refusal::slotschanged, player->getLanguageCode()));
    if (step.ischarged) moneytoast(player, shopname, '-', step.charged);
    if (step.received != 0) moneytoast(player, shopname, '+', step.received);
    if (step.ok()) playsound(player, "mob.villager.yes");
    follow(player, face, step);
}

void senddialog(ServerPlayer* player, const ownerface& face, const Form::CustomForm& form,
                std::function<void(ServerPlayer*, const Form::Elements&)> answered) {
    sendform(player, form, {face.place, [&face](ServerPlayer* who) { goback(who, face); }}, std::move(answered));
}

std::string standardname(const ItemStack& stack) {
    const auto& name = stack.getTypeName();
    const auto colon = name.find(':');
    return colon == std::string::npos ? name : name.substr(colon + 1);
}

std::string feetext(const Player& player, const nlohmann::json& records) {
    if (!records.is_array() || static_cast<std::int64_t>(records.size()) <= maxfreeslot) return {};
    return filled(tr(&player, "shop.onshop.notfreecost"), maxfreeslot, extraslotcost);
}

}  // namespace ordomart
