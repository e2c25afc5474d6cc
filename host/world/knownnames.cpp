#include "host/world/knownnames.h"

namespace host {

namespace {

std::string found(const std::map<std::string, std::string>& table, const std::string& key) {
    const auto place = table.find(key);
    return place == table.end() ? std::string() : place->second;
}

}  // namespace

KnownNames::KnownNames(Database& file) {
    file.rows("SELECT xuid, name FROM knownnames",
              [&](SQLite::Statement& row) { learn(row.getColumn(0).getString(), row.getColumn(1).getString()); });
    unwritten_.clear();
}

std::string KnownNames::getXuid(const std::string& name) const {
    std::lock_guard guard(lock_);
    return found(xuids_, name);
}

std::string KnownNames::fromXuid(const std::string& xuid) const {
    std::lock_guard guard(lock_);
    return found(names_, xuid);
}

void KnownNames::learn(const std::string& xuid, const std::string& name) {
    std::lock_guard guard(lock_);
    std::string& known = names_[xuid];
    if (known == name && found(xuids_, name) == xuid) return;
    if (found(xuids_, known) == xuid) xuids_.erase(known);
    known = name;
    xuids_[name] = xuid;
    unwritten_.insert(xuid);
}

void KnownNames::write(Database& file) {
    for (const std::string& xuid : unwritten_)
        file.run("INSERT OR REPLACE INTO knownnames VALUES (?, ?)", xuid, names_.at(xuid));
}

}  // namespace host
