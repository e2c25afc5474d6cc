#include "plugin/shopsystem/blockdecoder.h"

#include <algorithm>
#include <optional>

#include "platform/clock.h"
#include "platform/turn.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/jsonfields.h"
#include "plugin/shopsystem/rowkinds.h"

namespace shopsystem {

namespace {

constexpr int rowsperturn = 64;
// A shop that is changed faster than it can be read in pieces is read in one.
constexpr int patience = 4;

void holdprices(const sellshop& shop, std::int64_t now, goodsblock::header& head) {
    if (!shop.shopdiscount.is_array()) return;
    for (const auto& record : shop.shopdiscount) {
        const auto end = record.find("timeend");
        if (end == record.end() || !iswhole<std::int64_t>(*end)) continue;
        const auto at = end->get<std::int64_t>();
        if (at < now)
            head.since = std::max(head.since, at);
        else
            head.until = std::min(head.until, at);
    }
}
void holdprices(const recycleshop&, std::int64_t, goodsblock::header&) {}

std::array<std::int32_t, 2> countersof(const sellshop& shop) { return {shop.sellcount, shop.salesvolume}; }
std::array<std::int32_t, 2> countersof(const recycleshop& shop) { return {shop.recycleamount, shop.recyclecost}; }

template <class Shop>
goodsblock::header makehead(Shop& shop) {
    goodsblock::header head{.xuid = shop.xuid,
                            .shopname = shop.shopname,
                            .ownername = shop.ownername,
                            .describe = shop.describe,
                            .counters = countersof(shop),
                            .revision = shop.revision,
                            .isopshop = shop.isopshop,
                            .isbanned = shop.isbanned()};
    holdprices(shop, unixseconds(), head);
    if (const auto end = shop.banend(); head.isbanned && end) head.until = std::min(head.until, *end);
    return head;
}

template <class Rows>
class decoding {
public:
    explicit decoding(const std::string& xuid) : xuid_(xuid) {}

    shopgoods run() {
        for (int attempt = 0;; ++attempt) {
            globalruntimeshopmanager.bringin(xuid_, Rows::type);
            head_.reset();
            builder_ = {};
            next_ = 0;
            const int most = attempt < patience ? rowsperturn : std::numeric_limits<int>::max();
            auto end = outcome::more;
            while (end == outcome::more) end = take(most);
            if (end == outcome::done) return builder_.finish(std::move(*head_));
        }
    }

private:
    enum class outcome { more, done, changed };

    outcome take(int most) {
        const platform::Turn turn;
        if (globalruntimeshopmanager.cached(xuid_, Rows::type) == nullptr) return outcome::changed;
        auto& shop = Rows::shop(xuid_);
        if (!head_) head_ = headof(shop);
        if (head_->revision != shop.revision || head_->isbanned != shop.isbanned() || !head_->holdsat(unixseconds()))
            return outcome::changed;
        const json& records = shop.*Rows::records;
        const int size = records.is_array() ? static_cast<int>(records.size()) : 0;
        for (const int last = size - next_ > most ? next_ + most : size; next_ < last; ++next_)
            unlessbroken(shop, Rows::type, [&] {
                const auto row = Rows::at(shop, next_);
                if (row.*Rows::left != 0) builder_.add(row);
            });
        return next_ < size ? outcome::more : outcome::done;
    }

    const std::string xuid_;
    std::optional<goodsblock::header> head_;
    blockbuilder builder_;
    int next_ = 0;
};

}  // namespace

goodsblock::header headof(sellshop& shop) { return makehead(shop); }
goodsblock::header headof(recycleshop& shop) { return makehead(shop); }

shopgoods decodeshop(const std::string& xuid, int kind) {
    return kind == sell ? decoding<sellrows>(xuid).run() : decoding<recyclerows>(xuid).run();
}

}  // namespace shopsystem
