#include "plugin/shopsystem/goodsblock.h"

#include <mutex>

#include "plugin/shopsystem/textfilter.h"

namespace shopsystem {

namespace {

// Tags live as long as somebody holds one; the keys are their own texts.
struct tagtable {
    std::mutex mutex;
    std::unordered_map<std::string_view, std::weak_ptr<const goodstag>> known;
    std::vector<std::uint32_t> freeids;
    std::uint32_t ids = 0;
};

// Never destroyed: blocks may outlive it at the end of the process.
tagtable& tagsinuse() {
    static auto* const table = new tagtable;
    return *table;
}

void forget(const goodstag* tag) {
    auto& table = tagsinuse();
    {
        const std::lock_guard alone(table.mutex);
        // Somebody may have asked for it meanwhile and got a new one under a key of its own.
        if (const auto found = table.known.find(tag->text);
            found != table.known.end() && found->first.data() == tag->text.data())
            table.known.erase(found);
        table.freeids.push_back(tag->id);
    }
    delete tag;
}

}  // namespace

taghandle knowntag(std::string_view text) {
    auto& table = tagsinuse();
    const std::lock_guard alone(table.mutex);
    const auto found = table.known.find(text);
    return found == table.known.end() ? nullptr : found->second.lock();
}

taghandle interntag(std::string_view text) {
    auto& table = tagsinuse();
    std::unique_lock alone(table.mutex);
    if (const auto found = table.known.find(text); found != table.known.end()) {
        if (auto tag = found->second.lock()) return tag;
        table.known.erase(found);
    }
    std::uint32_t id = table.ids;
    if (table.freeids.empty()) {
        ++table.ids;
    } else {
        id = table.freeids.back();
        table.freeids.pop_back();
    }
    taghandle tag(new goodstag{std::string(text), id}, &forget);
    table.known.emplace(tag->text, tag);
    return tag;
}

std::uint32_t mosttagids() {
    auto& table = tagsinuse();
    const std::lock_guard alone(table.mutex);
    return table.ids;
}

namespace {

template <class Row>
void readcommon(const goodsblock& block, const goodsblock::row& row, Row& into) {
    readshop(block, into);
    into.index = row.place;
    into.isopshop = block.shop.isopshop;
    into.allowbesearched = (row.flags & goodsblock::isprivate) == 0;
}

}  // namespace

void readrow(const goodsblock& block, std::size_t i, globalsellshopitem& into) {
    const auto& row = block.rows[i];
    readcommon(block, row, into);
    into.shopitemtag = block.tag(i);
    into.shopitemname = block.name(i);
    into.shopitemdescribe = block.describe(i);
    into.itemnbt = block.stack(i);
    into.shopitemleftnum = row.left;
    into.price = row.other;
    into.realprice = row.price;
}

void readrow(const goodsblock& block, std::size_t i, globalrecycleshopitem& into) {
    const auto& row = block.rows[i];
    readcommon(block, row, into);
    into.recycleitemtag = block.tag(i);
    into.recycleitemname = block.name(i);
    into.recycleitemdescribe = block.describe(i);
    into.itemnbt = block.stack(i);
    into.recycleitemleftwanna = row.left;
    into.nowhasrecyclenum = row.other;
    into.offer = row.price;
    into.filterauxordamage = (row.flags & goodsblock::byauxordamage) != 0;
    into.filterench = (row.flags & goodsblock::byench) != 0;
    into.filteritemnbt = (row.flags & goodsblock::bynbt) != 0;
}

bool goodsblock::saysthesame(const goodsblock& other) const {
    auto head = other.shop;
    head.revision = shop.revision;
    return head == shop && rows == other.rows && tags == other.tags && nameoffsets == other.nameoffsets &&
           describeoffsets == other.describeoffsets && stackoffsets == other.stackoffsets && texts == other.texts;
}

void blockbuilder::add(const globalsellshopitem& row) {
    add({row.index, row.shopitemleftnum, row.realprice, row.price, 0,
         static_cast<std::uint8_t>(row.allowbesearched ? 0 : goodsblock::isprivate)},
        row.shopitemtag, row.shopitemname, row.shopitemdescribe, row.itemnbt);
}

void blockbuilder::add(const globalrecycleshopitem& row) {
    const int flags = (row.allowbesearched ? 0 : goodsblock::isprivate) |
                      (row.filterauxordamage ? goodsblock::byauxordamage : 0) |
                      (row.filterench ? goodsblock::byench : 0) | (row.filteritemnbt ? goodsblock::bynbt : 0);
    add({row.index, row.recycleitemleftwanna, row.offer, row.nowhasrecyclenum, 0, static_cast<std::uint8_t>(flags)},
        row.recycleitemtag, row.recycleitemname, row.recycleitemdescribe, row.itemnbt);
}

void blockbuilder::add(goodsblock::row row, std::string_view tag, std::string_view name, std::string_view describe,
                       std::string_view stack) {
    auto known = tags_.find(tag);
    if (known == tags_.end()) {
        made_.tags.push_back(interntag(tag));
        known = tags_.emplace(made_.tags.back()->text, static_cast<std::uint32_t>(made_.tags.size() - 1)).first;
    }
    row.tag = known->second;
    made_.rows.push_back(row);
    const auto append = [](std::string& all, std::vector<std::uint32_t>& offsets, std::string_view text) {
        all += text;
        offsets.push_back(static_cast<std::uint32_t>(all.size()));
    };
    append(names_, made_.nameoffsets, name);
    append(describes_, made_.describeoffsets, describe);
    append(stacks_, made_.stackoffsets, stack);
}

std::shared_ptr<goodsblock> blockbuilder::finish(goodsblock::header shop) {
    made_.shop = std::move(shop);
    const auto shift = [](std::vector<std::uint32_t>& offsets, std::size_t by) {
        for (auto& offset : offsets) offset += static_cast<std::uint32_t>(by);
    };
    shift(made_.describeoffsets, names_.size());
    shift(made_.stackoffsets, names_.size() + describes_.size());
    made_.texts.reserve(names_.size() + describes_.size() + stacks_.size() + textfilter::slack);
    made_.texts = names_;
    made_.texts += describes_;
    made_.texts += stacks_;
    made_.texts.append(textfilter::slack, '\0');
    made_.rows.shrink_to_fit();
    made_.tags.shrink_to_fit();
    return std::make_shared<goodsblock>(std::move(made_));
}

}  // namespace shopsystem
