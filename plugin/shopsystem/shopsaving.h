// The states by which the shops of a table are saved and forgotten. All of it in a turn, but for the writing itself,
// which is a task of the pool. A save that fails, for whatever reason, leaves the shop in use and dirty, and is tried
// again; the log tells when that begins, when the reason is another, and when it is over.
#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/turn.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/shopfiles.h"
#include "plugin/shopsystem/shoptable.h"
#include "plugin/shopsystem/taskpool.h"
#include "plugin/shopsystem/unsaved.h"

namespace shopsystem {

template <class Shop>
inline constexpr shoptype sectionof = std::is_same_v<Shop, sellshop> ? shoptype::sell : shoptype::recycle;

template <class Shop>
class saving {
public:
    using entry = typename shoptable<Shop>::entry;

    // `other` gives the other section of an owner's file, null when it is not in the cache. It is asked on the worker.
    saving(shoptable<Shop>& table, std::function<json(const std::string& xuid)> other)
        : table_(table), other_(std::move(other)) {}

    void tick() {
        for (auto place = table_.begin(); place != table_.end();) {
            if (isdone(*place)) {
                place = table_.erase(place);
            } else {
                step(*place);
                ++place;
            }
        }
    }

    // Enqueues a save of whatever has not reached its file, whether or not it waits for another try.
    void saveall() {
        for (auto& each : table_)
            if (!each.waiting && (each.shop.isdirty || each.shop.cachestate == savewanted)) enqueue(each);
    }

    // After the last save: puts aside what did not reach its file.
    void keepall(std::vector<std::string>& unsaved) {
        for (auto& each : table_) {
            if (!each.shop.isdirty && each.shop.cachestate != savewanted && each.tasks == 0) continue;
            const auto& why = each.saves.why();
            unsaved.push_back(
                keepaside(each.key, sectionof<Shop>, written(each.shop), why.empty() ? "its save has not ended" : why));
        }
    }

private:
    static bool isaged(const baseshop& shop) { return shop.idleticks > maxidleticks && !shop.keepincache; }
    static bool isdone(const entry& each) {
        return each.shop.cachestate == saved && isaged(each.shop) && !each.shop.isdirty && each.tasks == 0;
    }

    static json written(Shop& shop) {
        json section;
        shop.savetojson(section);
        return section;
    }

    void step(entry& each) {
        Shop& shop = each.shop;
        if (shop.cachestate == savewanted) {
            enqueue(each);
        } else if (shop.cachestate == saved) {
            shop.cachestate = idle;
        } else if (shop.cachestate == idle && each.saves.waits()) {
            if (each.saves.isdue()) enqueue(each);
        } else if (shop.cachestate == idle) {
            if (!shop.keepincache) ++shop.idleticks;
            if (shop.isdirty || isaged(shop)) shop.cachestate = savewanted;
            if (!isaged(shop)) shop.isdirty = false;
        }
    }

    void enqueue(entry& each) {
        taskpool.enqueue([this, &each] { save(each); });
        each.shop.cachestate = queued;
        each.waiting = true;
        ++each.tasks;
    }

    // On the worker.
    void save(entry& each) {
        const auto why = trytosave(each);
        const Turn turn;
        --each.tasks;
        if (why)
            failed(each, *why);
        else
            succeeded(each);
    }

    // Why it failed, if it did.
    std::optional<std::string> trytosave(entry& each) {
        try {
            saveshopdata(each.key, look(each), sectionof<Shop>, [&] { return other_(each.key); });
            return std::nullopt;
        } catch (const std::exception& e) {
            return e.what();
        } catch (...) {
            return shopfile(each.key) + ": something unknown";
        }
    }

    json look(entry& each) {
        const Turn turn;
        each.waiting = false;
        each.shop.isdirty = false;
        return written(each.shop);
    }

    void succeeded(entry& each) {
        each.shop.cachestate = saved;
        if (each.saves.worked())
            ordomart::logger.info("The shop is saved again ({}): {}", sectionkey(sectionof<Shop>), shopfile(each.key));
    }

    void failed(entry& each, const std::string& why) {
        each.waiting = false;
        each.shop.isdirty = true;
        each.shop.idleticks = 0;  // not to be forgotten before it is on the disk
        each.shop.cachestate = idle;
        if (each.saves.failed(why))
            ordomart::logger.error("The shop is not saved ({}), and this is tried again: {}",
                                   sectionkey(sectionof<Shop>), why);
    }

    shoptable<Shop>& table_;
    const std::function<json(const std::string& xuid)> other_;
};

}  // namespace shopsystem
