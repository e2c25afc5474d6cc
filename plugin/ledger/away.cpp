#include "plugin/ledger/away.h"

#include <nlohmann/json.hpp>

#include "platform/host.h"
#include "platform/level.h"
#include "platform/records.h"
#include "plugin/base/extras.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/economymanager.h"
#include "plugin/formparts/formtools.h"
#include "plugin/ledger/ledger.h"

namespace ledger {

using nlohmann::json;
using ordomart::filled;
using ordomart::tr;
using platform::host;

namespace {

constexpr const char* awaytable = "ledger.away";
constexpr std::size_t mosttitles = 5;

struct awayside {
    std::int64_t trades = 0, pieces = 0, money = 0;
    std::vector<std::string> ended;  // titles, the first ones
    std::int64_t moreended = 0;
    NLOHMANN_DEFINE_TYPE_INTRUSIVE(awayside, trades, pieces, money, ended, moreended)
};
struct awaynote {
    awayside sales, purchases;
    NLOHMANN_DEFINE_TYPE_INTRUSIVE(awaynote, sales, purchases)
};

awaynote noteof(const std::string& xuid) {
    const auto bytes = host().records->get(awaytable, xuid);
    if (!bytes) return {};
    try {
        return json::from_msgpack(*bytes).get<awaynote>();
    } catch (const json::exception& e) {
        ordomart::logger.error("What happened while {} was away cannot be read: {}", xuid, e.what());
        return {};
    }
}

bool isaway(const std::string& xuid) {
    return xuid != ordomart::systemshopid && host().level != nullptr && host().level->getPlayerByXuid(xuid) == nullptr;
}

std::string titlesof(const awayside& side, const std::string& language) {
    std::string all;
    for (const auto& title : side.ended) all += (all.empty() ? "" : ", ") + title;
    return side.moreended == 0 ? all : filled(tr(language, ordomart::owntext::andmore), all, side.moreended);
}

}  // namespace

void noteaway(const entry& trade, const std::string& title) {
    if (!isaway(trade.shop) || trade.pieces == 0) return;
    auto note = noteof(trade.shop);
    const bool issale = trade.what == kind::purchase;
    auto& side = issale ? note.sales : note.purchases;
    ++side.trades;
    side.pieces += trade.pieces;
    side.money += !issale ? trade.paid : trade.isopshop ? 0 : trade.paid - trade.fee;
    if (trade.before && trade.after && trade.before->left > 0 && trade.after->left == 0) {
        if (side.ended.size() < mosttitles)
            side.ended.push_back(title);
        else
            ++side.moreended;
    }
    std::string bytes;
    json::to_msgpack(json(note), bytes);
    host().records->put(awaytable, trade.shop, [bytes = std::move(bytes)] { return bytes; });
}

void tellaway(platform::ServerPlayer& player) {
    if (!isopen() || !host().records->get(awaytable, player.getXuid())) return;
    const auto note = noteof(player.getXuid());
    host().records->erase(awaytable, player.getXuid());
    if (!ordomart::awaymessage) return;
    const auto& language = player.getLanguageCode();
    const auto money = ordomart::getmoneyname();
    std::string text = tr(language, ordomart::owntext::awaytitle);
    const struct {
        const awayside& side;
        const char *traded, *ended;
    } sides[] = {{note.sales, ordomart::owntext::awaysales, ordomart::owntext::awaysoldout},
                 {note.purchases, ordomart::owntext::awaypurchases, ordomart::owntext::awayfull}};
    for (const auto& [side, traded, ended] : sides) {
        if (side.trades == 0) continue;
        text += "\n" + filled(tr(language, traded), side.trades, side.pieces, side.money, money);
        if (!side.ended.empty()) text += "\n" + filled(tr(language, ended), titlesof(side, language));
    }
    player.sendText(text);
}

}  // namespace ledger
