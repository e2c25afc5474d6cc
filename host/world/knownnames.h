// The names behind the xuids of everybody who was ever here. Read on any thread, learned on the server thread.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>

#include "host/world/database.h"
#include "platform/level.h"

namespace host {

class KnownNames : public platform::KnownPlayers, public Store {
public:
    explicit KnownNames(Database& file);

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
    std::map<std::string, std::string> xuids_;  // by name
    std::set<std::string> unwritten_;           // xuids; server thread only
};

}  // namespace host
