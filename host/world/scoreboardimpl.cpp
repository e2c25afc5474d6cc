#include "host/world/scoreboardimpl.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "host/world/playerrecords.h"
#include "platform/player.h"

namespace host {

using Function = platform::PlayerScoreSetFunction;

namespace {

std::int32_t changedscore(std::int32_t before, std::int32_t value, Function function) {
    const auto b = static_cast<std::uint32_t>(before), v = static_cast<std::uint32_t>(value);
    switch (function) {
        case Function::Add:
            return static_cast<std::int32_t>(b + v);
        case Function::Subtract:
            return static_cast<std::int32_t>(b - v);
        case Function::Set:
            break;
    }
    return value;
}

}  // namespace

ScoreboardImpl::ScoreboardImpl(Database& file) {
    file.rows("SELECT name, displayname FROM objectives", [&](SQLite::Statement& row) {
        newObjective(row.getColumn(0).getString(), row.getColumn(1).getString());
    });
    file.rows("SELECT id, player, name FROM scoreids", [&](SQLite::Statement& row) {
        const std::int64_t id = row.getColumn(0).getInt64();
        ids_[{row.getColumn(1).getInt() != 0, row.getColumn(2).getString()}] = id;
        lastid_ = std::max(lastid_, id);
    });
    file.rows("SELECT objective, id, value FROM scores", [&](SQLite::Statement& row) {
        if (ObjectiveImpl* const held = objective(row.getColumn(0).getString()))
            held->scores[row.getColumn(1).getInt64()] = row.getColumn(2).getInt();
    });
    written();
}

ScoreboardImpl::Owner ScoreboardImpl::owner(const Player& player) {
    return {true, playerkey(player.getXuid(), player.getRealName())};
}

ObjectiveImpl* ScoreboardImpl::objective(const std::string& name) {
    const auto found = objectives_.find(name);
    return found == objectives_.end() ? nullptr : found->second.get();
}

ObjectiveImpl& ScoreboardImpl::existing(const std::string& name) {
    ObjectiveImpl* const held = objective(name);
    if (held == nullptr) throw std::runtime_error(fmt::format("there is no objective \"{}\"", name));
    return *held;
}

platform::Objective* ScoreboardImpl::newObjective(const std::string& name, const std::string& displayname) {
    const auto [place, isnew] = objectives_.try_emplace(name);
    if (isnew) {
        place->second = std::make_unique<ObjectiveImpl>(name, displayname);
        newobjectives_.insert(name);
    }
    return place->second.get();
}

ScoreboardImpl::Id ScoreboardImpl::find(const Owner& owner) const {
    const auto found = ids_.find(owner);
    return found == ids_.end() ? Id() : Id{found->second};
}

ScoreboardImpl::Id ScoreboardImpl::make(const Owner& owner) {
    const auto [place, isnew] = ids_.try_emplace(owner, lastid_ + 1);
    if (isnew) {
        ++lastid_;
        newids_.insert(owner);
    }
    return {place->second};
}

int ScoreboardImpl::modifyPlayerScore(bool& success, Id id, platform::Objective& objective, int value,
                                      Function function) {
    success = id.raw >= 1 && id.raw <= lastid_;
    if (!success) return 0;
    auto& held = static_cast<ObjectiveImpl&>(objective);
    std::int32_t& score = held.scores[id.raw];
    score = changedscore(score, value, function);
    newscores_.insert({&held, id.raw});
    return score;
}

bool ScoreboardImpl::change(const Owner& owner, const std::string& name, int value, Function function) {
    ObjectiveImpl* const held = objective(name);
    if (held == nullptr) return false;
    bool success = false;
    modifyPlayerScore(success, make(owner), *held, value, function);
    return success;
}

int ScoreboardImpl::getScore(Player& player, const std::string& name) {
    return objective(name) == nullptr ? 0 : scoreof(owner(player).second, name);
}
bool ScoreboardImpl::addScore(Player& player, const std::string& name, int value) {
    return change(owner(player), name, value, Function::Add);
}
bool ScoreboardImpl::reduceScore(Player& player, const std::string& name, int value) {
    return change(owner(player), name, value, Function::Subtract);
}

int ScoreboardImpl::getScore(const std::string& name, const std::string& fakename) {
    const ObjectiveImpl& held = existing(name);
    const auto score = held.scores.find(getScoreboardId(fakename).raw);
    if (score == held.scores.end())
        throw std::runtime_error(fmt::format("\"{}\" has no score in \"{}\"", fakename, name));
    return score->second;
}
bool ScoreboardImpl::addScore(const std::string& name, const std::string& fakename, int value) {
    return change({false, fakename}, name, value, Function::Add);
}
bool ScoreboardImpl::reduceScore(const std::string& name, const std::string& fakename, int value) {
    return change({false, fakename}, name, value, Function::Subtract);
}
bool ScoreboardImpl::setScore(const std::string& name, const std::string& fakename, int value) {
    return change({false, fakename}, name, value, Function::Set);
}

int ScoreboardImpl::scoreof(const std::string& playerkey, const std::string& name) {
    const ObjectiveImpl& held = existing(name);
    const auto score = held.scores.find(find({true, playerkey}).raw);
    return score == held.scores.end() ? 0 : score->second;
}

void ScoreboardImpl::setscoreof(const std::string& playerkey, const std::string& name, int value) {
    change({true, playerkey}, existing(name).getName(), value, Function::Set);
}

bool ScoreboardImpl::changed() const { return !newobjectives_.empty() || !newids_.empty() || !newscores_.empty(); }

void ScoreboardImpl::write(Database& file) {
    for (const std::string& name : newobjectives_)
        file.run("INSERT OR REPLACE INTO objectives VALUES (?, ?)", name, objectives_.at(name)->getDisplayName());
    for (const Owner& owner : newids_)
        file.run("INSERT OR REPLACE INTO scoreids VALUES (?, ?, ?)", ids_.at(owner), owner.first ? 1 : 0, owner.second);
    for (const auto& [objective, id] : newscores_)
        file.run("INSERT OR REPLACE INTO scores VALUES (?, ?, ?)", objective->getName(), id, objective->scores.at(id));
}

void ScoreboardImpl::written() {
    newobjectives_.clear();
    newids_.clear();
    newscores_.clear();
}

}  // namespace host
