// Bringing shops in, and the states by which they are saved and forgotten. A shop that is not in the cache is read
// completely before its entry is made, so that a broken file leaves no empty shop behind that could be saved over it.
#include "plugin/shopsystem/runtimeshopmanager.h"

#include <stdexcept>

#include "platform/turn.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/shoptable.h"
#include "plugin/shopsystem/taskpool.h"

namespace shopsystem {

namespace {

template <class Shop>
constexpr shoptype sectionof = std::is_same_v<Shop, sellshop> ? shoptype::sell : shoptype::recycle;

template <class Shop>
Shop readshop(const std::string& xuid) {
    Shop shop(xuid);
    const json section = loadshopdata(xuid, sectionof<Shop>);
    namingsection(xuid, sectionof<Shop>, [&] { shop.loadfromjson(section); });
    shop.isloaded = true;
    return shop;
}

// Sees in a turn to the state of an entry while a save task works on it, whatever way the task ends.
template <class Shop>
class saving {
public:
    explicit saving(typename shoptable<Shop>::entry& entry) : entry_(entry) {}
    saving(const saving&) = delete;
    saving& operator=(const saving&) = delete;

    json look() {
        const Turn turn;
        entry_.waiting = false;
        json section;
        entry_.shop.savetojson(section);
        return section;
    }
    void ended(bool written) {
        const Turn turn;
        if (!written) keepunsaved();
        entry_.shop.cachestate = saved;
        finished_ = true;
        --entry_.tasks;
    }
    ~saving() {
        if (finished_) return;
        // An exception. The shop stays queued and is not tried again before an orderly stop.
        const Turn turn;
        keepunsaved();
        entry_.waiting = false;
        --entry_.tasks;
    }

private:
    // Not to be forgotten by its age before it is on the disk.
    void keepunsaved() {
        entry_.shop.isdirty = true;
        entry_.shop.idleticks = 0;
    }
    typename shoptable<Shop>::entry& entry_;
    bool finished_ = false;
};

template <class Shop>
bool writesection(const std::string& xuid, const json& section) {
    try {
        saveshopdata(xuid, section, sectionof<Shop>);
        return true;
    } catch (const std::runtime_error& e) {  // cannot be read or written at this moment
        ordomart::logger.error("{}", e.what());
        return false;
    } catch (const nlohmann::detail::exception& e) {
        ordomart::logger.error("The shop is not saved: {}", e.what());
        throw;
    }
}

template <class Shop>
void enqueuesave(typename shoptable<Shop>::entry& entry) {
    taskpool.enqueue([&entry] {
        saving<Shop> save(entry);
        const json section = save.look();
        save.ended(writesection<Shop>(entry.key, section));
    });
    entry.shop.cachestate = queued;
    entry.waiting = true;
    ++entry.tasks;
}

bool isaged(const baseshop& shop) { return shop.idleticks > maxidleticks && !shop.keepincache; }

void tickidle(baseshop& shop) {
    if (!shop.keepincache) ++shop.idleticks;
    if (isaged(shop)) {
        shop.cachestate = savewanted;
    } else if (shop.isdirty) {
        shop.cachestate = savewanted;
        shop.isdirty = false;
    }
}

template <class Shop>
void tickall(shoptable<Shop>& table) {
    for (auto place = table.begin(); place != table.end();) {
        Shop& shop = place->shop;
        switch (shop.cachestate) {
            case idle:
                tickidle(shop);
                break;
            case savewanted:
                enqueuesave<Shop>(*place);
                break;
            case saved:
                if (isaged(shop) && place->tasks == 0) {
                    place = table.erase(place);
                    continue;
                }
                shop.cachestate = idle;
                break;
            default:
                break;
        }
        ++place;
    }
}

template <class Shop>
void saveall(shoptable<Shop>& table) {
    for (auto& entry : table) {
        Shop& shop = entry.shop;
        if (entry.waiting || (!shop.isdirty && shop.cachestate != savewanted)) continue;
        shop.isdirty = false;
        enqueuesave<Shop>(entry);
    }
}

template <class Shop>
Shop& enter(shoptable<Shop>& table, const std::string& xuid, Shop fresh) {
    forgetbroken(xuid, sectionof<Shop>);
    return table.insert(xuid, std::move(fresh));
}

template <class Shop>
Shop& get(shoptable<Shop>& table, const std::string& xuid) {
    Shop* shop = table.find(xuid);
    if (shop == nullptr) shop = &enter(table, xuid, readshop<Shop>(xuid));
    shop->idleticks = 0;
    return *shop;
}

template <class Shop>
void bring(shoptable<Shop>& table, const std::string& xuid) {
    const auto touch = [&] {
        Shop* shop = table.find(xuid);
        if (shop != nullptr) shop->idleticks = 0;
        return shop != nullptr;
    };
    {
        const Turn turn;
        if (touch()) return;
    }
    Shop fresh = readshop<Shop>(xuid);
    const Turn turn;
    // Another thread may have been faster, and its object may have changed since.
    if (!touch()) enter(table, xuid, std::move(fresh));
}

}  // namespace

struct runtimeshopmanager::maps {
    shoptable<sellshop> sells;
    shoptable<recycleshop> recycles;

    template <class Work>
    decltype(auto) oftype(int type, Work work) {
        if (type == shoptype::sell) return work(sells);
        if (type == shoptype::recycle) return work(recycles);
        throw std::invalid_argument("no shop type: " + std::to_string(type));
    }
};

runtimeshopmanager::runtimeshopmanager() : maps_(std::make_unique<maps>()) {}
runtimeshopmanager::~runtimeshopmanager() = default;

sellshop& runtimeshopmanager::getsellshop(const std::string& xuid) { return get(maps_->sells, xuid); }
recycleshop& runtimeshopmanager::getrecycleshop(const std::string& xuid) { return get(maps_->recycles, xuid); }

baseshop& runtimeshopmanager::getshop(const std::string& xuid, int type) {
    return maps_->oftype(type, [&](auto& table) -> baseshop& { return get(table, xuid); });
}

void runtimeshopmanager::bringin(const std::string& xuid, int type) {
    maps_->oftype(type, [&](auto& table) { bring(table, xuid); });
}

void runtimeshopmanager::tick() {
    const Turn turn;
    tickall(maps_->sells);
    tickall(maps_->recycles);
}

void runtimeshopmanager::savealldirty() {
    const Turn turn;
    saveall(maps_->sells);
    saveall(maps_->recycles);
}

// The pool after the manager, so that it is destroyed first: what is still queued then finds its shops.
runtimeshopmanager globalruntimeshopmanager;
ThreadPool taskpool;

}  // namespace shopsystem
