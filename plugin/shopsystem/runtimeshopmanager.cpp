// Bringing shops in. A shop that is not in the cache is read completely before its entry is made, so that a broken file
// leaves no empty shop behind that could be saved over it.
#include "plugin/shopsystem/runtimeshopmanager.h"

#include <stdexcept>

#include "platform/turn.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/shoprecords.h"
#include "plugin/shopsystem/shopsaving.h"

namespace shopsystem {

namespace {

template <class Shop>
struct freshshop {
    Shop shop;
    bool isnewfile;
    std::uint64_t stamp;  // of its file; 0: nobody knows
    bool isofrecord = false;
};

template <class Shop>
Shop shopof(const std::string& xuid, const json& section) {
    Shop shop(xuid);
    namingsection(xuid, sectionof<Shop>, [&] { shop.loadfromjson(section); });
    shop.isloaded = true;
    return shop;
}

template <class Shop>
freshshop<Shop> readshop(const std::string& xuid) {
    if (const auto left = leftrecord(xuid, sectionof<Shop>)) {
        try {
            freshshop<Shop> fresh{shopof<Shop>(xuid, *left), false, 0, true};
            fresh.shop.isdirty = true;  // its file does not have it
            return fresh;
        } catch (const shopfileerror& e) {
            setasideleftrecord(xuid, sectionof<Shop>, e.what());
        }
    }
    const auto before = filestamp(xuid);
    const auto [content, isnewfile] = loadsection(xuid, sectionof<Shop>);
    return {shopof<Shop>(xuid, content), isnewfile, before == filestamp(xuid) ? before : 0};
}

// One kind of shops, and the other kind, with which it shares the files.
template <class Shop, class Other>
class shopkind {
public:
    shopkind(shoptable<Shop>& shops, shoptable<Other>& otherkind)
        : saves(shops,
                [&otherkind](const std::string& xuid) {
                    const Turn turn;
                    json section;
                    if (Other* other = otherkind.find(xuid)) other->savetojson(section);
                    return section;
                }),
          shops_(shops),
          others_(otherkind) {}

    Shop& get(const std::string& xuid) {
        if (Shop* shop = touch(xuid)) return *shop;
        return enter(xuid, readshop<Shop>(xuid));
    }

    void bring(const std::string& xuid) {
        {
            const Turn turn;
            if (touch(xuid) != nullptr) return;
        }
        for (;;) {
            auto fresh = readshop<Shop>(xuid);
            const Turn turn;
            // Another thread may have been faster, and its object may have changed since.
            if (touch(xuid) != nullptr) return;
            // And a record may have been put meanwhile, which is more than the file.
            if (!fresh.isofrecord && hasleftrecord(xuid, sectionof<Shop>)) continue;
            enter(xuid, std::move(fresh));
            return;
        }
    }

    void glance(const std::string& xuid, const std::function<void(baseshop&)>& use) {
        const auto usecached = [&] {
            Shop* const shop = shops_.find(xuid);
            if (shop != nullptr) use(*shop);
            return shop != nullptr;
        };
        {
            const Turn turn;
            if (usecached()) return;
        }
        auto fresh = readshop<Shop>(xuid);
        const Turn turn;
        if (!usecached()) use(fresh.shop);
    }

    [[nodiscard]] shoptable<Shop>& shops() { return shops_; }
    [[nodiscard]] Shop* cached(const std::string& xuid) { return shops_.find(xuid); }

    saving<Shop> saves;

private:
    Shop* touch(const std::string& xuid) {
        Shop* shop = shops_.find(xuid);
        if (shop != nullptr) shop->idleticks = 0;
        return shop;
    }

    Shop& enter(const std::string& xuid, freshshop<Shop> fresh) {
        forgetbroken(xuid, sectionof<Shop>);
        forgetleftrecord(xuid, sectionof<Shop>);
        // The file had gone or was emptied under the owner's other shop, which is not in the new one.
        if (Other* other = others_.find(xuid); other != nullptr && fresh.isnewfile) {
            other->isdirty = true;
            other->idleticks = 0;
        }
        catalogueof(sectionof<Shop>).changed(xuid);
        return shops_.insert(xuid, std::move(fresh.shop), fresh.stamp);
    }

    shoptable<Shop>& shops_;
    shoptable<Other>& others_;
};

}  // namespace

struct runtimeshopmanager::maps {
    shoptable<sellshop> selltable;
    shoptable<recycleshop> recycletable;
    shopkind<sellshop, recycleshop> sells{selltable, recycletable};
    shopkind<recycleshop, sellshop> recycles{recycletable, selltable};

    template <class Work>
    void each(Work work) {
        work(sells);
        work(recycles);
    }
    template <class Work>
    decltype(auto) oftype(int type, Work work) {
        if (type == shoptype::sell) return work(sells);
        if (type == shoptype::recycle) return work(recycles);
        throw std::invalid_argument("no shop type: " + std::to_string(type));
    }
};

runtimeshopmanager::runtimeshopmanager() : maps_(std::make_unique<maps>()) {}
runtimeshopmanager::~runtimeshopmanager() = default;

sellshop& runtimeshopmanager::getsellshop(const std::string& xuid) { return maps_->sells.get(xuid); }
recycleshop& runtimeshopmanager::getrecycleshop(const std::string& xuid) { return maps_->recycles.get(xuid); }

baseshop& runtimeshopmanager::getshop(const std::string& xuid, int type) {
    return maps_->oftype(type, [&](auto& kind) -> baseshop& { return kind.get(xuid); });
}

baseshop* runtimeshopmanager::cached(const std::string& xuid, int type) {
    return maps_->oftype(type, [&](auto& kind) -> baseshop* { return kind.cached(xuid); });
}

std::set<std::string> runtimeshopmanager::cachedowners() {
    std::set<std::string> owners;
    maps_->each([&](auto& kind) {
        for (const auto& each : kind.shops()) owners.insert(each.key);
    });
    return owners;
}

void runtimeshopmanager::bringin(const std::string& xuid, int type) {
    maps_->oftype(type, [&](auto& kind) { kind.bring(xuid); });
}

void runtimeshopmanager::glance(const std::string& xuid, int type, const std::function<void(baseshop&)>& use) {
    maps_->oftype(type, [&](auto& kind) { kind.glance(xuid, use); });
}

std::optional<std::uint32_t> runtimeshopmanager::readaside(const std::string& xuid, int type, std::uint64_t stamp,
                                                           bool issame) {
    return maps_->oftype(type, [&](auto& kind) -> std::optional<std::uint32_t> {
        if (kind.cached(xuid) != nullptr) return std::nullopt;
        return kind.shops().readaside(xuid, stamp, issame);
    });
}

std::uint32_t runtimeshopmanager::revisionof(const std::string& xuid, int type) {
    return maps_->oftype(type, [&](auto& kind) {
        if (const auto* shop = kind.cached(xuid)) return shop->revision;
        const auto last = kind.shops().lastrevision(xuid);
        if (!last) return kind.get(xuid).revision;
        taskpool.enqueue([this, xuid, type] { bringin(xuid, type); });
        return *last;
    });
}

void runtimeshopmanager::tick() {
    const Turn turn;
    maps_->each([](auto& kind) { kind.saves.tick(); });
}

void runtimeshopmanager::savealldirty() {
    const Turn turn;
    maps_->each([](auto& kind) { kind.saves.saveall(); });
}

void runtimeshopmanager::tellunsaved(std::vector<std::string>& unsaved) {
    const Turn turn;
    maps_->each([&](auto& kind) { kind.saves.tellunsaved(unsaved); });
}

// The pool after the manager, so that it is destroyed first: what is still queued then finds its shops.
runtimeshopmanager globalruntimeshopmanager;
ThreadPool taskpool;

}  // namespace shopsystem
