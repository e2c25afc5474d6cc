// What every form is made with. An answer reaches its handler only through the guards: the player is alive, the form
// was not closed, and what the handler throws ends in the log. An element is described once and is shown and read from
// that description, so that an answer cannot shift against its elements.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "platform/form.h"
#include "platform/player.h"
#include "plugin/base/globals.h"
#include "plugin/base/guards.h"
#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/itemidentity.h"

namespace ordomart {

// Goes back to the server thread with a body for one player. He is looked up again by his xuid; when he has gone, that
// is logged and the body does not run. Any thread.
void backtoplayer(const std::string& xuid, const char* place, std::function<void(ServerPlayer*)> body,
                  const envelopelines& lines = usualenvelope);

// The usual envelope around a body of the menu that `place` names.
bool formenvelope(const char* place, const std::function<void()>& body, const envelopelines& lines = usualenvelope);

// ---- sending
struct answerguard {
    const char* place;  // the opener's name, for the log
    // What a closed form does; nothing, unless it is given. A modal form has no closed case: it counts as the second
    // button.
    std::function<void(ServerPlayer*)> closed = {};
    const envelopelines* lines = &usualenvelope;
};

void sendform(ServerPlayer* player, const Form::SimpleForm& form, answerguard guard,
              std::function<void(ServerPlayer*, int button)> handler);
void sendform(ServerPlayer* player, const Form::ModalForm& form, answerguard guard,
              std::function<void(ServerPlayer*, bool first)> handler);
void sendform(ServerPlayer* player, const Form::CustomForm& form, answerguard guard,
              std::function<void(ServerPlayer*, const Form::Elements&)> handler);
// The answer as the parsed JSON array. Its shape is not trusted: what is read amiss throws, and the guard logs it.
void sendrawform(ServerPlayer* player, const Form::CustomForm& form, answerguard guard,
                 std::function<void(ServerPlayer*, const nlohmann::json&)> handler);

// ---- elements
struct inputelement {
    const char* name;
    const char* labelkey;
    const char* placeholder = "";

    void show(Form::CustomForm& form, const std::string& locale, const std::string& standard = {}) const;
    [[nodiscard]] const std::string& text(const Form::Elements& answer) const;
    [[nodiscard]] std::int32_t number(const Form::Elements& answer) const;  // as by atoi
};

struct toggleelement {
    const char* name;
    const char* labelkey;

    void show(Form::CustomForm& form, const std::string& locale, bool standard) const;
    [[nodiscard]] bool on(const Form::Elements& answer) const;
};

struct sliderelement {
    const char* name;
    const char* labelkey;

    struct range {
        int least, most, standard;
    };
    void show(Form::CustomForm& form, const std::string& locale, const range& numbers) const;
    [[nodiscard]] int value(const Form::Elements& answer) const;
};

// One slider for each inventory slot, from 0 to what was found in it, which is also the default.
struct slotsliders {
    const char* nameprefix;  // the slider's place in the list follows
    const char* labelkey;

    // With what lies in the slot behind its label, where that is asked for.
    void show(Form::CustomForm& form, const std::string& locale, const std::vector<slotcount>& slots,
              bool namescount = false) const;
    [[nodiscard]] std::vector<int> values(const Form::Elements& answer, const std::vector<slotcount>& slots) const;
};

// ---- texts
// A language text with its places filled. One whose places an operator has broken is shown as it stands, so that the
// menu still opens.
template <class... A>
[[nodiscard]] std::string filled(const std::string& text, const A&... values) {
    try {
        return fmt::format(fmt::runtime(text), values...);
    } catch (const fmt::format_error&) {
        return text;
    }
}

// Whether a shop is still as a row or a form remembers it.
[[nodiscard]] inline bool isatrevision(const baseshop& shop, std::uint32_t revision) {
    return shop.revision == revision;
}

inline const std::string opshopmark = "§f§r§o§6【OPSHOP】";
inline const std::string coinglyph = "\uE102";

}  // namespace ordomart
