// Trades on their way to the collecting service. They wait in a short queue for one of a few senders, which are threads
// that end when the queue is empty. A trade that finds the queue full is dropped and counted, so that a service that is
// slow or away costs no more than that: a report may be lost, a trade never waits. When the server stops, what still
// waits is dropped.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>

namespace ordomart {

class outbox {
public:
    static constexpr std::size_t mostsenders = 2, mostwaiting = 256;
    using sending = std::function<void(int type, const nlohmann::json& record)>;

    // What sends one; called by the senders, it throws nothing.
    explicit outbox(sending send) : send_(std::move(send)) {}
    // Any thread. Throws nothing for want of a thread: what nobody can send is dropped.
    void put(int type, const nlohmann::json& record);

private:
    struct trade {
        int type;
        nlohmann::json record;
    };
    bool enqueue(trade made);  // true when it wants another sender
    std::optional<trade> take();
    void work();
    void sendermissing();
    void dropwaiting();  // with the lock held

    const sending send_;
    std::mutex mutex_;
    std::deque<trade> waiting_;
    std::size_t senders_ = 0, dropped_ = 0;
};

}  // namespace ordomart
