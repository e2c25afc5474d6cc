// Addresses of web services: "http" or "https", a name or number, a port if it is not the usual one, a path.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

struct WebUrl {
    bool tls = false;
    std::string host;  // a number of version 6 without its brackets
    int port = 80;
    std::string path = "/";  // with the query, without a fragment

    // Nothing for any other scheme, for one with a user's name in it, and for what is no address at all.
    [[nodiscard]] static std::optional<WebUrl> parse(std::string_view text);
    // Where a redirect from here leads; nothing when it does not lead over TLS, or is told by a path that depends on
    // the present one.
    [[nodiscard]] std::optional<WebUrl> redirectedto(std::string_view location) const;

    bool operator==(const WebUrl&) const = default;
};

}  // namespace host
