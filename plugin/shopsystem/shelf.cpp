#include "plugin/shopsystem/shelf.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <unordered_map>
#include <utility>

#include "plugin/shopsystem/textgrams.h"

namespace shopsystem {

namespace {

// Texts are joined while they are of so many rows, for which they have one table of what they cannot hold, and left
// alone from so many on until one of their shops changes.
constexpr std::size_t mostjoined = textgrams::rowsoftable, rowsleftalone = mostjoined / 2;

// Byte i of a file's name; -1 behind its end.
int byteat(std::string_view key, std::size_t i) {
    constexpr std::string_view suffix = ".json";
    if (i >= key.size() + suffix.size()) return -1;
    return static_cast<unsigned char>(i < key.size() ? key[i] : suffix[i - key.size()]);
}

template <class Column>
void copyrows(Column& into, const Column& from, std::size_t first, std::size_t count) {
    const auto start = from.begin() + static_cast<std::ptrdiff_t>(first);
    into.insert(into.end(), start, start + static_cast<std::ptrdiff_t>(count));
}

// Goes through the shops: `kept` is given runs of those that stood side by side before, the first and how many, and
// `fresh` each other one.
template <class Kept, class Fresh>
void inruns(const std::vector<shelf::shop>& shops, const Kept& kept, const Fresh& fresh) {
    for (std::size_t number = 0; number < shops.size();) {
        std::size_t end = number;
        while (end < shops.size() && shops[end].stood >= 0 &&
               shops[end].stood == shops[number].stood + static_cast<std::ptrdiff_t>(end - number))
            ++end;
        if (end > number)
            kept(number, end - number);
        else
            fresh(end++);
        number = end;
    }
}

}  // namespace

bool infileorder(std::string_view leftkey, std::string_view rightkey) {
    const auto common = std::min(leftkey.size(), rightkey.size());
    if (const auto order = leftkey.substr(0, common).compare(rightkey.substr(0, common)); order != 0) return order < 0;
    // A key that begins another comes behind it where the other goes on with something below the dot of ".json".
    for (auto i = common;; ++i) {
        const int left = byteat(leftkey, i), right = byteat(rightkey, i);
        if (left != right) return left < right;
        if (left < 0) return false;
    }
}

shelf::shelf(const std::vector<shop>& shops, const shelf* before) {
    std::size_t rowcount = 0;
    for (const auto& each : shops) rowcount += each.rows;
    all_.reserve(shops.size());
    firsts_.reserve(shops.size() + 1);
    holds_.reserve(shops.size());
    blockof_.reserve(rowcount);
    shown_.reserve(rowcount);
    lefts_.reserve(rowcount);
    prices_.reserve(rowcount);
    for (std::size_t number = 0; number < shops.size(); ++number) {
        const auto& [goods, stood, count] = shops[number];
        all_.push_back(goods.block);
        firsts_.push_back(static_cast<rowno>(blockof_.size()));
        blockof_.insert(blockof_.end(), count, static_cast<std::uint16_t>(number));
        holds_.push_back(stood >= 0 ? before->holds_[static_cast<std::size_t>(stood)]
                                    : bounds{goods.block->shop.since, goods.block->shop.until});
        since_ = std::max(since_, holds_.back().since);
        until_ = std::min(until_, holds_.back().until);
    }
    firsts_.push_back(static_cast<rowno>(blockof_.size()));
    inruns(
        shops,
        [&](std::size_t number, std::size_t count) {
            const auto first = before->firsts_[static_cast<std::size_t>(shops[number].stood)];
            const auto length = firsts_[number + count] - firsts_[number];
            copyrows(shown_, before->shown_, first, length);
            copyrows(lefts_, before->lefts_, first, length);
            copyrows(prices_, before->prices_, first, length);
        },
        [&](std::size_t number) {
            const auto& block = *shops[number].goods.block;
            const auto& columns = *shops[number].goods.columns;
            for (const auto& row : block.rows)
                shown_.push_back(!block.shop.isbanned && (row.flags & goodsblock::isprivate) == 0 ? 1 : 0);
            copyrows(lefts_, columns.lefts, 0, block.rows.size());
            copyrows(prices_, columns.prices, 0, block.rows.size());
        });
    jointexts(shops);
    maketags(shops, before);
    if (before != nullptr) takeover(shops, *before);
}

void shelf::jointexts(const std::vector<shop>& shops) {
    textsof_.resize(shops.size());
    std::vector<rowtexts::stretch> open;
    std::size_t openrows = 0, row = 0;
    const auto add = [&](std::shared_ptr<const rowtexts> piece) {
        textfirsts_.push_back(static_cast<rowno>(row));
        row += piece->rows();
        texts_.push_back(std::move(piece));
    };
    const auto join = [&] {
        if (open.empty()) return;
        add(rowtexts::joined(open));
        open.clear();
        openrows = 0;
    };
    for (std::size_t number = 0; number < shops.size();) {
        // As many shops as have their texts in one piece, and one behind the other there.
        const auto& texts = shops[number].goods.texts;
        const auto first = shops[number].goods.firsttext;
        std::size_t end = number, count = 0;
        for (; end < shops.size() && shops[end].goods.texts == texts && shops[end].goods.firsttext == first + count;
             ++end)
            count += shops[end].rows;
        const bool iswhole = count == texts->rows() && count >= rowsleftalone;
        if (iswhole) join();
        for (; number < end; ++number) {
            const auto& each = shops[number];
            if (!iswhole && openrows + each.rows > mostjoined) join();
            textsof_[number] = static_cast<std::uint16_t>(texts_.size());
            if (iswhole) continue;
            open.push_back({each.goods.texts.get(), each.goods.firsttext, each.rows});
            openrows += each.rows;
        }
        if (iswhole) add(texts);
    }
    join();
    texts_.shrink_to_fit();
    textfirsts_.shrink_to_fit();
}

// Tags are few beside rows: they are sorted, and rows know their ranks. Ranks change only where a tag came or went.
void shelf::maketags(const std::vector<shop>& shops, const shelf* before) {
    static const auto none = std::make_shared<const std::vector<taghandle>>();
    tags_ = before == nullptr ? none : before->tags_;
    const auto former = static_cast<std::uint32_t>(tags_->size());
    std::unordered_map<const goodstag*, std::uint32_t> added;
    const auto rankof = [&](const goodstag& tag) {
        const auto found = findtag(tag.text);
        if (found < former) return found;
        return added.emplace(&tag, former + static_cast<std::uint32_t>(added.size())).first->second;
    };
    ranks_.reserve(size());
    std::vector<std::uint32_t> ranksofblock;
    inruns(
        shops,
        [&](std::size_t number, std::size_t count) {
            const auto first = before->firsts_[static_cast<std::size_t>(shops[number].stood)];
            copyrows(ranks_, before->ranks_, first, firsts_[number + count] - firsts_[number]);
        },
        [&](std::size_t number) {
            const auto& columns = *shops[number].goods.columns;
            ranksofblock.clear();
            for (const auto& tag : columns.tags) ranksofblock.push_back(rankof(*tag));
            for (const auto tag : columns.tagof) ranks_.push_back(ranksofblock[tag]);
        });
    std::vector<std::uint8_t> isborne(former + added.size());
    for (const auto rank : ranks_) isborne[rank] = 1;
    if (added.empty() && std::ranges::find(isborne, 0) == isborne.end()) return;

    std::vector<std::pair<const goodstag*, std::uint32_t>> now;
    for (std::uint32_t rank = 0; rank < former; ++rank)
        if (isborne[rank] != 0) now.emplace_back((*tags_)[rank].get(), rank);
    now.insert(now.end(), added.begin(), added.end());
    std::ranges::sort(now, [](const auto& a, const auto& b) { return a.first->text < b.first->text; });
    std::vector<std::uint32_t> moved(isborne.size());
    std::vector<taghandle> tags;
    tags.reserve(now.size());
    for (const auto& [tag, rank] : now) {
        moved[rank] = static_cast<std::uint32_t>(tags.size());
        tags.push_back(rank < former ? (*tags_)[rank] : interntag(tag->text));
    }
    for (auto& rank : ranks_) rank = moved[rank];
    tags_ = std::make_shared<const std::vector<taghandle>>(std::move(tags));
}

std::uint32_t shelf::findtag(std::string_view text) const {
    const auto found =
        std::ranges::lower_bound(*tags_, text, {}, [](const auto& tag) { return std::string_view(tag->text); });
    const bool isthere = found != tags_->end() && (*found)->text == text;
    return static_cast<std::uint32_t>((isthere ? found : tags_->end()) - tags_->begin());
}

std::size_t shelf::behind(std::string_view xuid) const {
    const auto found = std::ranges::lower_bound(all_, xuid, infileorder,
                                                [](const auto& block) -> std::string_view { return block->shop.xuid; });
    return static_cast<std::size_t>(found - all_.begin());
}

std::ptrdiff_t shelf::find(std::string_view xuid) const {
    const auto found = behind(xuid);
    return found == all_.size() || all_[found]->shop.xuid != xuid ? -1 : static_cast<std::ptrdiff_t>(found);
}

bool shelf::isbefore(sortstep step, rowno a, rowno b) const {
    switch (step) {
        case byname:
            if (nameheads_[a] != nameheads_[b]) return nameheads_[a] < nameheads_[b];
            if (const auto order = name(a).compare(name(b)); order != 0) return order < 0;
            break;
        case bytag:
            if (ranks_[a] != ranks_[b]) return ranks_[a] < ranks_[b];
            if (prices_[a] != prices_[b]) return prices_[a] < prices_[b];
            break;
        case byleft:
            if (lefts_[a] != lefts_[b]) return lefts_[a] < lefts_[b];
            break;
        case byprice:
            if (prices_[a] != prices_[b]) return prices_[a] < prices_[b];
            break;
        default:
            break;
    }
    return a < b;
}

void shelf::makeheads(rowno first, rowno end) const {
    for (auto row = first; row < end; ++row) {
        const auto text = name(row);
        std::uint64_t head = 0;
        for (std::size_t i = 0; i < sizeof head; ++i)
            head = head << 8 | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
        nameheads_.push_back(head);
    }
}

void shelf::sort(sortstep step, rows& some) const {
    if (step == byname) (void)inorder(byname);  // for the heads
    std::sort(some.begin(), some.end(), [&](rowno a, rowno b) { return isbefore(step, a, b); });
}

const shelf::rows& shelf::inorder(sortstep step) const {
    if (sorted_[step].load(std::memory_order_acquire)) return orders_[step];
    const std::lock_guard alone(sorting_);
    if (sorted_[step].load(std::memory_order_relaxed)) return orders_[step];
    rows order;
    for (rowno row = 0; row < size(); ++row)
        if (shown_[row] != 0) order.push_back(row);
    order.shrink_to_fit();
    if (step == byname) {
        nameheads_.reserve(size());
        makeheads(0, size());
    }
    if (step != asread) std::ranges::sort(order, [&](rowno a, rowno b) { return isbefore(step, a, b); });
    orders_[step] = std::move(order);
    if (step == bytag) maketagruns();
    sorted_[step].store(true, std::memory_order_release);
    return orders_[step];
}

void shelf::maketagruns() const {
    tagruns_.reserve(tags_->size());
    for (const auto& tag : *tags_) tagruns_.push_back({tag->id, 0});
    for (const auto row : orders_[bytag]) ++tagruns_[ranks_[row]].end;
    for (std::size_t rank = 1; rank < tagruns_.size(); ++rank) tagruns_[rank].end += tagruns_[rank - 1].end;
}

// Shelves bear much the same tags, so that a tag is near where it was on the one before.
std::span<const shelf::rowno> shelf::oftag(const goodstag& tag, std::uint32_t& rank) const {
    const std::span order = inorder(bytag);
    const auto size = static_cast<std::uint32_t>(tagruns_.size());
    const auto isit = [&](std::uint32_t at) { return at < size && tagruns_[at].id == tag.id; };
    constexpr std::uint32_t near = 8;
    std::uint32_t off = 0;
    while (off < near && !isit(rank + off) && !isit(rank - off)) ++off;
    rank = off == near ? findtag(tag.text) : isit(rank + off) ? rank + off : rank - off;
    if (rank == size) return {};
    const auto first = rank == 0 ? 0 : tagruns_[rank - 1].end;
    return order.subspan(first, tagruns_[rank].end - first);
}

bool shelf::issame(std::size_t block, const shopgoods& fresh) const {
    const auto first = firsts_[block];
    auto head = fresh.block->shop;
    head.revision = all_[block]->shop.revision;
    if (head != all_[block]->shop || fresh.block->rows != all_[block]->rows) return false;
    const auto& columns = *fresh.columns;
    for (std::size_t i = 0; i < columns.lefts.size(); ++i) {
        const auto row = at(first + static_cast<rowno>(i));
        if (columns.lefts[i] != row.left || columns.prices[i] != row.price) return false;
        if (columns.tags[columns.tagof[i]].get() != &row.tag) return false;
        for (const auto text : {rowtexts::name, rowtexts::describe, rowtexts::stack})
            if (fresh.texts->at(text, i) != row.texts.at(text, row.text)) return false;
    }
    return true;
}

// The rows of blocks that stayed keep their order among themselves; those of new ones are sorted into it.
void shelf::takeover(const std::vector<shop>& shops, const shelf& before) {
    constexpr rowno gone = std::numeric_limits<rowno>::max();
    rows movedto(before.size(), gone), fresh;
    const bool hasheads = before.sorted_[byname].load(std::memory_order_acquire);
    if (hasheads) nameheads_.reserve(size());
    inruns(
        shops,
        [&](std::size_t number, std::size_t count) {
            const auto first = firsts_[number], end = firsts_[number + count];
            const auto was = before.firsts_[static_cast<std::size_t>(shops[number].stood)];
            for (auto row = first; row < end; ++row) movedto[was + row - first] = row;
            if (hasheads) copyrows(nameheads_, before.nameheads_, was, end - first);
        },
        [&](std::size_t number) {
            for (auto row = firsts_[number]; row < firsts_[number + 1]; ++row)
                if (shown_[row] != 0) fresh.push_back(row);
            if (hasheads) makeheads(firsts_[number], firsts_[number + 1]);
        });
    for (std::uint8_t step = byname; step < sortsteps; ++step) {
        const auto of = static_cast<sortstep>(step);
        if (!before.sorted_[of].load(std::memory_order_acquire)) continue;
        if (of == byname && !hasheads) continue;  // somebody has just sorted them
        const auto isfirst = [&](rowno a, rowno b) { return isbefore(of, a, b); };
        rows kept;
        kept.reserve(before.orders_[of].size());
        for (const auto row : before.orders_[of])
            if (movedto[row] != gone) kept.push_back(movedto[row]);
        std::ranges::sort(fresh, isfirst);
        auto& order = orders_[of];
        order.reserve(kept.size() + fresh.size());
        auto next = kept.begin();
        for (const auto row : fresh) {  // few among many
            const auto place = std::lower_bound(next, kept.end(), row, isfirst);
            order.insert(order.end(), next, place);
            order.push_back(row);
            next = place;
        }
        order.insert(order.end(), next, kept.end());
        if (of == bytag) maketagruns();
        sorted_[of].store(true, std::memory_order_release);
    }
}

}  // namespace shopsystem
