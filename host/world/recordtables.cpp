#include "host/world/recordtables.h"

#include <algorithm>

namespace host {

void RecordTables::put(const std::string& table, const std::string& key, Bytes bytes) {
    unwritten_.insert_or_assign({table, key}, std::move(bytes));
}

void RecordTables::erase(const std::string& table, const std::string& key) {
    unwritten_.insert_or_assign({table, key}, nullptr);
}

std::optional<std::string> RecordTables::get(const std::string& table, const std::string& key) {
    if (const auto found = unwritten_.find({table, key}); found != unwritten_.end())
        return found->second ? std::optional(found->second()) : std::nullopt;
    std::optional<std::string> bytes;
    file_.rows(
        "SELECT bytes FROM records WHERE tablename = ? AND key = ?",
        [&](SQLite::Statement& row) { bytes = row.getColumn(0).getString(); }, table, key);
    return bytes;
}

std::vector<std::string> RecordTables::keys(const std::string& table, const std::string& from, std::size_t most) {
    const auto first = unwritten_.lower_bound({table, from});
    const auto last =
        std::find_if(first, unwritten_.end(), [&](const auto& each) { return each.first.first != table; });
    // So many more as may be erased by now.
    const auto wanted = static_cast<std::int64_t>(most) + std::distance(first, last);
    std::vector<std::string> found;
    file_.rows(
        "SELECT key FROM records WHERE tablename = ? AND key >= ? ORDER BY key LIMIT ?",
        [&](SQLite::Statement& row) {
            auto key = row.getColumn(0).getString();
            if (!unwritten_.contains({table, key})) found.push_back(std::move(key));
        },
        table, from, wanted);
    for (auto place = first; place != last; ++place)
        if (place->second) found.push_back(place->first.second);
    std::ranges::sort(found);
    found.resize(std::min(found.size(), most));
    return found;
}

std::vector<RecordTables::Row> RecordTables::rows(const std::string& table, const Range& keys, std::size_t most,
                                                  bool backwards) {
    const auto first = unwritten_.lower_bound({table, keys.from});
    const auto last = keys.until.empty() ? unwritten_.lower_bound({table + '\0', ""})
                                         : unwritten_.lower_bound({table, std::max(keys.from, keys.until)});
    const auto wanted = static_cast<std::int64_t>(most) + std::distance(first, last);
    std::vector<Row> found;
    const auto take = [&](SQLite::Statement& row) {
        auto key = row.getColumn(0).getString();
        if (!unwritten_.contains({table, key})) found.push_back({std::move(key), row.getColumn(1).getString()});
    };
    const auto ask = [&](const char* upwards, const char* downwards, const auto&... bounds) {
        file_.rows(backwards ? downwards : upwards, take, table, bounds..., wanted);
    };
    if (keys.until.empty())
        ask("SELECT key, bytes FROM records WHERE tablename = ? AND key >= ? ORDER BY key LIMIT ?",
            "SELECT key, bytes FROM records WHERE tablename = ? AND key >= ? ORDER BY key DESC LIMIT ?", keys.from);
    else
        ask("SELECT key, bytes FROM records WHERE tablename = ? AND key >= ? AND key < ? ORDER BY key LIMIT ?",
            "SELECT key, bytes FROM records WHERE tablename = ? AND key >= ? AND key < ? ORDER BY key DESC LIMIT ?",
            keys.from, keys.until);
    for (auto place = first; place != last; ++place)
        if (place->second) found.push_back({place->first.second, place->second()});
    std::ranges::sort(found, {}, &Row::key);
    if (backwards) std::ranges::reverse(found);
    found.resize(std::min(found.size(), most));
    return found;
}

bool RecordTables::written(const std::string& table, const std::string& key) const {
    const auto found = unwritten_.find({table, key});
    return found == unwritten_.end() || !found->second;
}

void RecordTables::write(Database& file) {
    for (const auto& [place, bytes] : unwritten_) {
        if (bytes)
            file.run("INSERT OR REPLACE INTO records VALUES (?, ?, ?)", place.first, place.second, Blob{bytes()});
        else
            file.run("DELETE FROM records WHERE tablename = ? AND key = ?", place.first, place.second);
    }
}

}  // namespace host
