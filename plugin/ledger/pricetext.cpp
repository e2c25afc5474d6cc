#include "plugin/ledger/pricetext.h"

#include <algorithm>
#include <cctype>

#include "platform/background.h"
#include "platform/host.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/economymanager.h"
#include "plugin/formparts/formtools.h"
#include "plugin/ledger/queries.h"
#include "plugin/shopsystem/catalogue.h"

namespace ledger {

using ordomart::filled;
using ordomart::tr;
using platform::host;

namespace owntext = ordomart::owntext;

namespace {

constexpr int longest = 30;
constexpr int periods[] = {1, 7, longest};
constexpr std::size_t mostvariants = 3, mostoffers = 3;

struct offer {
    std::int32_t price = 0, left = 0;
    std::string shop;
    variant what;
};
struct gathered {
    std::vector<pricedays> prices;
    std::vector<offer> goods, commissions;
};

bool isthat(const variant& what, const std::string& item, const std::optional<variant>& exact) {
    return exact ? what == *exact : what.name == item;
}

// The cheapest goods, or the commissions that pay most. A shelf's rows are parsed in the order of their prices.
std::vector<offer> bestof(int kind, const std::string& item, const std::optional<variant>& exact) {
    const auto all = shopsystem::catalogueof(kind).uptodate([] { return !platform::Background::stopping(); });
    if (all == nullptr) return {};
    struct place {
        std::int32_t price;
        const shopsystem::shelf* of;
        std::uint32_t row;
    };
    std::vector<place> rows;
    const auto key = "Name:\"" + item + "\"";
    for (const auto& shelf : all->all)
        for (std::uint32_t row = 0; row < shelf->size(); ++row) {
            if (shelf->shown()[row] == 0) continue;
            const auto at = shelf->at(row);
            if (at.texts.at(shopsystem::rowtexts::stack, at.text).find(key) != std::string_view::npos)
                rows.push_back({at.price, shelf.get(), row});
        }
    std::ranges::stable_sort(rows, [kind](const auto& a, const auto& b) {
        return kind == shopsystem::sell ? a.price < b.price : a.price > b.price;
    });
    std::vector<offer> best;
    for (const auto& [price, of, row] : rows) {
        const auto at = of->at(row);
        const std::string text(at.texts.at(shopsystem::rowtexts::stack, at.text));
        auto what = variantof(text);
        if (!isthat(what, item, exact)) continue;
        best.push_back({price, at.left, at.block.shop.shopname, std::move(what)});
        if (best.size() == mostoffers) break;
    }
    return best;
}

// The middle of each day, from low to high; a dot for a day without a trade.
std::string pictureof(const pricedays& of) {
    constexpr const char* heights[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    constexpr auto steps = static_cast<std::int64_t>(std::size(heights)) - 1;
    std::int64_t low = INT64_MAX, high = 0;
    for (const auto& day : of.days)
        if (!day.at.empty()) low = std::min(low, day.at.median()), high = std::max(high, day.at.median());
    std::string picture;
    for (const auto& day : of.days) {
        if (day.at.empty())
            picture += "·";
        else
            picture += heights[high == low ? steps / 2 : (day.at.median() - low) * steps / (high - low)];
    }
    return picture;
}

std::string periodline(const pricedays& of, int days, const std::string& language) {
    const auto line = of.over(days);
    const auto label = filled(tr(language, owntext::pricesdays), days);
    if (line.trades == 0) return filled(tr(language, owntext::pricesnone), label);
    return filled(tr(language, owntext::pricesline), label, line.median, line.lowest, line.highest, line.trades,
                  line.pieces, line.money);
}

// Another variant than the one that the title names is named, too.
std::string offerlines(const char* title, const std::vector<offer>& offers, const variant& asked,
                       const std::string& language) {
    if (offers.empty()) return {};
    std::string text = "\n§7" + tr(language, title) + "§r";
    for (const auto& [price, left, shop, what] : offers) {
        text += "\n" + filled(tr(language, owntext::pricesoffer), price, left, shop);
        if (what != asked) text += " §b" + nameof(what, language) + "§r";
    }
    return text;
}

std::string pricelines(const gathered& all, const variant& asked, const std::string& language) {
    std::string text = filled(tr(language, owntext::pricestitle), nameof(asked, language), ordomart::getmoneyname());
    if (all.prices.empty()) text += "\n" + tr(language, owntext::pricesnever);
    for (std::size_t i = 0; i < std::min(all.prices.size(), mostvariants); ++i) {
        const auto& of = all.prices[i];
        if (all.prices.size() > 1 || of.what != asked) text += "\n§b" + nameof(of.what, language) + "§r";
        for (const int days : periods) text += "\n" + periodline(of, days, language);
        text += "\n§a" + pictureof(of) + "§r";
    }
    return text + offerlines(owntext::pricesoffers, all.goods, asked, language) +
           offerlines(owntext::pricescommissions, all.commissions, asked, language);
}

gathered gather(const std::string& item, const std::optional<variant>& exact) {
    gathered all{pricesbyday(item, today(), longest), bestof(shopsystem::sell, item, exact),
                 bestof(shopsystem::recycle, item, exact)};
    std::erase_if(all.prices, [&](const auto& each) { return !isthat(each.what, item, exact); });
    return all;
}

std::string lowercase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

}  // namespace

std::string nameof(const variant& what, const std::string& language) {
    const auto called = [&](std::int32_t aux) {
        const auto stack = platform::ItemStack::create(what.name, 1, static_cast<std::int16_t>(aux));
        return stack.isNull() ? what.name : ordomart::itemlocalname(stack, language);
    };
    std::string name = called(what.aux);
    // Variants that share a name are told apart by their numbers.
    if (what.aux != 0 && name == called(0)) name += fmt::format(":{}", what.aux);
    return what.enchanted ? filled(tr(language, owntext::enchantedname), name) : name;
}

std::optional<std::string> itemnamed(const std::string& text, const std::string& language) {
    const auto asked = lowercase(text);
    if (const auto* const info = host().items->find(asked)) return info->name;
    for (const auto& stack : host().items->creativelist())
        if (lowercase(ordomart::itemlocalname(stack, language)) == asked) return stack.getTypeName();
    return std::nullopt;
}

void tellprices(const platform::ServerPlayer& player, const std::string& item, const std::optional<variant>& exact) {
    constexpr const char* place = "prices";
    platform::Background::start([xuid = player.getXuid(), item, exact] {
        ordomart::envelope(
            [&] {
                ordomart::backtoplayer(xuid, place, [all = gather(item, exact), item, exact](auto* who) {
                    who->sendText(pricelines(all, exact.value_or(variant{item}), who->getLanguageCode()));
                });
            },
            place);
    });
}

}  // namespace ledger
