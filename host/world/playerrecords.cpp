#include "host/world/playerrecords.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "host/network/network.h"
#include "host/world/stacks.h"

namespace host {

namespace {

constexpr platform::Vec3 spawn{0.5f, 64.0f, 0.5f};

void writeslots(Database& file, const std::string& player, const Inventory& inventory) {
    for (int i = 0; i < slotcount; ++i) {
        if (!inventory.unwritten.test(static_cast<std::size_t>(i))) continue;
        const platform::ItemStack& stack = inventory.slot(i).stack;
        if (stack.isNull())
            file.run("DELETE FROM slots WHERE player = ? AND slot = ?", player, i);
        else
            file.run("INSERT OR REPLACE INTO slots VALUES (?, ?, ?)", player, i, Blob{encodestack(stack)});
    }
}

}  // namespace

std::string foldedname(std::string_view name) {
    std::string folded(name);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

std::string playerkey(std::string_view xuid, std::string_view name) {
    return xuid.empty() ? "name:" + foldedname(name) : std::string(xuid);
}

PlayerRecords::PlayerRecords(Database& file) : file_(file) {
    file.rows("SELECT key, name, xuid, language, device, permission, alive, x, y, z, dimension, gametype FROM players",
              [&](SQLite::Statement& row) {
                  PlayerRecord record;
                  record.key = row.getColumn(0).getString();
                  record.name = row.getColumn(1).getString();
                  record.xuid = row.getColumn(2).getString();
                  record.language = row.getColumn(3).getString();
                  record.devicetype = row.getColumn(4).getInt();
                  record.permission = row.getColumn(5).getInt();
                  record.alive = row.getColumn(6).getInt() != 0;
                  record.position = {static_cast<float>(row.getColumn(7).getDouble()),
                                     static_cast<float>(row.getColumn(8).getDouble()),
                                     static_cast<float>(row.getColumn(9).getDouble())};
                  record.dimension = row.getColumn(10).getInt();
                  record.gametype = row.getColumn(11).getInt();
                  keys_[foldedname(record.name)] = record.key;
                  std::string key = record.key;
                  records_.emplace(std::move(key), std::move(record));
              });
}

PlayerRecord* PlayerRecords::find(std::string_view name) {
    const auto key = keys_.find(foldedname(name));
    return key == keys_.end() ? nullptr : &records_.at(key->second);
}

PlayerRecord& PlayerRecords::named(std::string_view name) {
    PlayerRecord* const record = find(name);
    if (record == nullptr) throw std::runtime_error(fmt::format("nobody named \"{}\" was ever here", name));
    return *record;
}

PlayerRecord& PlayerRecords::enter(const JoinRequest& request) {
    const std::string key = playerkey(request.xuid, request.name);
    if (const PlayerRecord* holder = find(request.name); holder != nullptr && holder->key != key)
        throw std::runtime_error(fmt::format("the name \"{}\" belongs to another player", request.name));
    const auto [place, isnew] = records_.try_emplace(key);
    PlayerRecord& record = place->second;
    if (record.online)
        throw std::runtime_error(fmt::format("\"{}\" is online already, as \"{}\"", request.name, record.name));
    try {
        if (isnew) {
            record.key = key;
            record.xuid = request.xuid;
            record.position = spawn;
            record.inventory = std::make_unique<Inventory>();
        } else if (record.inventory == nullptr) {
            record.inventory = readinventory(record);
        }
        if (!record.name.empty()) keys_.erase(foldedname(record.name));
        keys_[foldedname(request.name)] = key;
    } catch (...) {
        if (isnew) records_.erase(place);
        throw;
    }
    record.name = request.name;
    record.language = request.language;
    record.devicetype = request.devicetype;
    if (request.permission > 0) record.permission = request.permission;
    record.online = true;
    mark(record);
    return record;
}

void PlayerRecords::introduce(const std::string& name, const std::string& xuid, const std::string& language) {
    const std::string key = playerkey(xuid, name);
    if (find(name) != nullptr || records_.contains(key)) return;
    PlayerRecord& record = records_[key];
    record.key = key;
    record.name = name;
    record.xuid = xuid;
    record.language = language;
    record.position = spawn;
    keys_[foldedname(name)] = key;
    mark(record);
}

void PlayerRecords::mark(PlayerRecord& record) {
    record.unwritten = true;
    active_.insert(&record);
}

std::unique_ptr<Inventory> PlayerRecords::readinventory(const PlayerRecord& record) {
    auto inventory = std::make_unique<Inventory>();
    file_.rows(
        "SELECT slot, stack FROM slots WHERE player = ?",
        [&](SQLite::Statement& row) {
            const int slot = row.getColumn(0).getInt();
            const std::string where = fmt::format("{}: slot {} of {}", file_.path(), slot, record.name);
            if (slot < 0 || slot >= slotcount) throw std::runtime_error(where + ": there is no such slot");
            inventory->put(slot, decodestack(row.getColumn(1).getString(), where));
        },
        record.key);
    inventory->unwritten.reset();
    return inventory;
}

bool PlayerRecords::changed() const {
    return std::ranges::any_of(active_, [](const PlayerRecord* record) {
        return record->unwritten || (record->inventory != nullptr && record->inventory->unwritten.any());
    });
}

void PlayerRecords::write(Database& file) {
    for (const PlayerRecord* record : active_) {
        if (record->unwritten)
            file.run("INSERT OR REPLACE INTO players VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", record->key,
                     record->name, record->xuid, record->language, record->devicetype, record->permission,
                     record->alive ? 1 : 0, static_cast<double>(record->position.x),
                     static_cast<double>(record->position.y), static_cast<double>(record->position.z),
                     record->dimension, record->gametype);
        if (record->inventory != nullptr) writeslots(file, record->key, *record->inventory);
    }
}

void PlayerRecords::written() {
    for (PlayerRecord* record : active_) {
        record->unwritten = false;
        if (record->inventory == nullptr) continue;
        record->inventory->unwritten.reset();
        if (!record->online) record->inventory.reset();
    }
    std::erase_if(active_, [](const PlayerRecord* record) { return !record->online; });
}

}  // namespace host
