// The start of the plug-in, and what is done for a player who joins or leaves and at an orderly stop of the server.
#pragma once

#include "platform/event.h"
#include "plugin/base/globals.h"

namespace ordomart {

void PluginInit();
void RegisterCommands();
bool onplayerjoin(const Event::PlayerJoinEvent& event);
bool onplayerleft(const Event::PlayerLeftEvent& event);
bool onserverstopping(const Event::ServerStoppingEvent& event);
bool onserverstopped(const Event::ServerStoppedEvent& event);

}  // namespace ordomart
