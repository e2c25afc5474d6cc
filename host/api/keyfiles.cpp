#include "host/api/keyfiles.h"

#include <unistd.h>

#include <nlohmann/json.hpp>

#include "host/core/files.h"
#include "host/core/secretfiles.h"
#include "platform/foreignjson.h"

namespace host {

using nlohmann::json;

std::string KeyFiles::token() const { return kepttoken(directory_ / tokenname); }

void KeyFiles::tell(const ApiAddress& address) const {
    const json told = {{"host", address.host}, {"port", address.port}, {"token", address.token}};
    writesecret(directory_ / addressname, told.dump() + "\n");
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
