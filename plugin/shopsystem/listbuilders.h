// The few threads on which lists are made and arranged, however many players ask. A player has at most one errand in
// work and the newest one behind it. Errands that order the same list are served by one walk, but only by one that
// began after they came: a list shows every change that happened before it was ordered. Threads end when nothing is
// left to do.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "plugin/shopsystem/listwalk.h"

namespace shopsystem {

class listwork;

struct listerrand {
    std::uint64_t session;  // whose
    std::string xuid;
    const void* picture;                // what he waits for, by an address of its own
    std::optional<listkind> list = {};  // to be made anew
    std::string shop = {};              // whose, for a single shop's list
    bool isslow = false;                // orders no list, but reads shops itself
    // On a builder's thread, not in a turn. Tells in its own words what it throws.
    std::function<void(listwork&)> body;
};

class builderpool {
public:
    static constexpr int mostbuilders = 2;

    // Server thread. The player's list is empty from here on until it is made, so that nothing can be chosen that is
    // not shown. Throws std::system_error when no thread can be started.
    void order(listerrand errand);
    // Server thread. What the player waits for is not wanted any more: all of it, or one picture.
    void drop(std::uint64_t session, const void* picture = nullptr);
    // Has something large freed beside the server thread. Any thread.
    void discard(std::shared_ptr<void> waste);

private:
    friend class listwork;
    struct job;
    struct party;
    using jobs = std::vector<std::shared_ptr<job>>;
    enum class kind { any, quick };

    void ensurebuilder(std::unique_lock<std::mutex>& lock);
    void work();
    [[nodiscard]] jobs next(kind which);
    [[nodiscard]] bool isinwork(std::uint64_t session) const;
    void serve(const jobs& group);
    void servequick();

    std::mutex mutex_;  // of what follows; no turn is taken while it is held
    std::list<std::shared_ptr<job>> waiting_;
    jobs inwork_;
    std::vector<std::shared_ptr<void>> waste_;
    int running_ = 0;
};

extern builderpool listbuilders;

// What the body of an errand asks of its builder.
class listwork {
public:
    // Makes the list that was ordered and puts it before the player. False when he does not wait for it any more: the
    // body ends.
    [[nodiscard]] bool makelist();
    // The same question for a body that reads shops itself, between two of them.
    [[nodiscard]] bool goeson();

private:
    friend class builderpool;
    listwork(builderpool& pool, builderpool::party& with, builderpool::job& mine)
        : pool_(pool), party_(with), job_(mine) {}
    builderpool& pool_;
    builderpool::party& party_;
    builderpool::job& job_;
};

}  // namespace shopsystem
