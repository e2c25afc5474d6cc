// A whole market handed over: shops, goods, commissions, discounts and the ledger, but no money. Written to a file
// while the market goes on, and taken in from one, whole or not at all, whenever the server is killed. One at a time.
#pragma once

#include <string>

namespace handover {

// Both work beside the server and tell the player of that xuid, and the log. `path` as pathof (linefile.h) gives it.
// False when another one is under way. Server thread.
bool startexport(const std::string& path, const std::string& xuid);
bool startimport(const std::string& path, const std::string& xuid);

// Whether another market is being checked or taken in just now, so that shops and ledger need not fit each other. Any
// thread.
[[nodiscard]] bool istakingin();

// At the start, before anything is traded: what the last run had decided to take in is taken in, what it had not is
// forgotten.
void resume();

}  // namespace handover
