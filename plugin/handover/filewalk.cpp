#include "plugin/handover/filewalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "platform/foreignjson.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"

namespace handover {

using namespace shopsystem;

const filewalk::rule filewalk::rules[] = {
    {line::market, part::shops, &filewalk::takemarket},
    {line::shop, part::shops, &filewalk::takeshop},
    {line::good, part::shops, &filewalk::takegood},
    {line::discount, part::shops, &filewalk::takediscount},
    {line::commission, part::shops, &filewalk::takecommission},
    {line::opening, part::shops, &filewalk::takeopening},
    {line::item, part::ledger, &filewalk::takeitem},
    {line::entry, part::ledger, &filewalk::takeentry},
    {line::day, part::days, &filewalk::takeday},
    {line::end, part::end, &filewalk::takeend},
};

namespace {

const char* goodskey(shoptype section) { return section == sell ? sellshop().goods().key : recycleshop().goods().key; }

std::string textin(const json& from, const char* key) {
    std::string text;
    if (!from.is_object() || !from.contains(key)) throw fielderror(key, "is missing");
    takefield(key, from.at(key), text);
    return text;
}

}  // namespace

json takeout(json& object, const char* key) {
    json value;
    if (const auto found = object.find(key); found != object.end()) {
        value = std::move(*found);
        object.erase(found);
    }
    return value;
}

std::string moneyhere() { return ordomart::moneymode == 1 ? "LLMoney" : "scoreboard:" + ordomart::scoremoneyname; }

bool filewalk::step() {
    std::string why;
    try {
        const auto text = lines_.next();
        if (!text && at_ == part::end) return false;
        if (!text) throw std::runtime_error("the file ends here, and its last line is missing");
        take(*text);
        return true;
    } catch (const fielderror& e) {
        why = e.place.empty() ? e.fault : fmt::format("key \"{}\": {}", e.place, e.fault);
    } catch (const std::exception& e) {
        why = e.what();
    }
    const auto at = faultat_ != 0 ? faultat_ : std::max<std::uint64_t>(number(), 1);
    throw std::runtime_error(fmt::format("{}, line {}: {}", name_, at, why));
}

void filewalk::take(const std::string& text) {
    json whole;
    try {
        whole = platform::readforeignjson(text);
    } catch (const platform::ForeignJsonError& e) {
        throw std::runtime_error(fmt::format("the line {}", e.what()));
    }
    if (!whole.is_object() || whole.size() != 1) throw std::runtime_error("a line is an object with one member");
    const auto member = whole.begin();
    const auto* const found =
        std::ranges::find(rules, member.key(), [](const rule& row) { return std::string_view(row.kind); });
    if (found == std::end(rules)) throw std::runtime_error(fmt::format("\"{}\" is no kind of line", member.key()));
    const bool isbehind = found->kind == std::string_view(line::market) ? at_ != part::begin : at_ == part::begin;
    if (isbehind || at_ > found->to || at_ == part::end)
        throw std::runtime_error(fmt::format("\"{}\" cannot stand here", found->kind));
    if ((goodsleft_ > 0 || discountsleft_ > 0) && found->take != &filewalk::takegood &&
        found->take != &filewalk::takediscount && found->take != &filewalk::takecommission)
        throw std::runtime_error(fmt::format("the shop {} lacks {} goods or commissions and {} discounts", shop_.key(),
                                             goodsleft_, discountsleft_));
    at_ = found->to;
    namingplace(found->kind, [&] { (this->*found->take)(member.value()); });
    if (isshopdue_ && goodsleft_ == 0 && discountsleft_ == 0) shopisread();
    if (at_ != part::end && found->take != &filewalk::takemarket) ++counts_[found->kind];
}

void filewalk::takemarket(const json& value) {
    if (textin(value, "format") != formatname) throw fielderror("format", "is another");
    int version = 0;
    if (value.contains("version")) takefield("version", value.at("version"), version);
    if (version != formatversion)
        throw fielderror("version", fmt::format("{} is not {}, which this market reads", version, formatversion));
    (void)textin(value, "money");
    to_.market(value);
}

void filewalk::takeshop(const json& value) {
    mayopen_ = false;
    shop_ = readshop(value);
    section_ = shop_.about;
    const auto begin = [&](const char* key, std::int64_t lines) {
        if (lines < -1) throw fielderror(key, "is below -1");
        if (shop_.about.contains(key)) throw fielderror("about", fmt::format("\"{}\" has lines of its own", key));
        section_[key] = lines < 0 ? json() : json::array();
        return std::max<std::int64_t>(lines, 0);
    };
    goodsleft_ = begin(goodskey(shop_.section), shop_.goods);
    if (shop_.section == sell) discountsleft_ = begin(discountskey, shop_.discounts);
    if (shop_.section == recycle && shop_.discounts != -1)
        throw fielderror("discounts", "must be -1, since commissions have none");
    isshopdue_ = true;
    shopat_ = number();
}

void filewalk::takerecord(const char* key, std::int64_t& left, const json& record) {
    if (left == 0) throw fielderror({}, fmt::format("is more than the shop {} has", shop_.key()));
    if (key == discountskey && goodsleft_ > 0) throw fielderror({}, "cannot stand before the shop's goods");
    --left;
    section_[key].push_back(record);
}

void filewalk::takegood(const json& value) {
    if (shop_.section != sell) throw fielderror({}, "cannot stand in a recycle shop");
    to_.good(value);
    takerecord(goodskey(sell), goodsleft_, value);
}
void filewalk::takediscount(const json& value) {
    to_.discount(value);
    takerecord(discountskey, discountsleft_, value);
}

void filewalk::takecommission(const json& value) {
    if (shop_.section != recycle) throw fielderror({}, "cannot stand in a selling shop");
    std::int64_t deposit = 0;
    if (!value.is_object() || !value.contains("record") || !value.contains("deposit") || value.size() != 2)
        throw fielderror({}, "must be a record and its deposit");
    takefield("deposit", value.at("deposit"), deposit);
    const auto& record = value.at("record");
    namingplace("record", [&] {
        to_.commission(record);
        recycleshopitem row;
        fromjson(record, row);
        if (const auto is = ledger::stateof(row).deposit(); is != deposit)
            throw fielderror("deposit",
                             fmt::format("{} is written, and what is wanted at its price comes to {}", deposit, is));
    });
    takerecord(goodskey(recycle), goodsleft_, record);
}

void filewalk::shopisread() {
    isshopdue_ = false;
    faultat_ = shopat_;
    namingplace(line::shop, [&] { to_.shop(shop_, section_); });
    faultat_ = 0;
    section_ = nullptr;
    mayopen_ = true;
}

void filewalk::takeopening(const json& value) {
    if (!mayopen_) throw fielderror({}, "cannot stand here: it follows its shop, once");
    mayopen_ = false;
    to_.opening(shop_, readopening(value));
}

void filewalk::takeitem(const json& value) {
    const auto text = textin(value, "nbt");
    if (textin(value, "tag") != hexof(ledger::hashof(text))) throw fielderror("tag", "is not that of the text");
    to_.item(text);
}

void filewalk::takeentry(const json& value) { to_.entry(readentry(value)); }
void filewalk::takeday(const json& value) { to_.sum(readsum(value)); }

void filewalk::takeend(const json& value) {
    if (!value.is_object() || !value.contains("lines")) throw fielderror("lines", "is missing");
    if (const json is = counts_; value.at("lines") != is)
        throw fielderror("lines",
                         fmt::format("{} are announced, and there are {}", value.at("lines").dump(), is.dump()));
    // Whoever changes a file on purpose leaves the sum out.
    if (value.contains("sum") && textin(value, "sum") != hexof(lines_.sumbefore()))
        throw fielderror("sum", "does not fit: something above has been changed");
}

}  // namespace handover
