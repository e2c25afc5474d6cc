// The shops of one kind in the cache, in the order in which they came in, found by owner key. An entry never moves, so
// that a save task may hold on to it; it is erased only when no task does. Of a shop that is erased the revision stays
// known for the run, so that a form from before fits none that is read later.
#pragma once

#include <algorithm>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace shopsystem {

// FNV-1a over the key's bytes.
struct keyhash {
    std::size_t operator()(std::string_view key) const {
        std::uint64_t hash = 14695981039346656037ULL;
        for (const char c : key) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
        return static_cast<std::size_t>(hash);
    }
};

// When a save that failed is tried again: after 1, 2, 4 ... ticks, and from then on once a minute.
class retries {
public:
    // True when this is a new reason.
    bool failed(const std::string& why) {
        pause_ = std::clamp(2 * pause_, 1, longest);
        left_ = pause_;
        return std::exchange(why_, why) != why;
    }
    // True when it had failed before.
    bool worked() { return !std::exchange(*this, {}).why_.empty(); }
    [[nodiscard]] bool waits() const { return left_ > 0; }
    // One tick passes; true when it is time.
    bool isdue() { return --left_ == 0; }
    // Why the last save failed; empty when it worked.
    [[nodiscard]] const std::string& why() const { return why_; }

private:
    static constexpr int longest = 60;
    std::string why_;
    int pause_ = 0, left_ = 0;
};

template <class Shop>
class shoptable {
public:
    struct entry {
        std::string key;
        Shop shop;
        int tasks = 0;         // save tasks that have not ended
        bool waiting = false;  // one of them has yet to look at the shop
        retries saves = {};
    };
    using iterator = typename std::list<entry>::iterator;

    [[nodiscard]] Shop* find(const std::string& key) {
        const auto found = places_.find(key);
        return found == places_.end() ? nullptr : &found->second->shop;
    }
    // `stamp` is that of the file which the shop was read from. The revision is the one that the same file had for
    // whoever read it without a shop; else it is one beyond the last, since the file may have been changed by hand.
    Shop& insert(const std::string& key, Shop shop, std::uint64_t stamp) {
        if (const auto last = known_.find(key); last != known_.end())
            shop.revision = last->second.revision + (last->second.stamp == stamp && stamp != 0 ? 0 : 1);
        entries_.push_back({key, std::move(shop)});
        places_.emplace(entries_.back().key, std::prev(entries_.end()));
        return entries_.back().shop;
    }
    iterator erase(iterator place) {
        known_[place->key] = {place->shop.revision, 0};
        places_.erase(place->key);
        return entries_.erase(place);
    }
    // The revision of a shop that is read from its file and not kept here. `issame` says that nothing in it is other
    // than in the last one that was so read.
    std::uint32_t readaside(const std::string& key, std::uint64_t stamp, bool issame) {
        const auto [place, isnew] = known_.try_emplace(key, standing{0, stamp});
        auto& [revision, last] = place->second;
        const bool isold = last != 0 && (last == stamp || issame);
        if (!isnew && !isold) ++revision;
        last = stamp;
        return revision;
    }
    // The revision of a shop that is not here, as far as somebody has seen it in this run.
    [[nodiscard]] std::optional<std::uint32_t> lastrevision(const std::string& key) const {
        const auto last = known_.find(key);
        return last == known_.end() ? std::nullopt : std::optional(last->second.revision);
    }
    [[nodiscard]] iterator begin() { return entries_.begin(); }
    [[nodiscard]] iterator end() { return entries_.end(); }

private:
    std::list<entry> entries_;
    std::unordered_map<std::string_view, iterator, keyhash> places_;  // the keys are those of the entries
    struct standing {
        std::uint32_t revision;
        std::uint64_t stamp;  // of the file in which it stood so; 0: nobody knows
    };
    std::unordered_map<std::string, standing, keyhash> known_;  // of shops that are not here
};

}  // namespace shopsystem
