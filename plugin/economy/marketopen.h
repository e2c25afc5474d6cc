// The guard in front of everything that changes value.
#pragma once

namespace ordomart {

// Whether the server can keep what would change now: its stores, which hold purses and stacks, can be written, and no
// other market is being taken over. Server thread.
[[nodiscard]] bool marketopen();
// The key of what a player is told while it is not.
[[nodiscard]] const char* closedtext();

// Another market is being taken over. Any thread.
void closefortakeover();
void openaftertakeover();

}  // namespace ordomart
