// The market's records in the world's file. What is put is kept as the function that gives its bytes until its pass is
// written. In a turn.
#pragma once

#include <map>
#include <utility>

#include "host/world/database.h"
#include "platform/records.h"

namespace host {

class RecordTables : public platform::Records, public Store {
public:
    explicit RecordTables(Database& file) : file_(file) {}

    void put(const std::string& table, const std::string& key, Bytes bytes) override;
    void erase(const std::string& table, const std::string& key) override;
    [[nodiscard]] std::optional<std::string> get(const std::string& table, const std::string& key) override;
    [[nodiscard]] std::vector<std::string> keys(const std::string& table, const std::string& from,
                                                std::size_t most) override;
    [[nodiscard]] std::vector<Row> rows(const std::string& table, const Range& keys, std::size_t most,
                                        bool backwards) override;
    [[nodiscard]] bool written(const std::string& table, const std::string& key) const override;

    [[nodiscard]] bool changed() const override { return !unwritten_.empty(); }
    void write(Database& file) override;
    void written() override { unwritten_.clear(); }

private:
    using Place = std::pair<std::string, std::string>;  // table and key
    Database& file_;
    std::map<Place, Bytes> unwritten_;  // no function: erased
};

}  // namespace host
