// What happens now, and the trades of the past, with the command that takes one back.
#include <limits>

#include "platform/views.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/ledger/queries.h"
#include "plugin/views/viewparts.h"
#include "plugin/views/views.h"

namespace ordomart::views {

namespace {

constexpr std::size_t linesofafeed = 40, entriesofafeed = 2000;

json wordsof(ledger::kind what) {
    const auto key = std::string(owntext::kindwords) + ledger::nameof(what);
    return said(tr("en_US", key).c_str(), tr("zh_CN", key).c_str());
}

json rowof(const ledger::tradeline& line) {
    const auto& what = line.what;
    json row = {{"number", what.number},
                {"time", what.time},
                {"kind", wordsof(what.what)},
                {"actor", playervalue(what.actor, line.actorname)},
                {"shop", playervalue(what.shop, line.shopname)},
                {"item", itemvalue(line.item)},
                {"pieces", what.pieces},
                {"price", what.price},
                {"money", what.paid < 0 ? -what.paid : what.paid},
                {"fee", what.fee},
                {"undoable", ledger::istrade(what.what) && !line.undoneby}};
    if (line.undoneby) row["undoneby"] = *line.undoneby;
    if (what.undoes != 0) row["undoes"] = what.undoes;
    return row;
}

json columns() {
    return {column("number", "number", said("No.", "编号"), {{"code", true}}),
            column("time", "time", said("Time", "时间")),
            column("kind", "text", said("What", "类型")),
            column("actor", "player", said("Who", "玩家")),
            column("shop", "player", said("Shop", "商店")),
            column("item", "item", said("Item", "物品")),
            column("pieces", "number", said("Pieces", "数量")),
            column("price", "money", said("Price each", "单价")),
            column("money", "money", said("Money", "金额")),
            column("fee", "money", said("Fee", "手续费")),
            column("undoneby", "number", said("Undone by", "撤销记录"), {{"code", true}}),
            column("undoable", "flag")};
}

json undoaction() {
    return {{"title", said("Undo", "撤销")},
            {"command", "ordomart undo {number}"},
            {"confirm", said("Take trade {number} back? Pieces and money go to where they came from.",
                             "要撤销交易{number}吗？物品和金钱将退回原处。")},
            {"when", "undoable"}};
}

std::string answerfeed(const std::string& query) {
    const question none(query, {});
    json rows = json::array();
    for (const auto& line : ledger::latesttrades({.tradesalone = false}, linesofafeed, 0, entriesofafeed).lines)
        rows.push_back(rowof(line));
    return json{{"rows", std::move(rows)}}.dump();
}

std::string answertrades(const std::string& query) {
    const question asked(query, {"player", "shop", "item", "from", "until", "what", "number", "before", "most"});
    constexpr auto never = std::numeric_limits<std::int64_t>::max();
    const auto number = asked.number("number", 1, never, 0);
    json answer = {{"rows", json::array()}};
    if (number != 0) {
        if (const auto one = ledger::trade(static_cast<std::uint64_t>(number))) answer["rows"].push_back(rowof(*one));
        return answer.dump();
    }
    const auto what = asked.text("what");
    if (!what.empty() && what != "trades" && what != "all")
        throw std::invalid_argument("\"what\" must be trades or all, and is \"" + what + "\"");
    ledger::tradefilter filter{.player = asked.player("player"),
                               .shop = asked.player("shop"),
                               .item = asked.item("item"),
                               .from = asked.day("from", 0),
                               .tradesalone = what != "all"};
    if (const auto last = asked.day("until", never); last != never) filter.until = last + 86400;
    const auto page = ledger::latesttrades(filter, static_cast<std::size_t>(asked.number("most", 1, 500, 50)),
                                           static_cast<std::uint64_t>(asked.number("before", 0, never, 0)));
    for (const auto& line : page.lines) answer["rows"].push_back(rowof(line));
    if (page.before != 0) answer["next"] = {{"before", std::to_string(page.before)}};
    return answer.dump();
}

}  // namespace

void offertradeviews() {
    const auto group = said("Trades", "交易");
    json feed = {{"title", said("Now", "实时动态")},
                 {"about", said("What happens in the shops at this moment.", "各商店正在发生的交易和变动。")},
                 {"kind", "feed"},
                 {"group", group},
                 {"refresh", 2},
                 {"columns", columns()},
                 {"actions", json::array({undoaction()})}};
    platform::Shown::offer({"now", feed.dump(), &answerfeed});
    json trades = {
        {"title", said("Trades", "交易记录")},
        {"about", said("Every trade of the ledger, the newest first.", "账本中的全部交易，最新的在前。")},
        {"kind", "table"},
        {"group", group},
        {"columns", columns()},
        {"query",
         {column("player", "player", said("Player", "玩家")), column("shop", "player", said("Shop of", "店主")),
          column("item", "item", said("Item", "物品")), column("from", "day", said("From", "开始日期")),
          column("until", "day", said("Until", "结束日期")), column("number", "number", said("Number", "编号")),
          column("what", "text", said("What", "类型"),
                 {{"default", "trades"},
                  {"options",
                   {{{"value", "trades"}, {"title", said("Trades", "交易")}},
                    {{"value", "all"}, {"title", said("Everything", "全部")}}}}})}},
        {"actions", json::array({undoaction()})}};
    platform::Shown::offer({"trades", trades.dump(), &answertrades});
}

}  // namespace ordomart::views
