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

#include "platform/host.h"
#include "platform/turn.h"
#include "plugin/base/counts.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"
#include "plugin/shopsystem/shopfiles.h"
#include "plugin/shopsystem/shoprecords.h"
#include "plugin/shopsystem/shoptable.h"
#include "plugin/shopsystem/taskpool.h"

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
                catalogueof(sectionof<Shop>).changed(place->key);
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

    // After the last save.
    void tellunsaved(std::vector<std::string>& unsaved) const {
        for (const auto& each : table_) {
            if (!each.shop.isdirty && each.shop.cachestate != savewanted && each.tasks == 0) continue;
            const auto& why = each.saves.why();
            unsaved.push_back(fmt::format("{} ({}): {}; {}", shopfile(each.key), sectionkey(sectionof<Shop>),
                                          why.empty() ? "its save has not ended" : why,
                                          host().records != nullptr
                                              ? "the server's records have it, and the next start brings it in"
                                              : "what changed since it was saved is lost"));
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
        const auto [why, revision] = trytosave(each);
        const Turn turn;
        --each.tasks;
        if (why)
            failed(each, *why);
        else if (revision)
            succeeded(each, *revision);
    }

    struct outcome {
        std::optional<std::string> why;         // it failed
        std::optional<std::uint32_t> revision;  // what is in the file now; nothing when it is not time yet
    };

    outcome trytosave(entry& each) {
        try {
            const auto seen = look(each);
            if (!seen) return {};
            saveshopdata(each.key, seen->section, sectionof<Shop>, [&] { return other_(each.key); });
            return {{}, seen->revision};
        } catch (const std::exception& e) {
            return {e.what(), {}};
        } catch (...) {
            return {shopfile(each.key) + ": something unknown", {}};
        }
    }

    struct sight {
        json section;
        std::uint32_t revision;
    };

    // Nothing, with the save put off, while the file would be ahead of the purses and stacks on the disk.
    std::optional<sight> look(entry& each) {
        const Turn turn;
        each.waiting = false;
        if (!recordwritten(each.key, sectionof<Shop>)) {
            each.shop.cachestate = savewanted;
            return std::nullopt;
        }
        each.shop.isdirty = false;
        return sight{written(each.shop), each.shop.revision};
    }

    void succeeded(entry& each, std::uint32_t revision) {
        ordomart::counts.saves.add();
        each.shop.cachestate = saved;
        if (each.shop.revision == revision) eraserecord(each.key, sectionof<Shop>);
        if (each.saves.worked())
            ordomart::logger.info("The shop is saved again ({}): {}", sectionkey(sectionof<Shop>), shopfile(each.key));
    }

    void failed(entry& each, const std::string& why) {
        ordomart::counts.savefailures.add();
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
