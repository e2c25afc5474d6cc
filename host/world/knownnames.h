// The names behind the xuids of everybody who was ever here. Read on any thread, learned on the server thread.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "host/world/database.h"
#include "platform/level.h"

namespace host {

class KnownNames : public platform::KnownPlayers, public Store {
public:
    explicit KnownNames(Database& file);

    // The name as it stands goes first; then its case does not count, as it does not when somebody joins.
    [[nodiscard]] std::string getXuid(const std::string& name) const override;
    [[nodiscard]] std::string fromXuid(const std::string& xuid) const override;
    // The name he bears from now on; a name that he bore before is forgotten.
    void learn(const std::string& xuid, const std::string& name);

    [[nodiscard]] bool changed() const override { return !unwritten_.empty(); }
    void write(Database& file) override;
    void written() override { unwritten_.clear(); }

private:
    mutable std::mutex lock_;
    std::map<std::string, std::string> names_;  // by xuid
    // By folded name and name: two that differ in case alone lie side by side.
    std::map<std::pair<std::string, std::string>, std::string> xuids_;
    std::set<std::string> unwritten_;  // xuids; server thread only
};

}  // namespace host
