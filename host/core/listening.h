// Sockets that listen.
#pragma once

#include <filesystem>
#include <string>

#include "host/core/descriptor.h"

namespace host {

// Closed when nothing can listen there. Port 0 takes any free one.
[[nodiscard]] Descriptor listenat(const std::string& host, int port);
[[nodiscard]] int portof(const Descriptor& socket);  // 0 when it has none

// A unix socket for the server's user alone, in the place of one that is left from before. Throws StartError.
[[nodiscard]] Descriptor listenat(const std::filesystem::path& file);

// A new connection, closed when there is none; errno tells.
[[nodiscard]] Descriptor acceptfrom(const Descriptor& listener);

}  // namespace host
