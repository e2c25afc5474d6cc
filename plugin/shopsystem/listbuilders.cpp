// The queue and its builders. A builder looks for more before it ends, under the lock under which errands come in, so
// that none is left behind. Between two shops of a long walk it serves whatever needs no walk of its own: the turn of a
// page does not wait for another player's list.
#include "plugin/shopsystem/listbuilders.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <utility>

#include "platform/background.h"
#include "plugin/base/guards.h"
#include "plugin/shopsystem/playershopstate.h"

namespace shopsystem {

struct builderpool::job {
    listerrand errand;
    std::optional<listorder> list;
    std::shared_ptr<void> oldrows;  // may be what is found again
    std::atomic<bool> dropped = false;

    [[nodiscard]] bool isquick() const { return !list && !errand.isslow; }
};

// Those who are served by one walk.
struct builderpool::party {
    const jobs& members;
    std::unique_ptr<listwalk> walk;  // once it is done

    [[nodiscard]] bool isawaited() const {
        return !Background::stopping() &&
               std::any_of(members.begin(), members.end(), [](const auto& each) { return !each->dropped; });
    }
};

void builderpool::order(listerrand errand) {
    const auto added = std::make_shared<job>();
    if (errand.list) {
        auto& state = getplayershopstate(errand.xuid);
        added->list = orderlist(state, *errand.list, errand.shop);
        added->oldrows = emptylist(state, *errand.list);
    }
    added->errand = std::move(errand);

    std::unique_lock lock(mutex_);
    const auto before = std::find_if(waiting_.begin(), waiting_.end(),
                                     [&](const auto& each) { return each->errand.session == added->errand.session; });
    if (before == waiting_.end())
        waiting_.push_back(added);
    else
        waste_.push_back(std::exchange(*before, added));
    // Whoever has his first one in work comes to it.
    if (isinwork(added->errand.session)) return;
    try {
        ensurebuilder(lock);
    } catch (const std::system_error&) {
        lock.lock();
        if (running_ > 0) return;
        waiting_.remove(added);
        throw;
    }
}

void builderpool::drop(std::uint64_t session, const void* picture) {
    const auto ismeant = [&](const auto& each) {
        return each->errand.session == session && (picture == nullptr || each->errand.picture == picture);
    };
    const std::lock_guard lock(mutex_);
    waiting_.remove_if(ismeant);
    for (const auto& each : inwork_)
        if (ismeant(each)) each->dropped = true;
}

void builderpool::discard(std::shared_ptr<void> waste) {
    std::unique_lock lock(mutex_);
    waste_.push_back(std::move(waste));
    try {
        ensurebuilder(lock);
    } catch (const std::system_error&) {
        // The next builder frees it.
    }
}

void builderpool::ensurebuilder(std::unique_lock<std::mutex>& lock) {
    if (running_ == mostbuilders) return;
    ++running_;
    lock.unlock();
    try {
        Background::start([this] { work(); });
    } catch (...) {
        lock.lock();
        --running_;
        lock.unlock();
        throw;
    }
}

void builderpool::work() {
    for (;;) {
        const auto group = next(kind::any);
        if (group.empty()) return;
        serve(group);
    }
}

bool builderpool::isinwork(std::uint64_t session) const {
    return std::any_of(inwork_.begin(), inwork_.end(),
                       [&](const auto& each) { return each->errand.session == session; });
}

builderpool::jobs builderpool::next(kind which) {
    std::vector<std::shared_ptr<void>> waste;
    jobs group;
    const std::lock_guard lock(mutex_);
    waste.swap(waste_);
    if (Background::stopping()) waiting_.clear();
    for (auto place = waiting_.begin(); place != waiting_.end();) {
        const auto& each = *place;
        const bool fits =
            group.empty() ? which == kind::any || each->isquick() : each->list && each->list == group.front()->list;
        if (!fits || isinwork(each->errand.session)) {
            ++place;
            continue;
        }
        group.push_back(each);
        place = waiting_.erase(place);
        if (!group.front()->list) break;
    }
    inwork_.insert(inwork_.end(), group.begin(), group.end());
    if (group.empty() && which == kind::any) --running_;
    return group;
}

void builderpool::serve(const jobs& group) {
    party served{group, nullptr};
    for (const auto& each : group) {
        if (!each->dropped) {
            listwork work(*this, served, *each);
            ordomart::envelope([&] { each->errand.body(work); });
        }
        {
            const std::lock_guard lock(mutex_);
            std::erase(inwork_, each);
        }
        if (group.size() > 1) servequick();
    }
}

void builderpool::servequick() {
    for (auto group = next(kind::quick); !group.empty(); group = next(kind::quick)) serve(group);
}

bool listwork::goeson() {
    pool_.servequick();
    return party_.isawaited();
}

bool listwork::makelist() {
    if (party_.walk == nullptr) {
        auto walk = walkfor(*job_.list);
        if (!walk->run([this] { return goeson(); })) return false;
        party_.walk = std::move(walk);
    }
    return party_.walk->deliver(job_.errand.xuid, [this] { return !job_.dropped; });
}

builderpool listbuilders;

}  // namespace shopsystem
