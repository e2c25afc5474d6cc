// Where the market's errands lead. Settings of the build; a build that is given none has none, and runs no errand.
#pragma once

#include <string>

namespace ordomart {

[[nodiscard]] std::string latestreleaseaddress();  // of the repository's latest release; empty: none is asked
[[nodiscard]] std::string tradereportaddress();    // of the service that collects trades; empty: none is told

}  // namespace ordomart
