// Every menu that is a form. All are called on the server thread and give their result at once, also where the form
// itself comes later. Those that have no file of their own yet stand in pending.cpp.
#pragma once

#include <cstdint>
#include <string>

#include "platform/player.h"
#include "plugin/frame/guards.h"

namespace ordomart {

opresult openFormmainmenu(ServerPlayer* player);
opresult openOnlyFormmainmenu(ServerPlayer* player);
// The main menu he came from, by menumode; none for any other value.
void openmenubymode(ServerPlayer* player);
opresult readandopensellFormmenu(ServerPlayer* player);
opresult readandopenrecycleFormmenu(ServerPlayer* player);

opresult openOrdosellshopAsformmenu(ServerPlayer* player, bool refresh);
opresult openOrdorecycleshopAsformmenu(ServerPlayer* player, bool refresh);

opresult openOrdomyshopAsformmenu(ServerPlayer* player, bool updatelang);
opresult openOrdomyrecycleshopAsformmenu(ServerPlayer* player, bool updatelang);
opresult openOrdosystemshopAsformmenu(ServerPlayer* player, bool unused);
opresult openOrdosystemshopsellAsformmenu(ServerPlayer* player, bool refresh);
opresult openOrdosystemshoprecycleAsformmenu(ServerPlayer* player, bool refresh);

void setmyshopitemfiter(ServerPlayer* player);
opresult opensearchitemform(ServerPlayer* player, int type, bool descdefault);
opresult searchbyfilter(ServerPlayer* player, int type, const std::string& text, bool indesc, bool intag,
                        bool initemname);
opresult setbanstate(ServerPlayer* player, int type, const std::string& xuid, bool banned, const std::string& reason,
                     std::int64_t seconds);
// The body of a thread of its own, which the caller starts; his xuid is taken on the server thread.
opresult openmanagesetstateform(const std::string& playerxuid);
opresult openswitchsystemshop(ServerPlayer* player);

}  // namespace ordomart
