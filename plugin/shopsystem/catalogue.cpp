#include "plugin/shopsystem/catalogue.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <utility>

#include "platform/clock.h"
#include "platform/host.h"
#include "platform/turn.h"
#include "plugin/base/directories.h"
#include "plugin/shopsystem/blockdecoder.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace shopsystem {

namespace {

// A shelf is cut where it has grown to twice as many, so that one change costs little and a page is selected over few.
constexpr std::size_t rowsonashelf = 4096, shopsonashelf = 4096;

constexpr std::size_t mostfound = 16;

bool hasfile(const std::string& xuid) { return platform::host().files->exists(shopfile(xuid)); }

std::shared_ptr<const shelves> made(std::vector<std::shared_ptr<const shelf>> all) {
    static std::atomic<std::uint64_t> last = 0;
    shelves now{std::move(all), goodsblock::header().since, goodsblock::header().until, ++last};
    for (const auto& on : now.all) {
        now.since = std::max(now.since, on->since());
        now.until = std::min(now.until, on->until());
    }
    return std::make_shared<const shelves>(std::move(now));
}

void cut(std::vector<shelf::shop> shops, const shelf* before, std::vector<std::shared_ptr<const shelf>>& into) {
    std::size_t rows = 0;
    for (const auto& each : shops) rows += each.rows;
    const bool istoolarge = rows > 2 * rowsonashelf || shops.size() > 2 * shopsonashelf;
    std::vector<shelf::shop> piece;
    std::size_t have = 0;
    const auto put = [&](const std::vector<shelf::shop>& of) {
        into.push_back(std::make_shared<const shelf>(of, before));
    };
    if (!istoolarge && !shops.empty()) return put(shops);
    for (auto& each : shops) {
        have += each.rows;
        piece.push_back(std::move(each));
        if (have < rowsonashelf && piece.size() < shopsonashelf) continue;
        put(std::exchange(piece, {}));
        have = 0;
    }
    if (!piece.empty()) put(piece);
}

// Makes what has become of a shelf, or the first ones where there were none.
template <class News>
void renew(const shelf* old, News change, News end, std::vector<std::shared_ptr<const shelf>>& into) {
    std::vector<shelf::shop> merged;
    std::size_t next = 0;
    const auto keepupto = [&](std::size_t last) {
        for (; next < last; ++next)
            merged.push_back(
                {old->goods(next), static_cast<std::ptrdiff_t>(next), old->firstof(next + 1) - old->firstof(next)});
    };
    for (; change != end; ++change) {
        const auto& [key, goods] = *change;
        if (old != nullptr) {
            keepupto(old->behind(key));
            if (old->find(key) >= 0) ++next;
        }
        if (goods) merged.push_back({*goods, -1, goods->block->rows.size()});
    }
    if (old != nullptr) keepupto(old->shops().size());
    cut(std::move(merged), old, into);
}

bool issame(const shelves& all, const shopgoods& fresh) {
    const auto& key = fresh.block->shop.xuid;
    const auto on = shelfof(all, key);
    return on != nullptr && on->issame(static_cast<std::size_t>(on->find(key)), fresh);
}

}  // namespace

catalogue& catalogueof(int kind) {
    static catalogue sells(sell), recycles(recycle);
    return kind == sell ? sells : recycles;
}

// What the files say. A shop in the cache is what its object is, whatever becomes of its file, until it is forgotten.
void catalogue::listen() {
    if (watch_ == nullptr) watch_ = platform::watchDirectory(ordomart::paths::data);
    auto heard = watch_->take();
    if (heard.all) {
        for (auto& key : shopfilekeys()) told_.insert(std::move(key));
        for (const auto& on : current_->all)
            for (const auto& block : on->shops()) told_.insert(block->shop.xuid);
        return;
    }
    constexpr std::string_view suffix = ".json";
    for (auto& name : heard.names) {
        if (!name.ends_with(suffix)) continue;
        name.resize(name.size() - suffix.size());
        told_.insert(std::move(name));
    }
}

std::shared_ptr<const shelves> catalogue::uptodate(const question& goeson, const std::string& only) {
    const std::lock_guard alone(updating_);
    if (current_ == nullptr) apply({});
    listen();
    {
        const platform::Turn turn;
        for (const auto& key : std::exchange(changed_, {})) waiting_.insert(key);
    }
    const auto now = unixseconds();
    if (!(current_->since < now && now <= current_->until))
        for (const auto& on : current_->all) {
            if (on->since() < now && now <= on->until()) continue;
            for (const auto& block : on->shops())
                if (!block->shop.holdsat(now)) waiting_.insert(block->shop.xuid);
        }
    for (const auto& key : told_) {
        if (!waiting_.contains(key) && shelfof(*current_, key) != nullptr && hasfile(key)) {
            const platform::Turn turn;
            if (globalruntimeshopmanager.cached(key, kind_) != nullptr) continue;
        }
        waiting_.insert(key);
    }
    told_.clear();
    return lookatall(goeson, only) ? current_ : nullptr;
}

// What could be looked at is applied, whatever ends it; the rest waits for the next one.
bool catalogue::lookatall(const question& goeson, const std::string& only) {
    news changes;
    std::vector<std::string> unread;
    bool iswhole = true;
    const auto lookat = [&](const std::string& key) {
        if (!look(key, !only.empty(), changes)) unread.push_back(key);
        waiting_.erase(key);
    };
    const auto settle = [&] {
        for (auto& key : unread) waiting_.insert(std::move(key));
        apply(changes);
    };
    try {
        if (only.empty()) {
            while (iswhole && !waiting_.empty()) {
                iswhole = goeson();
                if (iswhole) lookat(std::string(*waiting_.begin()));
            }
        } else if (waiting_.contains(only) || shelfof(*current_, only) == nullptr) {
            lookat(only);
            if (!hasfile(only)) waiting_.insert(only);  // it is there for this list alone
        }
    } catch (...) {
        settle();
        throw;
    }
    settle();
    return iswhole;
}

// False for one that cannot be read: it is tried again each time, since nobody tells when that has passed.
bool catalogue::look(const std::string& xuid, bool istobeworkedon, news& changes) {
    auto& now = changes[xuid];
    if (xuid.empty()) return true;
    try {
        if (!istobeworkedon) {
            now = decodefile(xuid, kind_, [&](const shopgoods& fresh) { return issame(*current_, fresh); });
            if (!now && !hasfile(xuid)) return true;
        }
        if (!now) now = decodeshop(xuid, kind_);  // it is made where there is none
        return true;
    } catch (const std::exception& e) {
        const platform::Turn turn;
        reportbroken(xuid, kind_, e.what());
        return false;
    }
}

void catalogue::apply(const news& changes) {
    if (current_ != nullptr && changes.empty()) return;
    std::vector<std::shared_ptr<const shelf>> all;
    static const decltype(all) none;
    const auto& before = current_ == nullptr ? none : current_->all;
    all.reserve(before.size() + 1);
    auto unchanged = before.begin();
    for (auto change = changes.begin(); change != changes.end();) {
        const auto behind = shelfbehind(unchanged, before.end(), change->first);
        const auto at = behind == unchanged ? behind : behind - 1;
        all.insert(all.end(), unchanged, at);
        const shelf* const old = at == before.end() ? nullptr : at->get();
        unchanged = old == nullptr ? at : at + 1;
        // Each shelf takes what stands in front of the next one, the last all that is left.
        const auto end = unchanged == before.end() ? changes.end() : changes.lower_bound((*unchanged)->firstkey());
        renew(old, change, end, all);
        change = end;
    }
    all.insert(all.end(), unchanged, before.end());
    auto next = made(std::move(all));
    const std::lock_guard alone(publishing_);
    current_ = std::move(next);
}

std::shared_ptr<const foundrows> catalogue::find(const std::shared_ptr<const shelves>& among, rowquery query) {
    std::shared_ptr<const foundrows> last;
    {
        const std::lock_guard alone(publishing_);
        std::erase_if(found_, [](const auto& each) { return each.expired(); });
        for (const auto& each : found_) {
            auto known = each.lock();
            if (known == nullptr) continue;
            if (known->answers(among.get(), query)) return known;
            if (known->query() == query) last = std::move(known);
        }
    }
    auto found = std::make_shared<const foundrows>(among, std::move(query), last.get());
    const std::lock_guard alone(publishing_);
    if (found_.size() >= mostfound) found_.erase(found_.begin());
    found_.push_back(found);
    return found;
}

void catalogue::clear() {
    const std::lock_guard alone(updating_);
    {
        const platform::Turn turn;
        changed_.clear();
    }
    watch_ = nullptr;
    told_.clear();
    waiting_.clear();
    const std::lock_guard also(publishing_);
    current_ = nullptr;
    found_.clear();
}

}  // namespace shopsystem
