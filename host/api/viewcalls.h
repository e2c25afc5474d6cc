// The calls that show what the plug-in knows.
#pragma once

#include "host/api/handlers.h"

namespace host {

[[nodiscard]] nlohmann::json listviews(ApiCall& call);
[[nodiscard]] nlohmann::json askview(ApiCall& call);

}  // namespace host
