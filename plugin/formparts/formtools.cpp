// The guards around answers, the way back to the server thread, and the elements' two directions.
#include "plugin/formparts/formtools.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "platform/host.h"
#include "platform/level.h"
#include "platform/schedule.h"
#include "plugin/base/language.h"
#include "plugin/base/numbers.h"

namespace ordomart {

namespace {

void guarded(ServerPlayer* player, const answerguard& guard, bool isclosed, const std::function<void()>& body) {
    if (!player->isAlive()) {
        player->sendText(tr(player, "permission.isnotalive"));
        return;
    }
    if (isclosed && !guard.closed) return;
    formenvelope(
        guard.place,
        [&] {
            if (isclosed) {
                guard.closed(player);
            } else {
                body();
            }
        },
        *guard.lines);
}

}  // namespace

bool formenvelope(const char* place, const std::function<void()>& body, const envelopelines& lines) {
    if (lines.faultplace != nullptr) return envelope(body, nullptr, lines);
    return envelope(body, fmt::format("In {} system", place).c_str(), lines);
}

void backtoplayer(const std::string& xuid, const char* place, std::function<void(ServerPlayer*)> body,
                  const envelopelines& lines) {
    Schedule::delay(
        [xuid, place, body = std::move(body), &lines] {
            auto* level = host().level;
            auto* player = level != nullptr ? level->getPlayerByXuid(xuid) : nullptr;
            if (player == nullptr) {
                logger.error("the player dont find at {}->:{}", place, place);
                return;
            }
            formenvelope(
                place, [&] { body(player); }, lines);
        },
        0);
}

void sendform(ServerPlayer* player, const Form::SimpleForm& form, answerguard guard,
              std::function<void(ServerPlayer*, int)> handler) {
    form.sendTo(player, [guard = std::move(guard), handler = std::move(handler)](ServerPlayer* who, int button) {
        guarded(who, guard, button < 0, [&] { handler(who, button); });
    });
}

void sendform(ServerPlayer* player, const Form::ModalForm& form, answerguard guard,
              std::function<void(ServerPlayer*, bool)> handler) {
    form.sendTo(player, [guard = std::move(guard), handler = std::move(handler)](ServerPlayer* who, int button) {
        guarded(who, guard, false, [&] { handler(who, button == 1); });
    });
}

void sendform(ServerPlayer* player, const Form::CustomForm& form, answerguard guard,
              std::function<void(ServerPlayer*, const Form::Elements&)> handler) {
    form.sendTo(player, [guard = std::move(guard), handler = std::move(handler)](ServerPlayer* who,
                                                                                 const Form::Elements& answer) {
        guarded(who, guard, answer.empty(), [&] { handler(who, answer); });
    });
}

void sendrawform(ServerPlayer* player, const Form::CustomForm& form, answerguard guard,
                 std::function<void(ServerPlayer*, const nlohmann::json&)> handler) {
    form.sendToForRawJson(
        player, [guard = std::move(guard), handler = std::move(handler)](ServerPlayer* who, const std::string& text) {
            guarded(who, guard, text == "null", [&] { handler(who, nlohmann::json::parse(text)); });
        });
}

void inputelement::show(Form::CustomForm& form, const std::string& locale, const std::string& standard) const {
    form.addInput(name, tr(locale, labelkey), placeholder, standard);
}
const std::string& inputelement::text(const Form::Elements& answer) const { return answer.at(name).getString(); }
std::int32_t inputelement::number(const Form::Elements& answer) const { return typednumber(text(answer)); }

void toggleelement::show(Form::CustomForm& form, const std::string& locale, bool standard) const {
    form.addToggle(name, tr(locale, labelkey), standard);
}
bool toggleelement::on(const Form::Elements& answer) const { return answer.at(name).getBool(); }

void sliderelement::show(Form::CustomForm& form, const std::string& locale, const range& numbers) const {
    form.addSlider(name, tr(locale, labelkey), numbers.least, numbers.most, 1, numbers.standard);
}
int sliderelement::value(const Form::Elements& answer) const { return answer.at(name).getInt(); }

void slotsliders::show(Form::CustomForm& form, const std::string& locale, const std::vector<slotcount>& slots,
                       bool namescount) const {
    for (std::size_t i = 0; i < slots.size(); ++i) {
        const auto [slot, count] = slots[i];
        auto label = fmt::format("【§b{}{}§r】\n{}", tr(locale, "measurement.slot"), slot, tr(locale, labelkey));
        if (namescount) label += fmt::format(" ({})", count);
        form.addSlider(nameprefix + std::to_string(i), label, 0, count, 1, count);
    }
}
std::vector<int> slotsliders::values(const Form::Elements& answer, const std::vector<slotcount>& slots) const {
    std::vector<int> chosen;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        chosen.push_back(answer.at(nameprefix + std::to_string(i)).getInt());
    }
    return chosen;
}

}  // namespace ordomart
