// The shops of one kind in the cache, in the order in which they came in, found by owner key. An entry never moves, so
// that a save task may hold on to it; it is erased only when no task does. Of a shop that is erased the revision stays
// known for the run, so that a form from before fits none that is read later.
#pragma once

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

template <class Shop>
class shoptable {
public:
    struct entry {
        std::string key;
        Shop shop;
        int tasks = 0;         // save tasks that have not ended
        bool waiting = false;  // one of them has yet to look at the shop
    };
    using iterator = typename std::list<entry>::iterator;

    [[nodiscard]] Shop* find(const std::string& key) {
        const auto found = places_.find(key);
        return found == places_.end() ? nullptr : &found->second->shop;
    }
    // One revision beyond the last of a shop that has been here before: the file may have been changed by hand
    // meanwhile.
    Shop& insert(const std::string& key, Shop shop) {
        if (const auto left = lastrevisions_.find(key); left != lastrevisions_.end()) shop.revision = left->second + 1;
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
