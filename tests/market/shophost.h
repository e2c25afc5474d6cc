// What the shop model needs of a host: files in memory that are listed, a clock that stands until it is moved, a turn,
// a count of work under way, and a few items.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "platform/background.h"
#include "platform/clock.h"
#include "platform/item.h"
#include "platform/records.h"
#include "platform/turn.h"
#include "plugin/shopsystem/catalogue.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "tests/market/quiethost.h"

namespace market_tests {

using nlohmann::json;

// Until they know what they cannot hold.
inline void searchoften(const shopsystem::rowtexts& texts) {
    for (int n = 0; n < 100 && texts.grams() == nullptr; ++n) continue;
    ASSERT_NE(texts.grams(), nullptr);
}

class ListedFiles : public MemoryFiles {
public:
    mutable std::map<std::string, int> reads;     // how often each file was read
    mutable std::function<void()> behindtheread;  // happens once, before whoever reads goes on

    std::optional<std::string> read(const std::string& path) const override {
        ++reads[path];
        auto text = MemoryFiles::read(path);
        if (behindtheread) std::exchange(behindtheread, nullptr)();
        return text;
    }
    std::vector<std::string> list(const std::string& directory) const override {
        std::vector<std::string> names;
        for (const auto& [path, content] : contents)
            if (path.starts_with(directory)) names.push_back(path.substr(directory.size()));
        return names;
    }
};

// A file that did not change is not told of, so that nothing is found by looking at everything again; or else each time
// all may have changed, and whatever has gone is found by looking alone.
struct StampedFiles : ListedFiles {
    struct Lost : platform::DirectoryWatch {
        Changes take() override { return {.all = true}; }
    };
    bool islost = false;
    std::unique_ptr<platform::DirectoryWatch> watch(const std::string&) override {
        return islost ? std::make_unique<Lost>() : nullptr;
    }
    std::optional<platform::FileStamp> stamp(const std::string& path) const override {
        const auto found = contents.find(path);
        if (found == contents.end()) return std::nullopt;
        return platform::FileStamp{.file = std::hash<std::string>()(found->second), .size = found->second.size()};
    }
};

class StandingClock : public platform::Clock {
public:
    std::int64_t seconds = 1'000'000;
    std::int64_t unixmilliseconds() const override { return seconds * 1000; }
};

class OneTurn : public platform::TurnKeeper {
public:
    std::function<void()> before;  // happens once, before whoever takes the next turn has it

    void take() override {
        if (before) std::exchange(before, nullptr)();
        mutex_.lock();
    }
    void give() override { mutex_.unlock(); }

private:
    std::recursive_mutex mutex_;
};

// The count outlives its host, since the worker drops a token only behind the end of the task.
class Counted : public platform::BackgroundThreads {
public:
    void start(std::function<void()> body) override { body(); }
    std::shared_ptr<void> busy() override {
        ++*count_;
        return {count_.get(), [count = count_](void*) {
                    --*count;
                    count->notify_all();
                }};
    }
    [[nodiscard]] int underway() const { return *count_; }
    void wait() const {
        for (int now = *count_; now != 0; now = *count_) count_->wait(now);
    }

private:
    std::shared_ptr<std::atomic<int>> count_ = std::make_shared<std::atomic<int>>(0);
};

class FewItems : public platform::ItemRegistry {
public:
    const platform::ItemInfo* find(std::string_view name) const override {
        for (const auto& item : items_)
            if (item.name == name || item.name == "minecraft:" + std::string(name)) return &item;
        return nullptr;
    }
    const platform::ItemInfo* byid(std::int32_t) const override { return nullptr; }
    std::string hovertext(const platform::ItemStack&) const override { return {}; }
    const std::vector<platform::ItemStack>& creativelist() const override { return none_; }

private:
    std::vector<platform::ItemInfo> items_ = {{"minecraft:apple", "item.apple.name", 1},
                                              {"minecraft:dirt", "tile.dirt.name", 2},
                                              {"minecraft:diamond_sword", "item.diamond_sword.name", 3, 1, 1561}};
    std::vector<platform::ItemStack> none_;
};

// Records whose passes end by call.
class MemoryRecords : public platform::Records {
public:
    using Table = std::map<std::string, std::string>;
    std::map<std::string, Table> tables;  // what is on the disk

    void put(const std::string& table, const std::string& key, Bytes bytes) override {
        pending_[{table, key}] = std::move(bytes);
    }
    void erase(const std::string& table, const std::string& key) override { pending_[{table, key}] = nullptr; }
    std::optional<std::string> get(const std::string& table, const std::string& key) override {
        const auto found = tables[table].find(key);
        return found != tables[table].end() ? std::optional(found->second) : std::nullopt;
    }
    std::vector<std::string> keys(const std::string& table, const std::string& from, std::size_t most) override {
        std::vector<std::string> found;
        auto& all = tables[table];
        for (auto place = all.lower_bound(from); place != all.end() && found.size() < most; ++place)
            found.push_back(place->first);
        return found;
    }
    std::vector<Row> rows(const std::string& table, const Range& keys, std::size_t most, bool backwards) override {
        std::vector<Row> found;
        for (const auto& [key, bytes] : tables[table])
            if (key >= keys.from && (keys.until.empty() || key < keys.until)) found.push_back({key, bytes});
        if (backwards) std::ranges::reverse(found);
        found.resize(std::min(found.size(), most));
        return found;
    }
    bool written(const std::string& table, const std::string& key) const override {
        const auto found = pending_.find({table, key});
        return found == pending_.end() || !found->second;
    }
    void endpass() {
        const platform::Turn turn;  // saves of the pass before may still be under way
        for (const auto& [place, bytes] : std::exchange(pending_, {})) {
            if (bytes)
                tables[place.first][place.second] = bytes();
            else
                tables[place.first].erase(place.second);
        }
    }

private:
    std::map<std::pair<std::string, std::string>, Bytes> pending_;
};

// The cache of shops outlives a host: no test meets those of another. With no save on its way.
inline void forgetshops() {
    for (const int kind : {shopsystem::sell, shopsystem::recycle}) shopsystem::catalogueof(kind).clear();
    std::destroy_at(&shopsystem::globalruntimeshopmanager);
    std::construct_at(&shopsystem::globalruntimeshopmanager);
}

struct ShopHost : QuietHost {
    ListedFiles disk;
    StandingClock clock;
    OneTurn turn;
    Counted background;
    FewItems items;
    MemoryRecords records;

    ShopHost() {
        services.records = &records;
        services.files = &disk;
        services.clock = &clock;
        services.turn = &turn;
        services.background = &background;
        services.items = &items;
        disk.directories.insert(ordomart::paths::data);
    }
    ~ShopHost() {
        settle();
        forgetshops();
    }

    static std::string path(const std::string& xuid) { return ordomart::paths::data + xuid + ".json"; }
    void put(const std::string& xuid, const json& sell, const json& recycles = nullptr) {
        disk.contents[path(xuid)] = json({{"sell", sell}, {"recycles", recycles}}).dump();
    }
    json document(const std::string& xuid) { return json::parse(disk.contents.at(path(xuid))); }
    // Of the manager, with the saves that they bring.
    void ticks(int n) {
        for (; n > 0; --n) {
            shopsystem::globalruntimeshopmanager.tick();
            records.endpass();
            settle();
        }
    }
    // The worker has nothing left to do.
    void settle() const { background.wait(); }
    // How many lines hold the text.
    int told(const std::string& text) const {
        int lines = 0;
        for (const auto& line : log.lines) lines += line.find(text) != std::string::npos ? 1 : 0;
        return lines;
    }
};

inline shopsystem::sellshop& sells(const std::string& xuid) {
    return shopsystem::globalruntimeshopmanager.getsellshop(xuid);
}
inline shopsystem::recycleshop& buys(const std::string& xuid) {
    return shopsystem::globalruntimeshopmanager.getrecycleshop(xuid);
}

// What the body throws.
inline std::string fault(const std::function<void()>& body) {
    try {
        body();
        return "nothing";
    } catch (const std::exception& e) {
        return e.what();
    }
}

}  // namespace market_tests
