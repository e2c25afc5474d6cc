// Money that refuses when it is told to. Each operation of the library or the scoreboard that moves money asks first,
// and then does what the real one does.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/host.h"
#include "platform/library.h"
#include "platform/llmoney.h"
#include "platform/scoreboard.h"
#include "platform/stores.h"

namespace faulty {

using namespace platform;

// Whether an operation refuses: "LLMoneyTrans", "reduceScore", and with "absent " in front for one who is away.
inline std::function<bool(std::string_view)> refuses;
inline bool isrefused(const char* operation) { return refuses && refuses(operation); }

class Library : public Libraries {
public:
    explicit Library(Libraries& real) : real_(real) {}
    void* load(const std::string& name) override { return real_.load(name); }
    void* symbol(void* library, const char* name) override {
        void* const found = real_.symbol(library, name);
        const auto takes = [&](const char* entry, auto*& real, auto* mine) {
            if (found == nullptr || std::string_view(name) != entry) return false;
            real = reinterpret_cast<std::remove_reference_t<decltype(real)>>(found);
            mine_ = reinterpret_cast<void*>(mine);
            return true;
        };
        const bool taken = takes("LLMoneyTrans", realtrans_, &trans) || takes("LLMoneyReduce", realreduce_, &reduce) ||
                           takes("LLMoneyAdd", realadd_, &add) || takes("LLMoneyLastError", realerror_, &error);
        return taken ? mine_ : found;
    }

private:
    static bool refused(const char* entry) { return refused_ = isrefused(entry); }
    static bool trans(const std::string& from, const std::string& to, long long value, const std::string& note) {
        return !refused("LLMoneyTrans") && realtrans_(from, to, value, note);
    }
    static bool reduce(const std::string& xuid, long long value) {
        return !refused("LLMoneyReduce") && realreduce_(xuid, value);
    }
    static bool add(const std::string& xuid, long long value) {
        return !refused("LLMoneyAdd") && realadd_(xuid, value);
    }
    static const char* error() { return refused_ ? "a fault of the stage" : realerror_(); }

    Libraries& real_;
    void* mine_ = nullptr;
    static inline llmoney::Trans* realtrans_;
    static inline llmoney::Reduce* realreduce_;
    static inline llmoney::Add* realadd_;
    static inline llmoney::LastError* realerror_;
    static inline bool refused_ = false;
};

class Scores : public Scoreboard {
public:
    explicit Scores(Scoreboard& real) : real_(real) {}

    Objective* getObjective(const std::string& name) override { return real_.getObjective(name); }
    Objective* newObjective(const std::string& name, const std::string& title) override {
        return real_.newObjective(name, title);
    }
    ScoreboardId getScoreboardId(const std::string& name) override { return real_.getScoreboardId(name); }
    ScoreboardId getScoreboardId(const Player& player) override { return real_.getScoreboardId(player); }
    ScoreboardId createScoreboardId(const std::string& name) override { return real_.createScoreboardId(name); }
    ScoreboardId createScoreboardId(const Player& player) override { return real_.createScoreboardId(player); }
    int getScore(Player& player, const std::string& o) override { return real_.getScore(player, o); }
    bool addScore(Player& player, const std::string& o, int value) override {
        return !isrefused("addScore") && real_.addScore(player, o, value);
    }
    bool reduceScore(Player& player, const std::string& o, int value) override {
        return !isrefused("reduceScore") && real_.reduceScore(player, o, value);
    }
    int getScore(const std::string& o, const std::string& name) override { return real_.getScore(o, name); }
    bool addScore(const std::string& o, const std::string& name, int value) override {
        return !isrefused("absent addScore") && real_.addScore(o, name, value);
    }
    bool reduceScore(const std::string& o, const std::string& name, int value) override {
        return !isrefused("absent reduceScore") && real_.reduceScore(o, name, value);
    }
    bool setScore(const std::string& o, const std::string& name, int value) override {
        return !isrefused("setScore") && real_.setScore(o, name, value);
    }
    int modifyPlayerScore(bool& success, ScoreboardId id, Objective& objective, int value,
                          PlayerScoreSetFunction function) override {
        return real_.modifyPlayerScore(success, id, objective, value, function);
    }

private:
    Scoreboard& real_;
};

// The server's stores, which cannot be written while there is a reason.
class Stores : public StoreState {
public:
    std::string why;
    [[nodiscard]] std::string unwritable() const override { return why; }
};

// Stands in front of a host's money for as long as it lives; longer than the host's stage.
class Money {
public:
    Money() = default;
    ~Money() { refuses = nullptr; }
    Money(const Money&) = delete;
    Money& operator=(const Money&) = delete;

    void standbefore(Host& host) {
        library_ = std::make_unique<Library>(*host.libraries);
        host.libraries = library_.get();
        scores_ = std::make_unique<Scores>(*host.scoreboard);
        host.scoreboard = scores_.get();
    }
    std::function<void(Host&)> adjust() {
        return [this](Host& host) { standbefore(host); };
    }

private:
    std::unique_ptr<Library> library_;
    std::unique_ptr<Scores> scores_;
};

}  // namespace faulty
