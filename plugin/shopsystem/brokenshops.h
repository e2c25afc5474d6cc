// What is broken in the shop files, told to the operator. Whoever lists shops leaves out what is broken and meets it
// again each time; the log names it once. Reached only in a turn.
#pragma once

#include <string>
#include <utility>

#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/shopfiles.h"

namespace shopsystem {

// The fault names file and place. Each fault is told once for a revision of the shop; of many, the first few.
void reportbroken(const baseshop& shop, int type, const std::string& fault);
// A file that gives no shop. Told once, until the fault is another or the shop has been read.
void reportbroken(const std::string& xuid, int type, const std::string& fault);
// The shop has been read.
void forgetbroken(const std::string& xuid, int type);

// Runs the body on records of the shop. False when one was broken, which is reported.
template <class Body>
bool unlessbroken(const baseshop& shop, int type, Body&& body) {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (const shopfileerror& e) {
        reportbroken(shop, type, e.what());
        return false;
    }
}

}  // namespace shopsystem
