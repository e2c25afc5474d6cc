#include "host/core/secretfiles.h"

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <openssl/rand.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "host/core/files.h"
#include "host/server.h"

namespace host {

namespace fs = std::filesystem;

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

}  // namespace

void writesecret(const fs::path& file, std::string_view content) {
    if (!writeprivately(file, content))
        throw StartError(fmt::format("{}: it cannot be written: {}", file.string(), std::strerror(errno)));
}

std::string kepttoken(const fs::path& file) {
    const DiskFiles files(file.parent_path());
    const std::string name = file.filename().string();
    if (!files.exists(name)) {
        const auto token = newtoken();
        writesecret(file, token + "\n");
        return token;
    }
    auto token = files.read(name).value_or("");
    while (token.ends_with('\n') || token.ends_with('\r')) token.pop_back();
    if (!fitsatoken(token))
        throw StartError(
            fmt::format("{}: no token: {} to {} visible ASCII characters; without the file a new one is made",
                        file.string(), shortest, longest));
    ::chmod(file.c_str(), 0600);
    return token;
}

bool sametoken(std::string_view given, std::string_view token) {
    return given.size() == token.size() && CRYPTO_memcmp(given.data(), token.data(), given.size()) == 0;
}

}  // namespace host
