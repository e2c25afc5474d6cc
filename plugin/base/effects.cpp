// Sounds and toasts go to one client.
#include "plugin/base/effects.h"

namespace ordomart {

void playsound(ServerPlayer* player, const char* name, float pitch) {
    player->sendPlaySoundPacket(name, player->getPosition(), 1.0F, pitch);
}

void systemtoast(ServerPlayer* player, const std::string& text) { player->sendToastPacket("SYSTEM", text); }

}  // namespace ordomart
