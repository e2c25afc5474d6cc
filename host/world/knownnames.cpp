#include "host/world/knownnames.h"

#include "host/world/playerrecords.h"

namespace host {

KnownNames::KnownNames(Database& file) {
    file.rows("SELECT xuid, name FROM knownnames",
              [&](SQLite::Statement& row) { learn(row.getColumn(0).getString(), row.getColumn(1).getString()); });
    unwritten_.clear();
}

std::string KnownNames::getXuid(const std::string& name) const {
    std::lock_guard guard(lock_);
    const std::string folded = foldedname(name);
    auto found = xuids_.find({folded, name});
    if (found == xuids_.end()) found = xuids_.lower_bound({folded, {}});
    return found != xuids_.end() && found->first.first == folded ? found->second : std::string();
}

std::string KnownNames::fromXuid(const std::string& xuid) const {
    std::lock_guard guard(lock_);
    const auto found = names_.find(xuid);
    return found == names_.end() ? std::string() : found->second;
}

void KnownNames::learn(const std::string& xuid, const std::string& name) {
    std::lock_guard guard(lock_);
    std::string& known = names_[xuid];
    const auto place = [](const std::string& of) { return std::pair(foldedname(of), of); };
    const auto before = xuids_.find(place(known));
    const bool held = before != xuids_.end() && before->second == xuid;
    if (held && known == name) return;
    if (held) xuids_.erase(before);
    known = name;
    xuids_[place(name)] = xuid;
    unwritten_.insert(xuid);
}

void KnownNames::write(Database& file) {
    for (const std::string& xuid : unwritten_)
        file.run("INSERT OR REPLACE INTO knownnames VALUES (?, ?)", xuid, names_.at(xuid));
}

}  // namespace host
