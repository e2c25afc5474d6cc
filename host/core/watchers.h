// Those who want to be told of something, each for as long as he keeps the handle that he was given. Any thread.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

namespace host {

template <class... A>
class Watchers {
public:
    using Watcher = std::function<void(const A&...)>;

    // Ends with the last copy of the handle, once no call is under way on another thread.
    [[nodiscard]] std::shared_ptr<void> add(Watcher watcher) {
        const std::lock_guard lock(room_->mutex);
        const auto place = room_->watchers.insert(room_->watchers.end(), std::move(watcher));
        return {room_.get(), [room = room_, place](void*) {
                    const std::lock_guard leaving(room->mutex);
                    room->watchers.erase(place);
                }};
    }
    // A watcher may set off the next telling himself.
    void tell(const A&... what) const {
        const std::lock_guard lock(room_->mutex);
        for (const auto& watcher : room_->watchers) watcher(what...);
    }

private:
    struct Room {
        std::recursive_mutex mutex;
        std::list<Watcher> watchers;
    };
    const std::shared_ptr<Room> room_ = std::make_shared<Room>();
};

}  // namespace host
