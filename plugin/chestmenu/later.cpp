// Sessions instead of pointers for whatever waits.
#include "plugin/chestmenu/later.h"

#include <utility>

#include "platform/host.h"
#include "platform/level.h"
#include "platform/schedule.h"

namespace ordomart {

void later(std::uint64_t session, std::uint64_t ticks, std::function<void(ServerPlayer*)> work) {
    Schedule::delay(
        [session, work = std::move(work)] {
            auto* const level = host().level;
            auto* const player = level != nullptr ? level->getPlayer(session) : nullptr;
            if (player != nullptr) work(player);
        },
        ticks);
}

}  // namespace ordomart
