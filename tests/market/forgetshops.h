// The cache of shops outlives a host. Whoever has filled it without the module empties it behind himself, so that no
// test meets the shops of another.
#pragma once

#include <memory>

#include "plugin/shopsystem/runtimeshopmanager.h"

namespace market_tests {

// With no save on its way.
inline void forgetshops() {
    std::destroy_at(&shopsystem::globalruntimeshopmanager);
    std::construct_at(&shopsystem::globalruntimeshopmanager);
}

}  // namespace market_tests
