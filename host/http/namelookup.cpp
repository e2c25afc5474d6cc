#include "host/http/namelookup.h"

#include <netdb.h>
#include <sys/socket.h>

#include <memory>

namespace host {

std::vector<std::string> addressesof(const std::string& name) {
    addrinfo wanted{};
    wanted.ai_family = AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* first = nullptr;
    if (::getaddrinfo(name.c_str(), nullptr, &wanted, &first) != 0) return {};
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owned(first, &::freeaddrinfo);
    std::vector<std::string> numbers;
    for (const addrinfo* info = first; info != nullptr; info = info->ai_next) {
        char number[NI_MAXHOST];
        if (::getnameinfo(info->ai_addr, info->ai_addrlen, number, sizeof number, nullptr, 0, NI_NUMERICHOST) == 0)
            numbers.emplace_back(number);
    }
    return numbers;
}

}  // namespace host
