// The guard in front of everything that changes value.
#pragma once

namespace ordomart {

// Whether the server can keep what would change now: its stores, which hold purses and stacks, can be written. Server
// thread.
[[nodiscard]] bool marketopen();

}  // namespace ordomart
