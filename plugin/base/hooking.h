// Puts a function of the plug-in in the place of one of the server's. For the load of the module only.
#pragma once

namespace ordomart {

// `original` takes what the name stood for. A function that cannot be replaced is told on standard output, since no
// log may be open yet, and stays as it is; the load goes on.
void installhook(const char* decoratedname, void** original, void* replacement);

}  // namespace ordomart
