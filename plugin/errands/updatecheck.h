// Asks once, at the start, whether there is a newer release, and tells the operator. Changes nothing.
#pragma once

namespace ordomart {

// Starts the check on a thread of its own; nothing where the build names nobody to ask. Throws std::system_error when
// no thread can be started.
void startupdatecheck();
// The check itself: one request, one or two lines of the log. Any thread.
void checkforupdate();

}  // namespace ordomart
