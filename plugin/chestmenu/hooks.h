// The two packet handlers of the server that the market stands in front of. With no menu open they change nothing.
#pragma once

namespace ordomart {

// While the module loads.
void installpackethooks();

}  // namespace ordomart
