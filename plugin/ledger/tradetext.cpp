#include "plugin/ledger/tradetext.h"

#include <fmt/chrono.h>

#include "platform/background.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/economymanager.h"
#include "plugin/formparts/formtools.h"
#include "plugin/ledger/pricetext.h"
#include "plugin/ledger/queries.h"

namespace ledger {

using ordomart::filled;
using ordomart::tr;

namespace owntext = ordomart::owntext;

namespace {

constexpr std::size_t mosttold = 10;

std::string toldof(const tradeline& line, const std::string& language) {
    const auto& what = line.what;
    // As the server's log has it.
    const auto time = fmt::format("{:%Y-%m-%d %H:%M}", fmt::localtime(static_cast<std::time_t>(what.time)));
    if (isundo(what.what)) return filled(tr(language, owntext::tradesundo), what.number, time, what.undoes);
    const auto called = [](const std::string& name, const std::string& xuid) { return name.empty() ? xuid : name; };
    const auto* const key = what.what == kind::purchase ? owntext::tradesbought : owntext::tradessold;
    const auto text =
        filled(tr(language, key), what.number, time, called(line.actorname, what.actor), what.pieces,
               nameof(line.item, language), called(line.shopname, what.shop), what.paid, ordomart::getmoneyname());
    return line.undoneby ? filled(tr(language, owntext::tradesundone), text, *line.undoneby) : text;
}

}  // namespace

void telltrades(const platform::ServerPlayer& player, const std::string& party) {
    constexpr const char* place = "trades";
    platform::Background::start([xuid = player.getXuid(), party] {
        ordomart::envelope(
            [&] {
                ordomart::backtoplayer(xuid, place, [page = latesttrades({.player = party}, mosttold)](auto* who) {
                    const auto language = who->getLanguageCode();
                    std::string text = tr(language, page.lines.empty() ? owntext::tradesnone : owntext::tradestitle);
                    for (const auto& line : page.lines) text += "\n" + toldof(line, language);
                    who->sendText(text);
                });
            },
            place);
    });
}

}  // namespace ledger
