// Every menu that is a form. All are called on the server thread and give their result at once, also where the form
// itself comes later.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/player.h"
#include "plugin/base/guards.h"

namespace ordomart {

opresult openFormmainmenu(ServerPlayer* player);
opresult openOnlyFormmainmenu(ServerPlayer* player);
// The main menu he came from, by menumode; none for any other value.
void openmenubymode(ServerPlayer* player);
opresult readandopensellFormmenu(ServerPlayer* player);
opresult readandopenrecycleFormmenu(ServerPlayer* player);

opresult openOrdosellshopAsformmenu(ServerPlayer* player, bool refresh);
opresult openOrdorecycleshopAsformmenu(ServerPlayer* player, bool refresh);

// The owner's, on the shop that he manages or on his own.
opresult openOrdomyshopAsformmenu(ServerPlayer* player, bool updatelang);
opresult openOrdomyshopEditItemAsformmenu(ServerPlayer* player);
opresult openOrdomyshopuploadItemAsformmenu(ServerPlayer* player);
opresult openOrdomyshopreplenishmentAsformmenu(ServerPlayer* player);
opresult openOrdomyrecycleshopAsformmenu(ServerPlayer* player, bool updatelang);
opresult openOrdomyrecycleshopEditItemAsformmenu(ServerPlayer* player);
opresult openOrdomyrecycleshopnewissueAsformmenu(ServerPlayer* player);
opresult openOrdomyrecycleshoppickupAsformmenu(ServerPlayer* player);

// The shared shop. The flag of its menu settles nothing.
opresult openOrdosystemshopAsformmenu(ServerPlayer* player, bool unused);
opresult openOrdosystemshopsellAsformmenu(ServerPlayer* player, bool refresh);
opresult openOrdosystemshoprecycleAsformmenu(ServerPlayer* player, bool refresh);

void setmyshopitemfiter(ServerPlayer* player);
opresult opensearchitemform(ServerPlayer* player, int type, bool descdefault);
opresult searchbyfilter(ServerPlayer* player, int type, const std::string& text, bool indesc, bool intag,
                        bool initemname);
opresult setbanstate(ServerPlayer* player, int type, const std::string& xuid, bool banned, const std::string& reason,
                     std::int64_t seconds);
opresult openmanagesetstateform(ServerPlayer* player);
// What is wrong in the files of the category menus, which are read at each opening: file, place and why. Any thread.
[[nodiscard]] std::vector<std::string> categoryfaults();
opresult openswitchsystemshop(ServerPlayer* player);

}  // namespace ordomart
