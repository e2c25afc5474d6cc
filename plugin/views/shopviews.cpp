// All shops with what stands in them, and how the market itself is. The shops are those of the catalogue, so that no
// file is read that has been seen already.
#include <algorithm>

#include "platform/stores.h"
#include "platform/turn.h"
#include "platform/views.h"
#include "plugin/ledger/ledger.h"
#include "plugin/ledger/queries.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/shopfiles.h"
#include "plugin/views/viewparts.h"

namespace ordomart::views {

namespace {

using shopsystem::catalogueof;

constexpr int sections[] = {shopsystem::sell, shopsystem::recycle};

struct standing {
    int section;
    std::string xuid, name, ownername;
    std::int64_t rows = 0, pieces = 0, worth = 0;
    std::int32_t trades = 0, volume = 0;
    bool isopshop = false, isbanned = false;
};

std::vector<standing> allshops(int section) {
    std::vector<standing> found;
    const auto all = catalogueof(section).uptodate(&goeson);
    if (all == nullptr) return found;
    for (const auto& shelf : all->all)
        for (std::size_t block = 0; block < shelf->shops().size(); ++block) {
            const auto& shop = *shelf->shops()[block];
            const auto& head = shop.shop;
            standing one{section, head.xuid, head.shopname, head.ownername};
            one.rows = static_cast<std::int64_t>(shop.rows.size());
            const auto first = shelf->firstof(block);
            for (auto row = first; row < first + shop.rows.size(); ++row) {
                one.pieces += shelf->left(row);
                one.worth += std::int64_t{shelf->left(row)} * shelf->price(row);
            }
            one.trades = head.counters[0];
            one.volume = head.counters[1];
            one.isopshop = head.isopshop;
            one.isbanned = head.isbanned;
            found.push_back(std::move(one));
        }
    return found;
}

bool contains(const std::string& text, const std::string& part) {
    const auto small = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    const auto equal = [&](char a, char b) { return small(a) == small(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), equal) != text.end();
}

std::string answershops(const std::string& query) {
    const question asked(query, {"name", "section", "state", "first", "most"});
    const auto name = asked.text("name"), section = asked.text("section"), state = asked.text("state");
    if (!section.empty() && section != "sell" && section != "recycle")
        throw std::invalid_argument("\"section\" must be sell or recycle, and is \"" + section + "\"");
    if (!state.empty() && state != "banned" && state != "open")
        throw std::invalid_argument("\"state\" must be open or banned, and is \"" + state + "\"");
    const auto first = static_cast<std::size_t>(asked.number("first", 0, 1000000000, 0));
    const auto most = static_cast<std::size_t>(asked.number("most", 1, 500, 50));

    std::vector<standing> all;
    for (const int each : sections) {
        if (!section.empty() && (section == "sell") != (each == shopsystem::sell)) continue;
        for (auto& shop : allshops(each)) {
            const bool fits = name.empty() || contains(shop.name, name) || contains(shop.ownername, name) ||
                              contains(shop.xuid, name);
            if (fits && (state.empty() || (state == "banned") == shop.isbanned)) all.push_back(std::move(shop));
        }
    }
    std::ranges::stable_sort(all, std::ranges::greater(), &standing::worth);
    json answer = {{"rows", json::array()}};
    for (auto place = first; place < all.size() && place - first < most; ++place) {
        const auto& shop = all[place];
        const bool sells = shop.section == shopsystem::sell;
        answer["rows"].push_back({{"name", shop.name},
                                  {"owner", playervalue(shop.xuid, shop.ownername)},
                                  {"section", sells ? said("selling", "出售") : said("recycling", "回收")},
                                  {"rows", shop.rows},
                                  {"pieces", shop.pieces},
                                  {"worth", shop.worth},
                                  {"trades", shop.trades},
                                  {"volume", shop.volume},
                                  {"banned", shop.isbanned},
                                  {"open", !shop.isbanned},
                                  {"operator", shop.isopshop},
                                  {"xuid", shop.xuid},
                                  {"word", sells ? "sell" : "recycle"}});
    }
    if (first + most < all.size()) answer["next"] = {{"first", std::to_string(first + most)}};
    return answer.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string answermarket(const std::string& query) {
    const question none(query, {});
    json rows = json::array();
    const auto add = [&](const char* name, const char* kind, json title, json value, bool bad = false) {
        json row = {{"name", name}, {"kind", kind}, {"title", std::move(title)}, {"value", std::move(value)}};
        if (bad) row["bad"] = true;
        rows.push_back(std::move(row));
    };
    const auto days = ledger::sumsbyday(ledger::today(), 1);
    const auto& today = days.back();
    add("trades", "number", said("Trades today", "今日交易笔数"), today.trades);
    add("money", "money", said("Money today", "今日成交金额"), today.money);
    add("fees", "money", said("Fees today", "今日手续费"), today.fees);
    for (const int section : sections) {
        const bool sells = section == shopsystem::sell;
        const auto all = allshops(section);
        std::int64_t goods = 0, worth = 0, banned = 0;
        for (const auto& shop : all) {
            goods += shop.rows;
            worth += shop.worth;
            banned += shop.isbanned ? 1 : 0;
        }
        add(sells ? "sellshops" : "recycleshops", "number",
            sells ? said("Selling shops", "出售商店") : said("Recycle shops", "回收商店"), all.size());
        add(sells ? "goods" : "commissions", "number",
            sells ? said("Goods on offer", "在售商品") : said("Open commissions", "进行中的回收委托"), goods);
        add(sells ? "worth" : "wanted", "money",
            sells ? said("Worth of the goods", "在售商品总价") : said("Money for commissions", "回收委托金额"), worth);
        add(sells ? "bannedsell" : "bannedrecycle", "number",
            sells ? said("Banned selling shops", "被封禁的出售商店") : said("Banned recycle shops", "被封禁的回收商店"),
            banned);
    }
    std::string unwritable;
    std::uint64_t entries = 0;
    bool haswritten = false;
    {
        const platform::Turn turn;
        unwritable = platform::Stores::unwritable();
        haswritten = ledger::isopen();
        if (haswritten) entries = ledger::nextnumber() - 1;
    }
    add("entries", "number", said("Entries ever written to the ledger", "账本记录总数"), entries, !haswritten);
    add("stores", "text", said("Saving", "存储"),
        unwritable.empty() ? said("everything is written", "全部已保存") : json(unwritable), !unwritable.empty());
    return json{{"rows", std::move(rows)}}.dump(-1, ' ', false, json::error_handler_t::replace);
}

void offershops() {
    const auto sectionoptions = json::array({{{"value", ""}, {"title", said("all", "全部")}},
                                             {{"value", "sell"}, {"title", said("selling", "出售")}},
                                             {{"value", "recycle"}, {"title", said("recycling", "回收")}}});
    const auto stateoptions = json::array({{{"value", ""}, {"title", said("all", "全部")}},
                                           {{"value", "open"}, {"title", said("open", "营业")}},
                                           {{"value", "banned"}, {"title", said("banned", "封禁")}}});
    const auto ban = [](const char* english, const char* chinese, const char* command, const char* asked,
                        const char* askedchinese, const char* when) {
        return json{{"title", said(english, chinese)},
                    {"command", command},
                    {"confirm", said(asked, askedchinese)},
                    {"when", when}};
    };
    json shops = {
        {"title", said("Shops", "商店")},
        {"about", said("Every shop with its stock, the most valuable first.", "全部商店及其库存，货值最高的在前。")},
        {"kind", "table"},
        {"group", said("Shops", "商店")},
        {"columns",
         {column("name", "text", said("Name", "名称")), column("owner", "player", said("Owner", "店主")),
          column("section", "text", said("Kind", "类型")), column("rows", "number", said("Rows", "条目")),
          column("pieces", "number", said("Pieces", "数量")), column("worth", "money", said("Worth", "货值")),
          column("trades", "number", said("Trades", "交易笔数")), column("volume", "number", said("Volume", "交易量")),
          column("operator", "flag", said("Operator's", "管理员商店")),
          column("banned", "flag", said("Banned", "封禁")), column("open", "flag"), column("xuid", "text"),
          column("word", "text")}},
        {"query",
         {column("name", "text", said("Shop or owner", "商店或店主")),
          column("section", "text", said("Kind", "类型"), {{"options", sectionoptions}}),
          column("state", "text", said("State", "状态"), {{"options", stateoptions}})}},
        {"actions",
         {ban("Ban", "封禁", "ordomart ban {word} {xuid}",
              "Ban this shop of {owner}? Nobody can trade with it until the ban is lifted.",
              "要封禁{owner}的商店吗？封禁期间无法与其交易。", "open"),
          ban("Lift the ban", "解除封禁", "ordomart unban {word} {xuid}", "Lift the ban of this shop of {owner}?",
              "要解除{owner}的商店的封禁吗？", "banned")}}};
    platform::Shown::offer({"shops", shops.dump(), &answershops});
}

double count(int section, bool ofrows) {
    const auto all = allshops(section);
    std::int64_t rows = 0;
    for (const auto& shop : all) rows += shop.rows;
    return static_cast<double>(ofrows ? rows : static_cast<std::int64_t>(all.size()));
}

}  // namespace

void offershopviews() {
    json market = {{"title", said("The market", "市场概况")},
                   {"about", said("What there is at this moment.", "当前状况。")},
                   {"kind", "figures"},
                   {"group", said("Figures", "统计")},
                   {"refresh", 10}};
    platform::Shown::offer({"market", market.dump(), &answermarket});
    offershops();
    for (const int section : sections) {
        const std::map<std::string, std::string> kind = {{"kind", shopsystem::sectionkey(section)}};
        platform::Shown::gauge({"ordomart_shops", "Shops there are.", kind}, [=] { return count(section, false); });
        platform::Shown::gauge({"ordomart_rows", "Goods or commissions with something left.", kind},
                               [=] { return count(section, true); });
    }
}

}  // namespace ordomart::views
