// Tells a collecting service of each trade in goods without enchantments: fire and forget (outbox.h tells how).
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace ordomart {

// `type` 0: a sale, 1: a recycling. `record`: what the trade's log line was made of. Nothing where the build names no
// service, and on a server in debug mode. Server thread, which never waits here and is thrown nothing at.
void uploadtrade(int type, const nlohmann::json& record);
// Makes a report of the record and sends it; what comes back is dropped. Any thread, behind an uploadtrade.
void testuploaddata(int type, const nlohmann::json& record);

}  // namespace ordomart
