// What trades come to: flows by day, the goods and shops with the most money, and what an item was sold for.
#include <fmt/format.h>

#include <stdexcept>

#include "platform/views.h"
#include "plugin/ledger/queries.h"
#include "plugin/views/viewparts.h"

namespace ordomart::views {

namespace {

constexpr std::int64_t mostdays = 400;
constexpr std::size_t mostlines = 100;

json daysfield(const char* usual) {
    json options = json::array();
    for (const char* const days : {"1", "7", "30", "90", "400"})
        options.push_back({{"value", days}, {"title", said(days, days)}});
    return column("days", "number", said("Days", "天数"), {{"default", usual}, {"options", std::move(options)}});
}

int daysof(const question& asked, std::int64_t usual) {
    return static_cast<int>(asked.number("days", 1, mostdays, usual));
}

std::int64_t secondsof(std::int64_t day) { return day * 86400; }

std::string answerflows(const std::string& query) {
    const question asked(query, {"days"});
    json rows = json::array();
    for (const auto& line : ledger::sumsbyday(ledger::today(), daysof(asked, 30)))
        rows.push_back({{"day", secondsof(line.day)},
                        {"money", line.money},
                        {"fees", line.fees},
                        {"trades", line.trades},
                        {"pieces", line.pieces}});
    return json{{"rows", std::move(rows)}}.dump();
}

json variantcolumns() {
    return {column("item", "item", said("Item", "物品")),
            column("money", "money", said("Money", "金额")),
            column("trades", "number", said("Trades", "交易笔数")),
            column("pieces", "number", said("Pieces", "数量")),
            column("median", "money", said("Middle price", "中位价")),
            column("lowest", "money", said("Lowest", "最低价")),
            column("highest", "money", said("Highest", "最高价"))};
}

std::string answergoods(const std::string& query) {
    const question asked(query, {"days"});
    json rows = json::array();
    for (const auto& line : ledger::topgoods(ledger::today(), daysof(asked, 7), mostlines))
        rows.push_back({{"item", itemvalue(line.what)},
                        {"money", line.money},
                        {"trades", line.trades},
                        {"pieces", line.pieces},
                        {"median", line.median},
                        {"lowest", line.lowest},
                        {"highest", line.highest}});
    return json{{"rows", std::move(rows)}}.dump();
}

json sectionname(bool sells) { return sells ? said("selling", "出售") : said("recycling", "回收"); }

std::string answershopsums(const std::string& query) {
    const question asked(query, {"days"});
    json rows = json::array();
    for (const auto& line : ledger::topshops(ledger::today(), daysof(asked, 7), mostlines))
        rows.push_back({{"owner", playervalue(line.xuid, line.name)},
                        {"section", sectionname(line.sells)},
                        {"money", line.money},
                        {"fees", line.fees},
                        {"trades", line.trades},
                        {"pieces", line.pieces}});
    return json{{"rows", std::move(rows)}}.dump();
}

// Of one variant: the one that is asked for, or that with the most trades.
std::string answerprices(const std::string& query) {
    const question asked(query, {"item", "variant", "days"});
    const auto item = asked.item("item"), variant = asked.text("variant");
    if (item.empty()) throw std::invalid_argument("\"item\" must name an item");
    const int days = daysof(asked, 30);
    const auto last = ledger::today();
    json answer = {{"rows", json::array()}};
    std::string traded;
    bool isfound = false;
    const auto variants = ledger::pricesbyday(item, last, days);
    for (const auto& line : variants) {
        const auto text = line.what.text();
        traded += (traded.empty() ? "" : ", ") + text;
        if (isfound || (!variant.empty() && variant != text)) continue;
        isfound = true;
        auto day = last - days + 1;
        for (const auto& sum : line.days) {
            json row = {
                {"day", secondsof(day++)}, {"trades", sum.trades}, {"pieces", sum.pieces}, {"money", sum.money}};
            if (!sum.at.empty()) {
                row["median"] = sum.at.median();
                row["lowest"] = sum.at.lowest();
                row["highest"] = sum.at.highest();
            }
            answer["rows"].push_back(std::move(row));
        }
    }
    if (variants.size() > 1)
        answer["note"] = {{"en_US", fmt::format("Traded variants, the usual one first: {}", traded)},
                          {"zh_CN", fmt::format("有成交的品种（常见的在前）：{}", traded)}};
    return answer.dump();
}

void offer(const char* name, json description, std::string (*answer)(const std::string&), bool open = false) {
    description["group"] = said("Figures", "统计");
    platform::Shown::offer({name, description.dump(), answer, open});
}

}  // namespace

void offersumviews() {
    const auto day = column("day", "day", said("Day", "日期"));
    offer("flows",
          {{"title", said("Money and trades by day", "每日流水")},
           {"about", said("What changed hands on each day (UTC).", "每天（UTC）的成交情况。")},
           {"kind", "series"},
           {"columns",
            {day, column("money", "money", said("Money", "金额"), {{"draw", "line"}}),
             column("fees", "money", said("Fees", "手续费"), {{"draw", "line"}}),
             column("trades", "number", said("Trades", "交易笔数"), {{"draw", "bar"}}),
             column("pieces", "number", said("Pieces", "数量"))}},
           {"query", json::array({daysfield("30")})}},
          &answerflows);
    offer("prices",
          {{"title", said("Prices of an item", "物品价格")},
           {"about", said("What it was really sold for. The middle price is not moved by one absurd trade.",
                          "实际成交价。中位价不会因个别离谱的交易而改变。")},
           {"kind", "series"},
           {"columns",
            {day, column("median", "money", said("Middle price", "中位价"), {{"draw", "line"}}),
             column("lowest", "money", said("Lowest", "最低价"), {{"draw", "line"}}),
             column("highest", "money", said("Highest", "最高价"), {{"draw", "line"}}),
             column("pieces", "number", said("Pieces", "数量"), {{"draw", "bar"}}),
             column("trades", "number", said("Trades", "交易笔数")), column("money", "money", said("Money", "金额"))}},
           {"query",
            {column("item", "item", said("Item", "物品"), {{"required", true}}),
             column("variant", "text", said("Variant", "品种")), daysfield("30")}}},
          &answerprices, true);
    offer("top-goods",
          {{"title", said("Top goods", "热门商品")},
           {"about", said("By the money that was paid for them.", "按成交金额排列。")},
           {"kind", "table"},
           {"columns", variantcolumns()},
           {"query", json::array({daysfield("7")})}},
          &answergoods);
    offer(
        "top-shops",
        {{"title", said("Top shops", "热门商店")},
         {"about", said("By the money that changed hands in them.", "按成交金额排列。")},
         {"kind", "table"},
         {"columns",
          {column("owner", "player", said("Owner", "店主")), column("section", "text", said("Kind", "类型")),
           column("money", "money", said("Money", "金额")), column("fees", "money", said("Fees", "手续费")),
           column("trades", "number", said("Trades", "交易笔数")), column("pieces", "number", said("Pieces", "数量"))}},
         {"query", json::array({daysfield("7")})}},
        &answershopsums);
}

}  // namespace ordomart::views
