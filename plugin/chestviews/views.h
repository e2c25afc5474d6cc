// The refresh operations by which the views are shown. `reload`: the list is made anew. They do not wait for the
// picture.
#pragma once

#include "platform/player.h"
#include "plugin/base/globals.h"

namespace ordomart {

void Ordosellglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload);
void Ordorecycleglobalshoppreviewprehandlermain(ServerPlayer* player, bool reload);
void globalsellshopfilterbyplayerprehandlermain(ServerPlayer* player, bool reload);
void globalrecycleshopfilterbyplayerprehandlermain(ServerPlayer* player, bool reload);
void singlesellshopprehandlermain(ServerPlayer* player, bool reload);
void singlerecycleshopprehandlermain(ServerPlayer* player, bool reload);
void Ordomyshoppreviewprehandlermain(ServerPlayer* player, bool reload);
void Ordomyshopreplenishmentshopprehandlermain(ServerPlayer* player, bool reload);
void Ordomyrecycleshoppreviewprehandlermain(ServerPlayer* player, bool reload);
void Ordomyrecycleshoppickupitemprehandlermain(ServerPlayer* player, bool reload);

}  // namespace ordomart
