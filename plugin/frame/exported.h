// Marks what the module shows to the server that loads it.
#pragma once

#if defined(_WIN32)
#define ORDOMART_EXPORTED __declspec(dllexport)
#else
#define ORDOMART_EXPORTED __attribute__((visibility("default")))
#endif
