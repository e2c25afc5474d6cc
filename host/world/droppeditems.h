// What lies on the ground. Stacks stay encoded: the file is read before the item table is at hand, and most are never
// looked at again.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "host/world/database.h"
#include "host/world/world.h"

namespace host {

class DroppedItems : public Store {
public:
    explicit DroppedItems(Database& file);

    // The oldest vanish when there are too many, as they do in the game after a while.
    void add(const platform::ItemStack& stack, platform::Vec3 position, int dimension);
    [[nodiscard]] std::vector<DroppedItem> all() const;  // in the order they fell

    [[nodiscard]] bool changed() const override { return written_ != last_ || vanished_ != 0; }
    void write(Database& file) override;
    void written() override;

private:
    struct Row {
        std::int64_t id;
        std::string stack;
        platform::Vec3 position;
        int dimension;
    };
    std::string path_;
    std::deque<Row> rows_;
    std::int64_t last_ = 0;      // highest id given
    std::int64_t written_ = 0;   // highest id in the file
    std::int64_t vanished_ = 0;  // ids up to this one are to go from the file
};

}  // namespace host
