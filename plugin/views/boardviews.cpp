// What everybody may see: the goods and commissions that every player finds in the lists of all shops, found in the
// same catalogue by the same filters. No private row is in it, no shop that is banned, and nobody's xuid.
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "platform/item.h"
#include "platform/views.h"
#include "plugin/base/config.h"
#include "plugin/base/directories.h"
#include "plugin/base/language.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/rowkinds.h"
#include "plugin/views/viewparts.h"

namespace ordomart::views {

namespace {

using namespace shopsystem;

constexpr std::size_t rowsofapage = 26, longesttext = 200, mostalternatives = 8;
constexpr std::int64_t mostpages = 100'000'000;

struct sortname {
    const char* word;
    sortstep step;
    const char *english, *chinese;
};
constexpr sortname sorts[] = {
    {"", asread, "as they come", "默认"},     {"name", byname, "by name", "按名称"},
    {"tag", bytag, "by tag", "按标签"},       {"left", byleft, "by number", "按数量"},
    {"price", byprice, "by price", "按价格"},
};

// Where a text is looked for.
struct searchplace {
    const char* word;
    std::string shopfilter::*field;
    const char *english, *chinese;
};
constexpr searchplace places[] = {
    {"name", &shopfilter::itemnamefilter, "in names", "名称"},
    {"description", &shopfilter::itemdescfilter, "in descriptions", "描述"},
    {"tag", &shopfilter::itemtagfilter, "in tags", "标签"},
    {"owner", &shopfilter::ownernamefilter, "in owners' names", "店主"},
};

// A filter as the game has it: alternatives between "{||}", a whole text before "$".
std::string filterof(const question& asked, const char* field) {
    auto text = asked.text(field);
    if (text.size() > longesttext)
        throw std::invalid_argument(fmt::format("\"{}\" must not be longer than {} bytes", field, longesttext));
    std::size_t alternatives = 1;
    for (auto at = text.find("{||}"); at != std::string::npos; at = text.find("{||}", at + 1)) ++alternatives;
    if (alternatives > mostalternatives)
        throw std::invalid_argument(fmt::format("\"{}\" has more than {} alternatives", field, mostalternatives));
    return text;
}

template <class Names>
auto named(const Names& names, const std::string& word, const char* field) {
    const auto* const found = std::ranges::find_if(names, [&](const auto& one) { return word == one.word; });
    if (found == std::end(names)) throw std::invalid_argument(fmt::format("\"{}\" cannot be \"{}\"", field, word));
    return found;
}

rowquery queryof(const question& asked, int kind) {
    rowquery query{.issell = kind == sell, .item = asked.item("item"), .publicrows = true};
    query.standing.itemnamefilter = filterof(asked, "name");
    query.standing.itemtagfilter = filterof(asked, "tag");
    query.standing.ownernamefilter = filterof(asked, "owner");
    const auto text = filterof(asked, "text"), in = asked.text("in");
    const auto* const place = in.empty() ? nullptr : named(places, in, "in");
    query.searching = !text.empty();
    if (place != nullptr)
        query.search.*place->field = text;
    else
        for (const auto& [word, field, english, chinese] : places)
            if (field != &shopfilter::ownernamefilter) query.search.*field = text;
    return query;
}

// Of what an owner has written, as a shop that is called by his key.
std::string without(std::string text, const std::string& xuid) {
    for (auto at = text.find(xuid); !xuid.empty() && at != std::string::npos; at = text.find(xuid, at))
        text.replace(at, xuid.size(), "…");
    return text;
}

json itemof(const std::string& itemnbt) {
    const auto what = ledger::variantof(itemnbt);
    json item = itemvalue(what);
    const auto stack = platform::ItemStack::create(what.name, 1, static_cast<std::int16_t>(what.aux));
    if (!stack.isNull())
        item["name"] = {{"en_US", itemlocalname(stack, "en_US")}, {"zh_CN", itemlocalname(stack, "zh_CN")}};
    return item;
}

int listprice(const globalsellshopitem& row) { return row.price; }
int listprice(const globalrecycleshopitem& row) { return row.offer; }

template <class Rows>
json rowof(const rowplace& place) {
    const auto of = place.run->of->at(place.row);
    typename Rows::row row;
    readrow(of, row);
    const auto& shop = of.block.shop;
    const auto told = [&](const std::string& text) { return without(text, shop.xuid); };
    const auto name = told(row.*Rows::name), tag = told(row.*Rows::tag), owner = told(shop.ownername);
    json made = {{"name", name},
                 {"item", itemof(row.itemnbt)},
                 {"price", row.*Rows::price},
                 {"left", row.*Rows::left},
                 {"shop", told(shop.shopname)},
                 {"owner", owner},
                 {"tag", tag},
                 {"description", told(row.*Rows::describe)},
                 {"address", {{"name", name + "$"}, {"tag", tag + "$"}, {"owner", owner + "$"}}}};
    if (listprice(row) != row.*Rows::price) made["before"] = listprice(row);
    return made;
}

template <class Rows>
std::string answer(const std::string& text) {
    const question asked(text, {"text", "in", "name", "tag", "owner", "item", "sort", "page"});
    auto query = queryof(asked, Rows::type);
    const auto step = named(sorts, asked.text("sort"), "sort")->step;
    const auto page = static_cast<std::size_t>(asked.number("page", 1, mostpages, 1));

    auto& all = catalogueof(Rows::type);
    const auto among = all.uptodate(&goeson);
    if (among == nullptr) return json{{"rows", json::array()}, {"count", 0}}.dump();
    const auto found = all.find(among, std::move(query));
    std::vector<std::string> leftout;
    if (!enablesystemshopinglobalshop) leftout.emplace_back(systemshopid);
    const auto shown = shopsystem::without(found->inorder(step), leftout);
    json rows = json::array();
    for (const auto& place : shown.page((page - 1) * rowsofapage, rowsofapage)) rows.push_back(rowof<Rows>(place));
    json made = {{"rows", std::move(rows)}, {"count", shown.size()}};
    if (page * rowsofapage < shown.size()) made["next"] = {{"page", std::to_string(page + 1)}};
    // From behind the end it leads to the last page that there is.
    const auto last = std::max<std::size_t>((shown.size() + rowsofapage - 1) / rowsofapage, 1);
    if (page > 1) made["previous"] = {{"page", std::to_string(std::min(page - 1, last))}};
    return made.dump(-1, ' ', false, json::error_handler_t::replace);
}

template <int kind>
std::string state() {
    const auto among = catalogueof(kind).uptodate(&goeson);
    return among == nullptr ? "" : fmt::format("{}{}", among->number, enablesystemshopinglobalshop ? "+" : "");
}

template <class Names>
json optionsof(const Names& names) {
    json options = json::array();
    for (const auto& one : names) options.push_back({{"value", one.word}, {"title", said(one.english, one.chinese)}});
    return options;
}

template <class Rows>
void offer(const char* name, json title, json about, json price, json left) {
    auto in = json::array({{{"value", ""}, {"title", said("in names, tags and descriptions", "名称、标签和描述")}}});
    const auto others = optionsof(places);
    in.insert(in.end(), others.begin(), others.end());
    const json description = {
        {"title", std::move(title)},
        {"about", std::move(about)},
        {"kind", "table"},
        {"group", said("Board", "公告板")},
        {"columns",
         {column("name", "text", said("Name", "名称")), column("item", "item", said("Item", "物品")),
          column("price", "money", std::move(price)), column("before", "money", said("Before the discount", "原价")),
          column("left", "number", std::move(left)), column("shop", "text", said("Shop", "商店")),
          column("owner", "text", said("Owner", "店主")), column("tag", "text", said("Tag", "标签")),
          column("description", "text", said("Description", "描述")), column("address", "query")}},
        {"query",
         {column("text", "text", said("Search", "搜索")),
          column("in", "text", said("Search in", "搜索范围"), {{"options", std::move(in)}}),
          column("sort", "text", said("Order", "排序"), {{"options", optionsof(sorts)}}),
          column("item", "item", said("Item", "物品")), column("name", "text", said("Name", "名称")),
          column("tag", "text", said("Tag", "标签")), column("owner", "text", said("Owner", "店主"))}}};
    platform::Shown::offer({name, description.dump(), &answer<Rows>, true, &state<Rows::type>});
}

}  // namespace

void offerboardviews() {
    offer<sellrows>("goods", said("Goods", "商品"), said("What can be bought in the shops.", "各商店出售的商品。"),
                    said("Price", "价格"), said("In stock", "库存"));
    offer<recyclerows>("commissions", said("Commissions", "回收委托"),
                       said("What is bought from those who bring it.", "正在收购的物品。"), said("Offer", "收购价"),
                       said("Still wanted", "仍需"));
}

}  // namespace ordomart::views
