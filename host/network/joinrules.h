// Who may join under which name.
#pragma once

#include "host/network/network.h"

namespace host {

inline constexpr std::size_t mostplayers = 1000;

// Throws std::runtime_error that says what is wrong with the request.
void checkjoin(const JoinRequest& request);

}  // namespace host
