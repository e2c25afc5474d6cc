// The server's own handling of inventory requests: takes, places, swaps, drops and, in the creative game type, picks
// and destroys real stacks. A request is done as a whole or not at all: what is refused leaves every slot as it was.
#pragma once

#include "host/world/playerimpl.h"
#include "platform/packets/itemstackrequest.h"

namespace host {

[[nodiscard]] platform::ItemStackResponse answerrequest(ServerPlayerImpl& player,
                                                        const platform::ItemStackRequest& request);

}  // namespace host
