// The directory's lock tells that a server runs there, and what that server has left tells where to ask it.
#include "host/backup/command.h"

#include <fmt/format.h>
#include <httplib.h>

#include <nlohmann/json.hpp>

#include "host/api/keyfiles.h"
#include "platform/foreignjson.h"

namespace host {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr time_t longest = 24 * 60 * 60;  // seconds for a backup; a server that ends closes the connection

[[noreturn]] void unanswered(const fs::path& directory, const std::string& why) {
    throw BackupError(fmt::format("{}: a server runs in this directory, but {}", directory.string(), why));
}

BackupReport askfor(const ApiAddress& server, const fs::path& directory, const fs::path& target) {
    httplib::Client http(server.host, server.port);
    http.set_bearer_token_auth(server.token);
    http.set_read_timeout(longest);
    const json asked = {{"file", target.string()}};
    const auto answered =
        http.Post("/api/backup", asked.dump(-1, ' ', false, json::error_handler_t::replace), "application/json");
    if (!answered)
        unanswered(directory, fmt::format("no answer came from {}:{} ({})", server.host, server.port,
                                          httplib::to_string(answered.error())));
    json told;
    try {
        told = platform::readforeignjson(answered->body);
        if (answered->status == 200)
            return {told.at("file"), told.at("files"), told.at("bytes"),
                    std::chrono::microseconds(told.at("stoppedmicroseconds"))};
    } catch (const std::exception& e) {
        unanswered(directory, fmt::format("its answer cannot be read: {}", e.what()));
    }
    throw BackupError(told.is_object() ? told.value("error", "") : answered->body);
}

}  // namespace

BackupReport backup(const fs::path& directory, const fs::path& target) {
    const auto here = fs::absolute(target).lexically_normal();
    if (auto report = backupstopped(directory, here)) return *report;
    const auto server = KeyFiles(directory).address();
    if (!server)
        unanswered(directory, fmt::format("{} cannot be read; it may be starting or stopping",
                                          (directory / KeyFiles::addressname).string()));
    return askfor(*server, directory, here);
}

}  // namespace host
