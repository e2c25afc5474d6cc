// Tables of the records: "ledger" by number; "ledger.tags" by hash; "ledger.undone" by the number of what was undone;
// "ledger.openings" by shop and section; "ledger.takenover" by the first number of what came from another market.
#include "plugin/ledger/ledger.h"

#include <fmt/format.h>

#include <atomic>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "platform/binarystream.h"
#include "platform/clock.h"
#include "platform/host.h"
#include "platform/records.h"
#include "plugin/base/counts.h"
#include "plugin/base/extras.h"
#include "plugin/base/guards.h"
#include "plugin/ledger/away.h"
#include "plugin/ledger/days.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/shopfiles.h"

namespace ledger {

using ordomart::logger;
using platform::host;
using platform::Records;

namespace {

constexpr const char *table = "ledger", *tagtable = "ledger.tags", *undonetable = "ledger.undone",
                     *openingtable = "ledger.openings", *takenovertable = "ledger.takenover";
constexpr std::size_t mostknownvariants = 100000, thinnedatatime = 200, mosttakenover = 10000;
constexpr int secondsofrest = 60;  // with nothing to thin

struct {
    Records* records = nullptr;  // those that it was started with
    std::uint64_t next = 1;
    std::unordered_set<std::string> opened;
    std::unordered_map<std::uint64_t, variant> variants;  // of tags that are in their table
    std::map<std::uint64_t, std::uint64_t> takenover;     // from one number up to another
    int rest = 0;
} now;

std::atomic<int> thinningholders = 0;

std::string hexof(std::uint64_t tag) { return fmt::format("{:016x}", tag); }
std::string shopkey(const std::string& xuid, int section) { return xuid + "." + shopsystem::sectionkey(section); }

std::uint64_t keeptag(const std::string& text) {
    const auto tag = hashof(text);
    if (now.variants.contains(tag)) return tag;
    if (now.variants.size() > mostknownvariants) now.variants.clear();
    now.variants.emplace(tag, variantof(text));
    if (!now.records->get(tagtable, hexof(tag))) now.records->put(tagtable, hexof(tag), [text] { return text; });
    return tag;
}

void putbooks(const std::string& key, const shopbooks& books) {
    now.records->put(openingtable, key, [bytes = encode(books)] { return bytes; });
}

// A shop that the ledger meets for the first time begins as it was before the entry.
void openshop(const shopsystem::baseshop& shop, const entry& first) {
    const auto key = shopkey(shop.xuid, shop.kind());
    if (!now.opened.insert(key).second || now.records->get(openingtable, key)) return;
    auto books = booksof(shop);
    books.takeback(first);
    putbooks(key, books);
}

entry entryof(const shopsystem::baseshop& shop, const happening& of) {
    entry made;
    made.time = platform::unixseconds();
    made.what = of.what;
    made.shop = shop.xuid;
    made.actor = of.actor;
    made.byoperator = of.byoperator;
    made.tag = keeptag(of.itemnbt);
    made.pieces = of.pieces;
    made.price = of.price;
    made.paid = of.paid;
    made.fee = of.fee;
    made.revision = shop.revision;
    made.before = of.before;
    made.after = of.after;
    if (const auto* sells = dynamic_cast<const shopsystem::sellshop*>(&shop)) {
        made.isopshop = sells->isopshop;
        made.count = sells->sellcount;
        made.volume = sells->salesvolume;
    } else if (const auto* recycles = dynamic_cast<const shopsystem::recycleshop*>(&shop)) {
        made.isopshop = recycles->isopshop;
        made.count = recycles->recycleamount;
        made.volume = recycles->recyclecost;
    }
    std::map<std::uint64_t, std::int64_t> piles;
    for (const auto& [text, pieces] : of.piles) piles[keeptag(text)] += pieces;
    for (const auto& [tag, pieces] : piles) made.piles.push_back({tag, pieces});
    if (of.undoes != nullptr) made.undoes = of.undoes->number;
    made.undoneby = of.undoneby;
    return made;
}

void count(const entry& made) {
    using ordomart::counts;
    if (made.fee > 0 && !isundo(made.what)) counts.fees.add(static_cast<double>(made.fee));
    if (!istrade(made.what) && !isundo(made.what)) return;
    const auto& of = isundo(made.what) ? counts.undone : made.what == kind::purchase ? counts.purchases : counts.sales;
    of.trades.add();
    of.pieces.add(static_cast<double>(made.pieces));
    of.money.add(static_cast<double>(made.paid < 0 ? -made.paid : made.paid));
}

std::optional<entry> read(const Records::Row& row) {
    try {
        return decode(numberof(row.key), row.bytes);
    } catch (const platform::ReadError& e) {
        logger.error("Entry {} of the ledger cannot be read: {}", numberof(row.key), e.what());
        return std::nullopt;
    }
}

entries readrows(const Records::Range& range, std::size_t most, bool backwards) {
    entries found;
    const auto rows = now.records->rows(table, range, most, backwards);
    for (const auto& row : rows)
        if (auto one = read(row)) found.all.push_back(*std::move(one));
    if (rows.size() == most) found.next = numberof(rows.back().key) + (backwards ? 0 : 1);
    return found;
}

}  // namespace

void start() {
    now = {};
    forgetdays();
    Records* const records = host().records;
    if (records == nullptr) return;
    const auto last = records->rows(table, {}, 1, true);
    now.next = last.empty() ? 1 : numberof(last.front().key) + 1;
    for (const auto& [first, end] : records->rows(takenovertable, {}, mosttakenover))
        now.takenover.emplace(numberof(first), numberof(end));
    now.records = records;
}

bool isopen() { return now.records != nullptr && now.records == host().records; }

std::uint64_t write(const shopsystem::baseshop& shop, const happening& what) {
    if (!isopen()) return 0;
    std::uint64_t number = 0;
    ordomart::envelope([&] {
        auto made = entryof(shop, what);
        made.number = now.next;
        openshop(shop, made);
        now.records->put(table, keyof(made.number), [bytes = encode(made)] { return bytes; });
        number = now.next++;
        count(made);
        if (istrade(made.what)) {
            if (made.pieces > 0) countday(made, goodsin(made), false);
            noteaway(made, what.title);
        }
        if (what.undoes == nullptr) return;
        if (what.undoes->pieces > 0) countday(*what.undoes, goodsin(*what.undoes), true);
        now.records->put(undonetable, keyof(what.undoes->number), [key = keyof(number)] { return key; });
    });
    return number;
}

std::optional<entry> find(std::uint64_t number) {
    if (!isopen()) return std::nullopt;
    const auto bytes = now.records->get(table, keyof(number));
    return bytes ? read({keyof(number), *bytes}) : std::nullopt;
}

entries readfrom(std::uint64_t number, std::size_t most) {
    return isopen() ? readrows({keyof(number)}, most, false) : entries();
}
entries readbefore(std::uint64_t number, std::size_t most) {
    return isopen() && number > 0 ? readrows({"", keyof(number)}, most, true) : entries();
}
std::uint64_t nextnumber() { return now.next; }

std::optional<std::uint64_t> undoneby(std::uint64_t number) {
    const auto by = isopen() ? now.records->get(undonetable, keyof(number)) : std::nullopt;
    return by ? std::optional(numberof(*by)) : std::nullopt;
}

std::string textof(std::uint64_t tag) {
    return isopen() ? now.records->get(tagtable, hexof(tag)).value_or("") : std::string();
}

variant variantof(std::uint64_t tag) {
    if (const auto known = now.variants.find(tag); known != now.variants.end()) return known->second;
    const auto text = textof(tag);
    if (text.empty()) return {};
    if (now.variants.size() > mostknownvariants) now.variants.clear();
    return now.variants.emplace(tag, variantof(text)).first->second;
}

std::vector<std::pair<variant, std::int64_t>> goodsin(const entry& trade) {
    if (trade.piles.empty()) return {{variantof(trade.tag), trade.pieces}};
    std::map<variant, std::int64_t> all;
    for (const auto& [tag, pieces] : trade.piles) all[variantof(tag)] += pieces;
    return {all.begin(), all.end()};
}

std::vector<std::pair<std::string, shopbooks>> openings(const std::string& from, std::size_t most) {
    std::vector<std::pair<std::string, shopbooks>> found;
    if (!isopen()) return found;
    for (const auto& [key, bytes] : now.records->rows(openingtable, {from}, most)) {
        try {
            found.emplace_back(key, decodebooks(bytes));
        } catch (const platform::ReadError& e) {
            logger.error("The opening balance of {} cannot be read: {}", key, e.what());
            found.emplace_back(key, shopbooks());
        }
    }
    return found;
}

std::optional<shopbooks> openingof(const std::string& xuid, int section) {
    const auto key = shopkey(xuid, section);
    auto found = openings(key, 1);
    return found.empty() || found.front().first != key ? std::nullopt : std::optional(std::move(found.front().second));
}

void openanew(const shopsystem::baseshop& shop) {
    if (!isopen()) return;
    auto books = booksof(shop);
    books.number = now.next;
    putbooks(shopkey(shop.xuid, shop.kind()), books);
    now.opened.insert(shopkey(shop.xuid, shop.kind()));
}

thinningheld::thinningheld() { ++thinningholders; }
thinningheld::~thinningheld() { --thinningholders; }

void takein(const entry& one) {
    const auto key = keyof(one.number);
    now.records->put(table, key, [bytes = encode(one)] { return bytes; });
    if (one.undoes != 0) now.records->put(undonetable, keyof(one.undoes), [key] { return key; });
}

void takein(const std::string& tagtext) { keeptag(tagtext); }

void takein(const std::string& xuid, int section, const shopbooks& opening) {
    putbooks(shopkey(xuid, section), opening);
    now.opened.insert(shopkey(xuid, section));
}

void notetakenover(std::uint64_t first, std::uint64_t end) {
    now.records->put(takenovertable, keyof(first), [key = keyof(end)] { return key; });
    now.takenover.emplace(first, end);
}

std::uint64_t takenoverwith(std::uint64_t number) {
    auto behind = now.takenover.upper_bound(number);
    return behind != now.takenover.begin() && (--behind)->second > number ? behind->first : 0;
}

void thin() {
    if (!isopen() || thinningholders > 0 || now.rest-- > 0) return;
    const auto before = platform::unixseconds() - ordomart::ledgerdays * 86400;
    std::map<std::string, std::optional<shopbooks>> carried;
    std::size_t gone = 0;
    for (const auto& row : now.records->rows(table, {"", keyof(now.next - 1)}, thinnedatatime)) {
        const auto old = read(row);
        if (old && old->time >= before) break;
        now.records->erase(table, row.key);
        ++gone;
        if (!old) continue;
        now.records->erase(undonetable, row.key);
        const auto key = shopkey(old->shop, old->section());
        auto place = carried.find(key);
        if (place == carried.end()) {
            const auto bytes = now.records->get(openingtable, key);
            place = carried.emplace(key, bytes ? std::optional(decodebooks(*bytes)) : std::nullopt).first;
        }
        std::vector<difference> told;  // by each audit since
        if (place->second && old->number >= place->second->number) place->second->apply(*old, told);
    }
    for (const auto& [key, books] : carried)
        if (books) putbooks(key, *books);
    const bool moredays = thindays(dayof(before), thinnedatatime);
    now.rest = gone == thinnedatatime || moredays ? 0 : secondsofrest;
}

}  // namespace ledger
