// The server's scoreboard: integer scores by objective, for players and for fake players that are only a name.
// Server thread only.
#pragma once

#include <cstdint>
#include <string>

namespace platform {

class Player;

struct ScoreboardId {
    std::int64_t raw = -1;
    [[nodiscard]] bool isValid() const { return raw >= 0; }
    bool operator==(const ScoreboardId&) const = default;
};

class Objective {
public:
    virtual ~Objective() = default;
    [[nodiscard]] virtual const std::string& getName() const = 0;
    [[nodiscard]] virtual const std::string& getDisplayName() const = 0;
    [[nodiscard]] virtual bool hasScore(ScoreboardId id) const = 0;
};

enum class PlayerScoreSetFunction { Set = 0, Add = 1, Subtract = 2 };

// Scores have 32 bits; a sum that leaves them wraps, as the game's does.
class Scoreboard {
public:
    virtual ~Scoreboard() = default;
    [[nodiscard]] virtual Objective* getObjective(const std::string& name) = 0;  // null when missing
    virtual Objective* newObjective(const std::string& name, const std::string& displayname) = 0;

    [[nodiscard]] virtual ScoreboardId getScoreboardId(const std::string& fakename) = 0;  // invalid when missing
    [[nodiscard]] virtual ScoreboardId getScoreboardId(const Player& player) = 0;
    virtual ScoreboardId createScoreboardId(const std::string& fakename) = 0;
    virtual ScoreboardId createScoreboardId(const Player& player) = 0;

    // The score of an online player; 0 when he has none. The changing forms return whether they worked.
    [[nodiscard]] virtual int getScore(Player& player, const std::string& objective) = 0;
    virtual bool addScore(Player& player, const std::string& objective, int value) = 0;
    virtual bool reduceScore(Player& player, const std::string& objective, int value) = 0;

    // The same for a fake player. getScore throws std::runtime_error when the name has no score there.
    [[nodiscard]] virtual int getScore(const std::string& objective, const std::string& fakename) = 0;
    virtual bool addScore(const std::string& objective, const std::string& fakename, int value) = 0;
    virtual bool reduceScore(const std::string& objective, const std::string& fakename, int value) = 0;
    virtual bool setScore(const std::string& objective, const std::string& fakename, int value) = 0;

    // Gives the id a score if it has none. Returns the new score.
    virtual int modifyPlayerScore(bool& success, ScoreboardId id, Objective& objective, int value,
                                  PlayerScoreSetFunction function) = 0;
};

}  // namespace platform
