// A shop file without a tree: the header goes the way of every shop, which is small; the records, which are nearly all
// of the file, are read where they lie. Whatever is not plainly right is left to those who can say what is wrong with
// it.
#include <simdjson.h>

#include <algorithm>
#include <exception>
#include <type_traits>

#include "platform/files.h"
#include "platform/host.h"
#include "platform/turn.h"
#include "plugin/shopsystem/blockdecoder.h"
#include "plugin/shopsystem/jsonfields.h"
#include "plugin/shopsystem/rowkinds.h"
#include "plugin/shopsystem/shoprecords.h"

namespace shopsystem {

namespace {

namespace dom = simdjson::dom;

struct notplain : std::exception {};

void demand(bool isso) {
    if (!isso) throw notplain();
}

template <class Field>
void take(dom::element value, Field& field) {
    if constexpr (std::is_same_v<Field, std::string>) {
        demand(value.is_string());
        field = std::string_view(value);
    } else if constexpr (std::is_same_v<Field, bool>) {
        demand(value.is_bool());
        field = bool(value);
    } else if constexpr (std::is_same_v<Field, std::vector<std::string>>) {
        // No list shows what has come in, but it must be what it should be.
        demand(value.is_array());
        for (const auto each : dom::array(value)) demand(each.is_string());
    } else {
        demand(value.is_int64() && std::in_range<Field>(std::int64_t(value)));
        field = static_cast<Field>(std::int64_t(value));
    }
}

// As everywhere, the last of equal keys counts.
struct recordreader {
    dom::object from;
    template <class Field>
    void operator()(std::string_view key, Field& field) const {
        for (const auto [name, value] : from)
            if (name == key) take(value, field);
    }
};

void readrecord(dom::object record, const sellshop& shop, globalsellshopitem& row) {
    visitsellfields(row, recordreader{record});
    row.realprice = row.price;
    demand(applydiscount(row, shop.shopdiscount));
}
void readrecord(dom::object record, const recycleshop&, globalrecycleshopitem& row) {
    const recordreader read{record};
    visitrecyclefields(row, read);
    read(sponsoredkey, row.sponsored);
}

template <class Rows>
shopgoods decode(const std::string& xuid, const std::string& text) {
    thread_local dom::parser parser;
    std::remove_reference_t<decltype(Rows::shop(xuid))> shop(xuid);
    const auto goodskey = shop.goods().key;
    dom::element goods;
    bool hasgoods = false;
    json section = json::object();
    for (const auto [name, member] : dom::object(parser.parse(text))) {
        if (name != sectionkey(Rows::type)) continue;
        section = json::object();
        hasgoods = false;
        if (member.is_null()) continue;
        for (const auto [key, value] : dom::object(member)) {
            if (key == goodskey) {
                goods = value;
                hasgoods = true;
            } else {
                section[std::string(key)] = json::parse(std::string(simdjson::minify(value)));
            }
        }
    }
    shop.loadfromjson(section);
    blockbuilder builder;
    if (hasgoods && goods.is_array()) {
        std::int32_t place = 0;
        for (const auto record : dom::array(goods)) {
            typename Rows::row row;
            readrecord(record, shop, row);
            row.index = place++;
            if (row.*Rows::left != 0) builder.add(row);
        }
    }
    auto head = headof(shop);
    // A load in the last second of a ban lifts it, where an object that is there would be banned until the next; and
    // what was lifted so would still hold if the clock went back.
    if (const auto end = shop.banend(); end && head.isbanned)
        head.until = std::min(head.until, *end - 1);
    else if (end)
        head.since = std::max(head.since, *end - 1);
    return builder.finish(std::move(head));
}

}  // namespace

std::optional<shopgoods> decodefile(const std::string& xuid, int kind,
                                    const std::function<bool(const shopgoods&)>& issame) {
    {
        const platform::Turn turn;
        if (globalruntimeshopmanager.cached(xuid, kind) != nullptr) return std::nullopt;
    }
    if (xuid == "0" || hasleftrecord(xuid, kind)) return std::nullopt;
    const auto stamp = filestamp(xuid);  // what is read may be newer, and then is read once more
    const auto text = platform::host().files->read(shopfile(xuid));
    if (!text || text->empty()) return std::nullopt;
    shopgoods read;
    try {
        read = kind == sell ? decode<sellrows>(xuid, *text) : decode<recyclerows>(xuid, *text);
    } catch (const std::exception&) {
        return std::nullopt;
    }
    const bool isasbefore = issame(read);
    const platform::Turn turn;
    const auto revision = globalruntimeshopmanager.readaside(xuid, kind, stamp, isasbefore);
    if (!revision) return std::nullopt;
    auto block = *read.block;
    block.shop.revision = *revision;
    read.block = std::make_shared<const goodsblock>(std::move(block));
    return read;
}

}  // namespace shopsystem
