// The bustling market as calls: how it goes, on with so many players, off.
#pragma once

#include "host/api/handlers.h"

namespace host {

[[nodiscard]] nlohmann::json showbustle(ApiCall& call);
[[nodiscard]] nlohmann::json startbustle(ApiCall& call);
[[nodiscard]] nlohmann::json stopbustle(ApiCall& call);

}  // namespace host
