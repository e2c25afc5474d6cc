#include "host/world/droppeditems.h"

#include <fmt/format.h>

#include "host/world/stacks.h"

namespace host {

namespace {

constexpr std::size_t most = 10'000;

}  // namespace

DroppedItems::DroppedItems(Database& file) : path_(file.path()) {
    file.rows("SELECT id, stack, x, y, z, dimension FROM droppeditems ORDER BY id", [&](SQLite::Statement& row) {
        rows_.push_back(
            {row.getColumn(0).getInt64(),
             row.getColumn(1).getString(),
             {static_cast<float>(row.getColumn(2).getDouble()), static_cast<float>(row.getColumn(3).getDouble()),
              static_cast<float>(row.getColumn(4).getDouble())},
             row.getColumn(5).getInt()});
    });
    if (!rows_.empty()) last_ = written_ = rows_.back().id;
}

void DroppedItems::add(const platform::ItemStack& stack, platform::Vec3 position, int dimension) {
    rows_.push_back({++last_, encodestack(stack), position, dimension});
    if (rows_.size() <= most) return;
    vanished_ = rows_.front().id;
    rows_.pop_front();
}

std::vector<DroppedItem> DroppedItems::all() const {
    std::vector<DroppedItem> items;
    for (const Row& row : rows_)
        items.push_back(
            {decodestack(row.stack, fmt::format("{}: dropped item {}", path_, row.id)), row.position, row.dimension});
    return items;
}

void DroppedItems::write(Database& file) {
    if (vanished_ != 0) file.run("DELETE FROM droppeditems WHERE id <= ?", vanished_);
    for (auto row = rows_.rbegin(); row != rows_.rend() && row->id > written_; ++row)
        file.run("INSERT OR REPLACE INTO droppeditems VALUES (?, ?, ?, ?, ?, ?)", row->id, Blob{row->stack},
                 static_cast<double>(row->position.x), static_cast<double>(row->position.y),
                 static_cast<double>(row->position.z), row->dimension);
}

void DroppedItems::written() {
    written_ = last_;
    vanished_ = 0;
}

}  // namespace host
