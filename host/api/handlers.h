// The calls of the control API as one table: method, path, what is done. A handler throws ApiError or any other
// exception; its text becomes the answer's "error".
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>
#include <string>

#include "host/api/http.h"
#include "host/clients.h"

namespace host {

class Server;
class EventStreams;
class Bustle;

struct ApiError : std::runtime_error {
    ApiError(int status_, const std::string& text) : std::runtime_error(text), status(status_) {}
    int status;
};

struct ApiCall {
    Server& server;
    Clients& clients;
    Bustle& bustle;
    EventStreams& streams;
    std::string player;                             // of the path, where it names one, or a view
    nlohmann::json body;                            // an object; empty without a body
    std::function<std::string(const char*)> query;  // a value of the query string, "" when missing
    const HttpFields& fields;                       // all of them
};

struct ApiRoute {
    const char* method;  // "GET", "POST", "PUT", "DELETE"
    const char* path;    // "/api/players/{}/click": {} is the player's name
    nlohmann::json (*handle)(ApiCall&);
};

// A number of a query string, 0 when it is missing. Throws ApiError.
[[nodiscard]] std::uint64_t numberof(std::string_view text);

[[nodiscard]] std::span<const ApiRoute> apiroutes();

}  // namespace host
