#include "plugin/shopsystem/shoprecords.h"

#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "platform/background.h"
#include "platform/host.h"
#include "platform/records.h"
#include "platform/turn.h"
#include "plugin/base/guards.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace shopsystem {

using ordomart::logger;

namespace {

constexpr const char* table = "shops";
constexpr const char* brokentable = "shops.broken";
constexpr std::size_t keysatatime = 1000;

using owner = std::pair<std::string, int>;  // and kind

struct {
    std::mutex mutex;
    std::set<owner> all;
} left;

std::string keyof(const std::string& xuid, int kind) { return xuid + "." + sectionkey(kind); }

std::optional<owner> ownerofkey(const std::string& key) {
    for (const int kind : {shoptype::sell, shoptype::recycle}) {
        const auto suffix = std::string(".") + sectionkey(kind);
        if (key.ends_with(suffix)) return owner(key.substr(0, key.size() - suffix.size()), kind);
    }
    return std::nullopt;
}

// The goods are by far the most of a shop and only lent, since a copy would take longer than all the rest.
std::string bytesof(baseshop& shop) {
    auto [name, goods] = shop.goods();
    json section, lent = std::exchange(goods, nullptr);
    shop.savetojson(section);
    section[name] = std::move(lent);
    std::string bytes;
    json::to_msgpack(section, bytes);
    goods = std::move(section[name]);
    return bytes;
}

void setaside(const std::string& key, const std::string& bytes, const std::string& why) {
    logger.error("The record of {} is broken and kept aside in the table {}; its file stands: {}", key, brokentable,
                 why);
    Records& records = *host().records;
    records.put(brokentable, key, [bytes] { return bytes; });
    records.erase(table, key);
}

std::set<owner> lookforrecords(Records& records) {
    std::set<owner> found;
    std::string from;
    for (;;) {
        const auto keys = records.keys(table, from, keysatatime);
        for (const auto& key : keys) {
            if (const auto of = ownerofkey(key))
                found.insert(*of);
            else
                setaside(key, records.get(table, key).value_or(""), "its key names no shop");
        }
        if (keys.size() < keysatatime) return found;
        from = keys.back() + '\0';
    }
}

}  // namespace

void putrecord(baseshop& shop) {
    Records* const records = host().records;
    const int kind = shop.kind();
    // A shop that is not the cache's is nobody's to save.
    if (records == nullptr || globalruntimeshopmanager.cached(shop.xuid, kind) != &shop) return;
    // One that is to be saved is not forgotten before it is.
    records->put(table, keyof(shop.xuid, kind), [&shop] { return bytesof(shop); });
}

void putsection(const std::string& xuid, int kind, const json& section) {
    if (auto* const shop = globalruntimeshopmanager.cached(xuid, kind)) {
        namingsection(xuid, kind, [&] { shop->loadfromjson(section); });
        return shop->markshopchanged();
    }
    std::string bytes;
    json::to_msgpack(section, bytes);
    host().records->put(table, keyof(xuid, kind), [bytes = std::move(bytes)] { return bytes; });
    {
        const std::lock_guard alone(left.mutex);
        left.all.emplace(xuid, kind);
    }
    catalogueof(kind).changed(xuid);
}

void eraserecord(const std::string& xuid, int kind) {
    if (Records* const records = host().records) records->erase(table, keyof(xuid, kind));
}

bool recordwritten(const std::string& xuid, int kind) {
    const Records* const records = host().records;
    return records == nullptr || records->written(table, keyof(xuid, kind));
}

void bringinrecords() {
    if (host().records == nullptr) return;
    auto found = lookforrecords(*host().records);
    if (found.empty()) return;
    logger.info("{} shops had changed when the last run ended, and their files did not have it yet: it is brought in",
                found.size());
    {
        const std::lock_guard alone(left.mutex);
        left.all = found;
    }
    const auto bringall = [all = std::move(found)] {
        for (const auto& [xuid, kind] : all) {
            if (Background::stopping()) return;
            ordomart::envelope([&, &owner = xuid, of = kind] { globalruntimeshopmanager.bringin(owner, of); });
        }
    };
    // Without a thread to be had they come in when they are asked for.
    ordomart::envelope([&] { Background::start(bringall); });
}

bool hasleftrecord(const std::string& xuid, int kind) {
    const std::lock_guard alone(left.mutex);
    return left.all.contains({xuid, kind});
}

std::vector<std::pair<std::string, int>> leftrecords(std::size_t most) {
    const std::lock_guard alone(left.mutex);
    auto end = left.all.begin();
    for (; most > 0 && end != left.all.end(); --most) ++end;
    return {left.all.begin(), end};
}

std::optional<json> leftrecord(const std::string& xuid, int kind) {
    if (!hasleftrecord(xuid, kind)) return std::nullopt;
    const auto key = keyof(xuid, kind);
    const Turn turn;
    const auto bytes = host().records->get(table, key);
    if (!bytes) return std::nullopt;
    try {
        auto section = json::from_msgpack(*bytes);
        if (!section.is_object()) throw fielderror({}, "holds no object");
        return section;
    } catch (const nlohmann::detail::exception& e) {
        setasideleftrecord(xuid, kind, e.what());
        return std::nullopt;
    }
}

void setasideleftrecord(const std::string& xuid, int kind, const std::string& why) {
    const auto key = keyof(xuid, kind);
    const Turn turn;
    if (const auto bytes = host().records->get(table, key)) setaside(key, *bytes, why);
    forgetleftrecord(xuid, kind);
}

void forgetleftrecord(const std::string& xuid, int kind) {
    const std::lock_guard alone(left.mutex);
    left.all.erase({xuid, kind});
}

}  // namespace shopsystem
