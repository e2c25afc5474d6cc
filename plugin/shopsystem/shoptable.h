// The shops of one kind in the cache, in the order in which they came in, found by owner key. An entry never moves, so
// that a save task may hold on to it; it is erased only when no task does. Of a shop that is erased the revision stays
// known for the run, so that a form from before fits none that is read later.
#pragma once

#include <algorithm>
#include <cstdint>
#include <list>
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
    // One revision beyond the last of a shop that has been here before: the file may have been changed by hand
    // meanwhile.
    Shop& insert(const std::string& key, Shop shop) {
        if (const auto last = lastrevisions_.find(key); last != lastrevisions_.end()) shop.revision = last->second + 1;
        entries_.push_back({key, std::move(shop)});
        places_.emplace(entries_.back().key, std::prev(entries_.end()));
        return entries_.back().shop;
    }
    iterator erase(iterator place) {
        lastrevisions_[place->key] = place->shop.revision;
        places_.erase(place->key);
        return entries_.erase(place);
    }
    [[nodiscard]] iterator begin() { return entries_.begin(); }
    [[nodiscard]] iterator end() { return entries_.end(); }

private:
    std::list<entry> entries_;
    std::unordered_map<std::string_view, iterator, keyhash> places_;         // the keys are those of the entries
    std::unordered_map<std::string, std::uint32_t, keyhash> lastrevisions_;  // of shops that were forgotten
};

}  // namespace shopsystem
