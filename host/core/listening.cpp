#include "host/core/listening.h"

#include <fmt/format.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cstring>

#include "host/server.h"

namespace host {

namespace {

constexpr int queuelength = 128;

Descriptor listenat(const addrinfo& place) {
    Descriptor socket(::socket(place.ai_family, place.ai_socktype | SOCK_CLOEXEC | SOCK_NONBLOCK, place.ai_protocol));
    // Not SO_REUSEPORT: another server of the same user would get some of the calls.
    const int yes = 1;
    ::setsockopt(socket.number(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (::bind(socket.number(), place.ai_addr, place.ai_addrlen) != 0 || ::listen(socket.number(), queuelength) != 0)
        return {};
    return socket;
}

}  // namespace

Descriptor listenat(const std::string& host, int port) {
    addrinfo wanted{}, *found = nullptr;
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_PASSIVE;
    if (::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0) return {};
    Descriptor listener;
    for (const addrinfo* place = found; place != nullptr && !listener.isopen(); place = place->ai_next)
        listener = listenat(*place);
    ::freeaddrinfo(found);
    return listener;
}

int portof(const Descriptor& socket) {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    if (::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&bound), &length) != 0) return 0;
    return ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6&>(bound).sin6_port
                                             : reinterpret_cast<sockaddr_in&>(bound).sin_port);
}

Descriptor listenat(const std::filesystem::path& file) {
    // It comes to its name when its rights are narrow.
    const std::string part = (file.parent_path() / fmt::format(".{}.part", file.filename().string())).string();
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    if (part.size() >= sizeof place.sun_path)
        throw StartError(fmt::format("{}: the path is too long for a socket, by {} bytes", file.string(),
                                     part.size() + 1 - sizeof place.sun_path));
    std::memcpy(place.sun_path, part.c_str(), part.size() + 1);
    ::unlink(part.c_str());
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::bind(socket.number(), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0 &&
        ::chmod(part.c_str(), 0600) == 0 && ::listen(socket.number(), queuelength) == 0 &&
        ::rename(part.c_str(), file.c_str()) == 0)
        return socket;
    const int why = errno;
    ::unlink(part.c_str());
    throw StartError(fmt::format("{}: nothing can listen here: {}", file.string(), std::strerror(why)));
}

Descriptor acceptfrom(const Descriptor& listener) {
    Descriptor socket(::accept4(listener.number(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    const int yes = 1;
    if (socket.isopen()) ::setsockopt(socket.number(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    return socket;
}

}  // namespace host
