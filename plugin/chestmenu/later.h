// Work for one player at a later tick. It holds his session, not his pointer: when the session has ended it is dropped.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/player.h"
#include "plugin/base/globals.h"

namespace ordomart {

// Any thread. The work runs on the server thread.
void later(std::uint64_t session, std::uint64_t ticks, std::function<void(ServerPlayer*)> work);

}  // namespace ordomart
