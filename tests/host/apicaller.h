// A tool that calls the control API.
#pragma once

#include <httplib.h>

#include <nlohmann/json.hpp>
#include <string>

namespace coretests {

class ApiCaller {
public:
    ApiCaller(int port, const std::string& token) : http("127.0.0.1", port) {
        http.set_bearer_token_auth(token);
        http.set_keep_alive(true);
        http.set_tcp_nodelay(true);
    }

    struct Answer {
        int status = 0;  // 0: the server is gone
        nlohmann::json body;
    };
    Answer get(const std::string& path) { return read(http.Get(path)); }
    Answer post(const std::string& path, const nlohmann::json& body = nlohmann::json::object()) {
        return read(http.Post(path, body.dump(), "application/json"));
    }
    Answer put(const std::string& path, const nlohmann::json& body) {
        return read(http.Put(path, body.dump(), "application/json"));
    }
    Answer remove(const std::string& path) { return read(http.Delete(path)); }
    [[nodiscard]] static Answer read(const httplib::Result& result) {
        if (!result) return {};
        return {result->status, nlohmann::json::parse(result->body, nullptr, false)};
    }

    httplib::Client http;
};

}  // namespace coretests
