// What the control API leaves in the server directory, for its owner alone: its token, which stays, so that an open
// page survives a restart, and while it listens its address, by which other programs of the same user find it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace host {

struct ApiAddress {
    std::string host;
    int port = 0;
    std::string token;
};

class KeyFiles {
public:
    static constexpr std::string_view tokenname = "api.token", addressname = "api.address";

    explicit KeyFiles(std::filesystem::path directory) : directory_(std::move(directory)) {}
    // Of an earlier start, or a new one that is kept from now on. Throws StartError.
    [[nodiscard]] std::string token() const;
    void tell(const ApiAddress& address) const;  // throws StartError
    void forget() const;
    // Of a server that listens, or did when it was killed.
    [[nodiscard]] std::optional<ApiAddress> address() const;

private:
    std::filesystem::path directory_;
};

}  // namespace host
