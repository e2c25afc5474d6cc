#include "plugin/shopsystem/listfind.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <unordered_map>
#include <utility>

#include "plugin/shopsystem/textfilter.h"

namespace shopsystem {

namespace {

using rowno = shelf::rowno;

constexpr std::int32_t notset = -1;

// A row of bits.
class rowmarks {
public:
    explicit rowmarks(std::size_t size) : words_((size + 63) / 64) {}
    // Each row's is what `isset` says, 1 or 0.
    template <class IsSet>
    rowmarks(std::size_t size, const IsSet& isset) : rowmarks(size) {
        for (std::size_t w = 0; w < words_.size(); ++w) {
            const auto first = 64 * w, count = std::min<std::size_t>(64, size - first);
            for (std::size_t i = 0; i < count; ++i) words_[w] |= std::uint64_t{isset(first + i)} << i;
        }
    }
    void set(std::size_t i) { words_[i / 64] |= bit(i); }
    [[nodiscard]] bool isempty() const {
        return std::ranges::all_of(words_, [](auto word) { return word == 0; });
    }
    [[nodiscard]] bool has(std::size_t i) const { return (words_[i / 64] & bit(i)) != 0; }
    [[nodiscard]] std::span<std::uint64_t> words() { return words_; }
    // What is marked, ascending.
    [[nodiscard]] shelf::rows rows() const {
        shelf::rows all;
        for (std::size_t w = 0; w < words_.size(); ++w)
            for (auto rest = words_[w]; rest != 0; rest &= rest - 1)
                all.push_back(static_cast<rowno>(64 * w + static_cast<std::size_t>(std::countr_zero(rest))));
        all.shrink_to_fit();
        return all;
    }
    rowmarks& operator&=(const rowmarks& other) {
        for (std::size_t w = 0; w < words_.size(); ++w) words_[w] &= other.words_[w];
        return *this;
    }
    rowmarks& operator|=(const rowmarks& other) {
        for (std::size_t w = 0; w < words_.size(); ++w) words_[w] |= other.words_[w];
        return *this;
    }

private:
    static std::uint64_t bit(std::size_t i) { return std::uint64_t{1} << (i % 64); }
    std::vector<std::uint64_t> words_;
};

void marktexts(const shelf& on, rowtexts::kind text, const textfilter& filter, rowmarks& rows) {
    for (std::size_t piece = 0; piece < on.texts().size(); ++piece)
        filter.mark(*on.texts()[piece], text, rows.words(), on.firstoftexts(piece));
}

// A filter record, read once. Fields of the shop and of the row are held against it in whichever way is meant.
class readfilter {
public:
    readfilter(const shopfilter& filter, bool issell)
        : ownername_(filter.ownernamefilter),
          shopdesc_(filter.shopdescfilter),
          name_(filter.itemnamefilter),
          describe_(filter.itemdescfilter),
          tag_(filter.itemtagfilter),
          minima_(issell ? std::array{filter.minsellcount, filter.minsalesvolume}
                         : std::array{filter.minrecycleamount, filter.minrecyclecost}) {}

    [[nodiscard]] bool asksofshops() const {
        return ownername_.isset() || shopdesc_.isset() || minima_[0] != notset || minima_[1] != notset;
    }
    [[nodiscard]] bool allof(const goodsblock::header& shop) const {
        if (ownername_.isset() && !ownername_.passes(shop.ownername)) return false;
        if (shopdesc_.isset() && !shopdesc_.passes(shop.describe)) return false;
        for (std::size_t i = 0; i < minima_.size(); ++i)
            if (minima_[i] != notset && minima_[i] > shop.counters[i]) return false;
        return true;
    }
    [[nodiscard]] bool anyof(const goodsblock::header& shop) const {
        if (ownername_.isset() && ownername_.passes(shop.ownername)) return true;
        if (shopdesc_.isset() && shopdesc_.passes(shop.describe)) return true;
        for (std::size_t i = 0; i < minima_.size(); ++i)
            if (minima_[i] != notset && minima_[i] <= shop.counters[i]) return true;
        return false;
    }

    // Of the rows that pass all, takes away those that do not pass this.
    void narrow(const shelf& on, rowmarks& rows) const {
        if (asksofshops()) {
            rowmarks passing(on.size());
            markshops(on, passing, &readfilter::allof);
            rows &= passing;
        }
        for (const auto text : {rowtexts::name, rowtexts::describe}) {
            if (!filterof(text).isset()) continue;
            rowmarks passing(on.size());
            marktexts(on, text, filterof(text), passing);
            rows &= passing;
        }
        if (tag_.isset()) {
            rowmarks passing(on.size());
            marktagged(on, passing);
            rows &= passing;
        }
    }
    // Marks the rows that pass in any field.
    void collect(const shelf& on, rowmarks& rows) const {
        if (asksofshops()) markshops(on, rows, &readfilter::anyof);
        for (const auto text : {rowtexts::name, rowtexts::describe})
            if (filterof(text).isset()) marktexts(on, text, filterof(text), rows);
        if (tag_.isset()) marktagged(on, rows);
    }

private:
    [[nodiscard]] const textfilter& filterof(rowtexts::kind text) const {
        return text == rowtexts::name ? name_ : describe_;
    }

    void markshops(const shelf& on, rowmarks& rows, bool (readfilter::*passes)(const goodsblock::header&) const) const {
        for (std::size_t b = 0; b < on.shops().size(); ++b)
            if ((this->*passes)(on.shops()[b]->shop))
                for (auto row = on.firstof(b); row < on.firstof(b + 1); ++row) rows.set(row);
    }

    void marktagged(const shelf& on, rowmarks& rows) const {
        std::vector<std::uint8_t> passes;  // by rank
        for (const auto& tag : on.tags()) {
            if (tag->id >= tags_.size()) tags_.resize(tag->id + 1);
            auto& known = tags_[tag->id];
            if (!known) known = tag_.passes(tag->text);
            passes.push_back(*known ? 1 : 0);
        }
        if (std::ranges::find(passes, 1) == passes.end()) return;
        rows |= {on.size(), [&](std::size_t row) { return passes[on.ranks()[row]]; }};
    }

    textfilter ownername_, shopdesc_, name_, describe_, tag_;
    std::array<std::int32_t, 2> minima_;
    mutable std::vector<std::optional<bool>> tags_;  // by id; a query's shelves hold on to their tags
};

// The tag that is asked for when nothing else is, and it exactly.
std::optional<std::string> onlytag(const rowquery& query) {
    auto rest = query.standing;
    const auto wanted = std::exchange(rest.itemtagfilter, {});
    if (query.searching || !query.publicrows || !query.shop.empty() || !query.item.empty() || !(rest == shopfilter()))
        return std::nullopt;
    if (!wanted.ends_with('$') || wanted.find("{||}") != std::string::npos) return std::nullopt;
    return wanted.substr(0, wanted.size() - 1);
}

// The name of a stack's item in its text: the key of the outermost compound, not of what lies in the stack.
std::string_view itemnameof(std::string_view stack) {
    constexpr std::string_view key = "Name:\"";
    int depth = 0;
    for (std::size_t at = 0; at < stack.size(); ++at) {
        const char c = stack[at];
        const bool isnamed = depth == 1 && c == 'N' && (stack[at - 1] == '{' || stack[at - 1] == ',');
        if (isnamed && stack.substr(at).starts_with(key)) {
            const auto rest = stack.substr(at + key.size());
            return rest.substr(0, rest.find('"'));
        }
        if (c == '"')
            while (++at < stack.size() && stack[at] != '"') at += stack[at] == '\\' ? 1 : 0;
        depth += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
    }
    return {};
}

// What the query asks of the rows of one shelf.
class rowtest {
public:
    explicit rowtest(const rowquery& query)
        : query_(query),
          standing_(query.standing, query.issell),
          search_(query.search, query.issell),
          item_(query.item.empty() ? query.item : "Name:\"" + query.item + "\"") {}

    [[nodiscard]] std::shared_ptr<const shelf::rows> passing(const shelf& on) const {
        return passing(on, 0, on.size());
    }
    [[nodiscard]] std::shared_ptr<const shelf::rows> passing(const shelf& on, rowno first, rowno end) const {
        static const auto none = std::make_shared<const shelf::rows>();
        rowmarks hits(on.size());
        if (query_.searching) {
            search_.collect(on, hits);
            if (hits.isempty()) return none;
        }
        const auto shown = on.shown();
        rowmarks marks(on.size(), [&](std::size_t row) -> std::uint8_t {
            return row >= first && row < end && (!query_.publicrows || shown[row] != 0) ? 1 : 0;
        });
        if (query_.searching) marks &= hits;
        standing_.narrow(on, marks);
        if (item_.isset()) {
            rowmarks named(on.size());
            marktexts(on, rowtexts::stack, item_, named);
            marks &= named;
            auto rows = marks.rows();
            std::erase_if(rows, [&](rowno row) {
                const auto at = on.at(row);
                return itemnameof(at.texts.at(rowtexts::stack, at.text)) != query_.item;
            });
            return std::make_shared<const shelf::rows>(std::move(rows));
        }
        return std::make_shared<const shelf::rows>(marks.rows());
    }

private:
    const rowquery& query_;
    const readfilter standing_, search_;
    const textfilter item_;
};

std::shared_ptr<const shelf::rows> shopsof(const shelf& on) {
    shelf::rows firsts;
    for (std::size_t b = 0; b < on.shops().size(); ++b)
        if (!on.shops()[b]->shop.isbanned && !on.shops()[b]->rows.empty()) firsts.push_back(on.firstof(b));
    return std::make_shared<const shelf::rows>(std::move(firsts));
}

bool asksnothing(const rowquery& query) {
    return query.publicrows && query.shop.empty() && query.item.empty() && !query.searching &&
           query.standing == shopfilter();
}

}  // namespace

std::shared_ptr<const shelf> shelfof(const shelves& among, const std::string& xuid) {
    const auto behind = shelfbehind(among.all.begin(), among.all.end(), xuid);
    if (behind == among.all.begin() || (*std::prev(behind))->find(xuid) < 0) return nullptr;
    return *std::prev(behind);
}

foundrows::foundrows(std::shared_ptr<const shelves> among, rowquery query, const foundrows* last)
    : among_(std::move(among)), query_(std::move(query)) {
    if (query_.shopsalone) {
        for (const auto& on : among_->all) parts_.push_back({on.get(), part::some, shopsof(*on)});
    } else if (asksnothing(query_)) {
        for (const auto& on : among_->all) parts_.push_back({on.get(), part::all});
    } else if (!query_.shop.empty()) {
        findofone();
    } else if (const auto text = onlytag(query_)) {
        findtagged(*text);
    } else {
        findpassing(last);
    }
}

void foundrows::findtagged(const std::string& text) {
    tag_ = knowntag(text);
    if (tag_ == nullptr) return;
    for (const auto& on : among_->all) parts_.push_back({on.get(), part::tagged});
}

void foundrows::findofone() {
    const auto on = shelfof(*among_, query_.shop);
    if (on == nullptr) return;
    const auto block = static_cast<std::size_t>(on->find(query_.shop));
    parts_.push_back({on.get(), part::some, rowtest(query_).passing(*on, on->firstof(block), on->firstof(block + 1))});
}

void foundrows::findpassing(const foundrows* last) {
    std::unordered_map<const shelf*, std::shared_ptr<const shelf::rows>> known;
    if (last != nullptr && last->query_ == query_)
        for (const auto& each : last->parts_) known.emplace(each.of, each.rows);
    const rowtest test(query_);
    for (const auto& on : among_->all) {
        const auto before = known.find(on.get());
        parts_.push_back({on.get(), part::some, before != known.end() ? before->second : test.passing(*on)});
    }
}

const rowruns& foundrows::inorder(sortstep step) const {
    const std::lock_guard alone(sorting_);
    auto& order = orders_[step];
    if (order == nullptr) {
        auto made = std::make_unique<rowruns>(step, parts_.size());
        std::uint32_t tagrank = 0;
        for (const auto& each : parts_) made->add(runof(each, step, tagrank));
        order = std::move(made);
    }
    return *order;
}

rowrun foundrows::runof(const part& found, sortstep step, std::uint32_t& tagrank) const {
    const auto& of = *found.of;
    shelf::rows sorted;
    if (found.what == part::all) return {found.of, of.inorder(step)};
    if (found.what == part::tagged) {
        const auto rows = of.oftag(*tag_, tagrank);
        if (step == bytag || step == byprice || rows.empty()) return {found.of, rows};
        if (step == asread) {
            rowmarks marks(of.size());
            for (const auto row : rows) marks.set(row);
            sorted = marks.rows();
        } else {
            sorted.assign(rows.begin(), rows.end());
            of.sort(step, sorted);
        }
    } else {
        const auto& rows = *found.rows;
        if (step == asread || rows.empty()) return {found.of, rows, found.rows};
        // Where they are many, it is cheaper to take them out of the order of all.
        constexpr std::size_t many = 16;
        if (query_.publicrows && rows.size() * many > of.size()) {
            rowmarks wanted(of.size());
            for (const auto row : rows) wanted.set(row);
            sorted.reserve(rows.size());
            for (const auto row : of.inorder(step))
                if (wanted.has(row)) sorted.push_back(row);
        } else {
            sorted = rows;
            of.sort(step, sorted);
        }
    }
    auto kept = std::make_shared<const shelf::rows>(std::move(sorted));
    return {found.of, *kept, kept};
}

rowruns without(rowruns runs, const std::vector<std::string>& shops) {
    const auto& all = runs.all();
    for (const auto& shop : shops) {
        const auto behind = std::ranges::upper_bound(
            all, shop, infileorder, [](const auto& run) -> std::string_view { return run.of->firstkey(); });
        if (behind == all.begin()) continue;
        const auto& on = *std::prev(behind)->of;
        const auto block = on.find(shop);
        if (block < 0) continue;
        const auto first = on.firstof(static_cast<std::size_t>(block));
        const auto end = on.firstof(static_cast<std::size_t>(block) + 1);
        runs.leaveout(static_cast<std::size_t>(behind - all.begin()) - 1, first, end);
    }
    return runs;
}

}  // namespace shopsystem
