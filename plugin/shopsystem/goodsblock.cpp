#include "plugin/shopsystem/goodsblock.h"

#include <mutex>

namespace shopsystem {

namespace {

// Tags live as long as somebody holds one; the keys are their own texts.
struct tagtable {
    std::mutex mutex;
    std::unordered_map<std::string_view, std::weak_ptr<const goodstag>> known;
    std::vector<std::uint32_t> freeids;
    std::uint32_t ids = 0;
};

// Each tag holds it as well, since blocks may outlive what is static here.
const std::shared_ptr<tagtable>& tagsinuse() {
    static const auto table = std::make_shared<tagtable>();
    return table;
}

void forget(tagtable& table, const goodstag* tag) {
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
    auto& table = *tagsinuse();
    const std::lock_guard alone(table.mutex);
    const auto found = table.known.find(text);
    return found == table.known.end() ? nullptr : found->second.lock();
}

taghandle interntag(std::string_view text) {
    const auto& kept = tagsinuse();
    auto& table = *kept;
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
    taghandle tag(new goodstag{std::string(text), id}, [kept](const goodstag* gone) { forget(*kept, gone); });
    table.known.emplace(tag->text, tag);
    return tag;
}

namespace {

template <class Row>
void readcommon(const goodsblock& block, const goodsblock::row& row, Row& into) {
    readshop(block, into);
    into.index = static_cast<std::int32_t>(row.place);
    into.isopshop = block.shop.isopshop;
    into.allowbesearched = (row.flags & goodsblock::isprivate) == 0;
}

}  // namespace

void readrow(const goodsrow& of, globalsellshopitem& into) {
    const auto& row = of.block.rows[of.row];
    readcommon(of.block, row, into);
    into.shopitemtag = of.tag.text;
    into.shopitemname = of.texts.at(rowtexts::name, of.text);
    into.shopitemdescribe = of.texts.at(rowtexts::describe, of.text);
    into.itemnbt = of.texts.at(rowtexts::stack, of.text);
    into.shopitemleftnum = of.left;
    into.price = row.other;
    into.realprice = of.price;
}

void readrow(const goodsrow& of, globalrecycleshopitem& into) {
    const auto& row = of.block.rows[of.row];
    readcommon(of.block, row, into);
    into.recycleitemtag = of.tag.text;
    into.recycleitemname = of.texts.at(rowtexts::name, of.text);
    into.recycleitemdescribe = of.texts.at(rowtexts::describe, of.text);
    into.itemnbt = of.texts.at(rowtexts::stack, of.text);
    into.recycleitemleftwanna = of.left;
    into.nowhasrecyclenum = row.other;
    into.offer = of.price;
    into.filterauxordamage = (row.flags & goodsblock::byauxordamage) != 0;
    into.filterench = (row.flags & goodsblock::byench) != 0;
    into.filteritemnbt = (row.flags & goodsblock::bynbt) != 0;
}

namespace {

constexpr unsigned flagif(bool isset, goodsblock::flag which) { return isset ? unsigned{which} : 0; }

}  // namespace

void blockbuilder::add(const globalsellshopitem& row) {
    const auto flags = flagif(!row.allowbesearched, goodsblock::isprivate);
    add({static_cast<std::uint32_t>(row.index), flags, row.price}, row.shopitemleftnum, row.realprice, row.shopitemtag);
    texts_.add(row.shopitemname, row.shopitemdescribe, row.itemnbt);
}

void blockbuilder::add(const globalrecycleshopitem& row) {
    const auto flags = flagif(!row.allowbesearched, goodsblock::isprivate) |
                       flagif(row.filterauxordamage, goodsblock::byauxordamage) |
                       flagif(row.filterench, goodsblock::byench) | flagif(row.filteritemnbt, goodsblock::bynbt);
    add({static_cast<std::uint32_t>(row.index), flags, row.nowhasrecyclenum}, row.recycleitemleftwanna, row.offer,
        row.recycleitemtag);
    texts_.add(row.recycleitemname, row.recycleitemdescribe, row.itemnbt);
}

void blockbuilder::add(goodsblock::row row, std::int32_t left, std::int32_t price, std::string_view tag) {
    auto known = tags_.find(tag);
    if (known == tags_.end()) {
        columns_.tags.push_back(interntag(tag));
        const auto number = static_cast<std::uint32_t>(columns_.tags.size() - 1);
        known = tags_.emplace(columns_.tags.back()->text, number).first;
    }
    made_.rows.push_back(row);
    columns_.lefts.push_back(left);
    columns_.prices.push_back(price);
    columns_.tagof.push_back(known->second);
}

shopgoods blockbuilder::finish(goodsblock::header shop) {
    made_.shop = std::move(shop);
    made_.rows.shrink_to_fit();
    return {std::make_shared<const goodsblock>(std::move(made_)), texts_.finish(), 0,
            std::make_shared<const rowcolumns>(std::move(columns_))};
}

}  // namespace shopsystem
