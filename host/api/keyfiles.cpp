#include "host/api/keyfiles.h"

#include <fmt/format.h>
#include <openssl/rand.h>
#include <sys/stat.h>

#include <array>
#include <cstring>
#include <nlohmann/json.hpp>

#include "host/core/files.h"
#include "host/server.h"
#include "platform/foreignjson.h"

namespace host {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr std::size_t shortest = 16, longest = 256;  // a token

std::string newtoken() {
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw StartError("no random token could be made");
    std::string token;
    for (const unsigned char byte : bytes) token += fmt::format("{:02x}", byte);
    return token;
}

bool fitsatoken(std::string_view text) {
    return text.size() >= shortest && text.size() <= longest &&
           std::ranges::all_of(text, [](char c) { return c > ' ' && c <= '~'; });
}

void keep(const fs::path& file, std::string_view content) {
    if (!writeprivately(file, content))
        throw StartError(fmt::format("{}: it cannot be written: {}", file.string(), std::strerror(errno)));
}

}  // namespace

std::string KeyFiles::token() const {
    const auto file = directory_ / tokenname;
    const DiskFiles files(directory_);
    if (!files.exists(std::string(tokenname))) {
        const auto token = newtoken();
        keep(file, token + "\n");
        return token;
    }
    auto token = files.read(std::string(tokenname)).value_or("");
    while (token.ends_with('\n') || token.ends_with('\r')) token.pop_back();
    if (!fitsatoken(token))
        throw StartError(
            fmt::format("{}: no token: {} to {} visible ASCII characters; without the file a new one is made",
                        file.string(), shortest, longest));
    ::chmod(file.c_str(), 0600);
    return token;
}

void KeyFiles::tell(const ApiAddress& address) const {
    const json told = {{"host", address.host}, {"port", address.port}, {"token", address.token}};
    keep(directory_ / addressname, told.dump() + "\n");
}

void KeyFiles::forget() const { ::unlink((directory_ / addressname).c_str()); }

std::optional<ApiAddress> KeyFiles::address() const {
    const auto text = DiskFiles(directory_).read(std::string(addressname));
    if (!text) return std::nullopt;
    try {
        const json told = platform::readforeignjson(*text);
        return ApiAddress{told.at("host"), told.at("port"), told.at("token")};
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace host
