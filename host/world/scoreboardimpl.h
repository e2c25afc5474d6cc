// The scoreboard in memory, with what has changed marked for the file. Scores are 32 bits and wrap.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "host/world/database.h"
#include "platform/scoreboard.h"

namespace host {

class ObjectiveImpl : public platform::Objective {
public:
    ObjectiveImpl(std::string name, std::string displayname)
        : name_(std::move(name)), displayname_(std::move(displayname)) {}
    [[nodiscard]] const std::string& getName() const override { return name_; }
    [[nodiscard]] const std::string& getDisplayName() const override { return displayname_; }
    [[nodiscard]] bool hasScore(platform::ScoreboardId id) const override { return scores.contains(id.raw); }

    std::unordered_map<std::int64_t, std::int32_t> scores;  // by raw id

private:
    std::string name_, displayname_;
};

class ScoreboardImpl : public platform::Scoreboard, public Store {
public:
    using Id = platform::ScoreboardId;
    using Player = platform::Player;

    explicit ScoreboardImpl(Database& file);

    [[nodiscard]] platform::Objective* getObjective(const std::string& name) override { return objective(name); }
    // The one that is there, unchanged, when there is one of the name.
    platform::Objective* newObjective(const std::string& name, const std::string& displayname) override;

    [[nodiscard]] Id getScoreboardId(const std::string& fakename) override { return find({false, fakename}); }
    [[nodiscard]] Id getScoreboardId(const Player& player) override { return find(owner(player)); }
    Id createScoreboardId(const std::string& fakename) override { return make({false, fakename}); }
    Id createScoreboardId(const Player& player) override { return make(owner(player)); }

    [[nodiscard]] int getScore(Player& player, const std::string& name) override;
    bool addScore(Player& player, const std::string& name, int value) override;
    bool reduceScore(Player& player, const std::string& name, int value) override;
    [[nodiscard]] int getScore(const std::string& name, const std::string& fakename) override;
    bool addScore(const std::string& name, const std::string& fakename, int value) override;
    bool reduceScore(const std::string& name, const std::string& fakename, int value) override;
    bool setScore(const std::string& name, const std::string& fakename, int value) override;
    int modifyPlayerScore(bool& success, Id id, platform::Objective& objective, int value,
                          platform::PlayerScoreSetFunction function) override;

    // By player key, for players who are away too. Both throw std::runtime_error when there is no such objective; the
    // score is 0 when he has none.
    [[nodiscard]] int scoreof(const std::string& playerkey, const std::string& name);
    void setscoreof(const std::string& playerkey, const std::string& name, int value);

    [[nodiscard]] bool changed() const override;
    void write(Database& file) override;
    void written() override;

private:
    using Owner = std::pair<bool, std::string>;  // a player and his key, or a fake player's name
    [[nodiscard]] static Owner owner(const Player& player);
    [[nodiscard]] ObjectiveImpl* objective(const std::string& name);
    [[nodiscard]] ObjectiveImpl& existing(const std::string& name);
    [[nodiscard]] Id find(const Owner& owner) const;
    Id make(const Owner& owner);
    bool change(const Owner& owner, const std::string& name, int value, platform::PlayerScoreSetFunction function);

    std::map<std::string, std::unique_ptr<ObjectiveImpl>> objectives_;
    std::map<Owner, std::int64_t> ids_;
    std::int64_t lastid_ = 0;

    std::set<std::string> newobjectives_;
    std::set<Owner> newids_;
    std::set<std::pair<ObjectiveImpl*, std::int64_t>> newscores_;
};

}  // namespace host
