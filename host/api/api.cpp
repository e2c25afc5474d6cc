#include "host/api/api.h"

#include <fmt/format.h>
#include <httplib.h>
#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <array>
#include <regex>
#include <thread>

#include "host/api/eventstream.h"
#include "host/api/handlers.h"
#include "host/api/webfiles.h"
#include "host/clients.h"
#include "host/server.h"

namespace host {

using nlohmann::json;

namespace {

constexpr std::size_t mostbody = 1 << 20;

std::string newtoken() {
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw StartError("no random token could be made");
    std::string token;
    for (const unsigned char byte : bytes) token += fmt::format("{:02x}", byte);
    return token;
}

// A table path as a regular expression; its one group is the player's name, percent-decoded by the library.
std::string pattern(const char* path) {
    std::string text = path;
    if (const auto at = text.find("{}"); at != std::string::npos) text.replace(at, 2, "([^/]+)");
    return text;
}

void send(httplib::Response& response, int status, const json& body) {
    response.status = status;
    response.set_content(body.dump(-1, ' ', false, json::error_handler_t::replace), "application/json");
}

}  // namespace

struct ControlApi::Parts {
    Server& server;
    Clients& clients;
    ApiOptions options;
    EventStreams streams;
    httplib::Server http;
    std::thread listener;

    Parts(Server& s, Clients& c, ApiOptions o) : server(s), clients(c), options(std::move(o)), streams(s, c) {}

    // A page of another origin, or another name for this address, must not reach the API through somebody's browser.
    [[nodiscard]] bool ownname(const std::string& name) const {
        for (const std::string& host :
             {options.host, std::string("127.0.0.1"), std::string("localhost"), std::string("[::1]")})
            if (name == fmt::format("{}:{}", host, options.port)) return true;
        return false;
    }

    [[nodiscard]] bool hastoken(const httplib::Request& request) const {
        const std::string bearer = request.get_header_value("Authorization");
        const std::string given = bearer.starts_with("Bearer ") ? bearer.substr(7) : request.get_param_value("token");
        return given.size() == options.token.size() &&
               CRYPTO_memcmp(given.data(), options.token.data(), given.size()) == 0;
    }

    // True when the request may go on; otherwise the response is filled.
    bool admit(const httplib::Request& request, httplib::Response& response) const {
        if (!ownname(request.get_header_value("Host"))) {
            send(response, 403, {{"error", "the Host header names another server"}});
            return false;
        }
        const std::string origin = request.get_header_value("Origin");
        if (!origin.empty() && !(origin.starts_with("http://") && ownname(origin.substr(7)))) {
            send(response, 403, {{"error", fmt::format("the origin {} may not call this server", origin)}});
            return false;
        }
        if (request.path.starts_with("/api/") && !hastoken(request)) {
            send(response, 401, {{"error", "the token is missing or wrong; the server prints it at start"}});
            return false;
        }
        return true;
    }

    void handle(const ApiRoute& route, const httplib::Request& request, httplib::Response& response) {
        try {
            json body = json::object();
            if (!request.body.empty()) body = json::parse(request.body);
            if (!body.is_object()) throw ApiError(400, "the body must be a JSON object");
            ApiCall call{server,          clients,
                         streams,         request.matches.size() > 1 ? request.matches[1].str() : "",
                         std::move(body), [&](const char* name) { return request.get_param_value(name); }};
            send(response, 200, route.handle(call));
        } catch (const ApiError& e) {
            send(response, e.status, {{"error", e.what()}});
        } catch (const json::parse_error& e) {
            send(response, 400, {{"error", fmt::format("the body is no JSON: {}", e.what())}});
        } catch (const json::exception& e) {
            send(response, 400, {{"error", fmt::format("the body does not fit: {}", e.what())}});
        } catch (const std::exception& e) {
            send(response, 400, {{"error", e.what()}});
        }
    }

    void stream(const httplib::Request& request, httplib::Response& response) {
        auto place = std::make_shared<EventStreams::Place>();
        const auto count = request.get_param_value_count("player");
        for (std::size_t i = 0; i < count; ++i) place->players.insert(request.get_param_value("player", i));
        place->log = request.get_param_value("log") == "1";
        try {
            place->heard = numberof(request.get_param_value("heard"));
            place->logline = numberof(request.get_param_value("after"));
        } catch (const ApiError& e) {
            return send(response, e.status, {{"error", e.what()}});
        }
        response.set_header("Cache-Control", "no-store");
        response.set_chunked_content_provider("text/event-stream", [this, place](std::size_t, httplib::DataSink& sink) {
            const std::string text = streams.next(*place, 15000);
            if (text.empty()) return false;
            return sink.write(text.data(), text.size());
        });
    }
};

ControlApi::ControlApi(Server& server, Clients& clients, ApiOptions options)
    : parts_(std::make_unique<Parts>(server, clients, std::move(options))) {
    Parts& parts = *parts_;
    if (parts.options.token.empty()) parts.options.token = newtoken();
    // Each open page holds one thread for its stream.
    parts.http.new_task_queue = [] { return new httplib::ThreadPool(48); };
    parts.http.set_payload_max_length(mostbody);
    parts.http.set_tcp_nodelay(true);
    // A stop waits for so long for the connections that callers keep open.
    parts.http.set_keep_alive_timeout(1);
    // The library would share a port with another server of the same user, and each would get some of the calls.
    parts.http.set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    parts.http.set_pre_routing_handler([&parts](const httplib::Request& request, httplib::Response& response) {
        return parts.admit(request, response) ? httplib::Server::HandlerResponse::Unhandled
                                              : httplib::Server::HandlerResponse::Handled;
    });
    parts.http.set_error_handler([](const httplib::Request& request, httplib::Response& response) {
        if (response.body.empty())
            send(response, response.status,
                 {{"error", fmt::format("{} {}: no such call", request.method, request.path)}});
    });
    for (const ApiRoute& route : apiroutes()) {
        const auto handle = [&parts, &route](const httplib::Request& request, httplib::Response& response) {
            parts.handle(route, request, response);
        };
        const std::string path = pattern(route.path), method = route.method;
        if (method == "GET") parts.http.Get(path, handle);
        if (method == "POST") parts.http.Post(path, handle);
        if (method == "PUT") parts.http.Put(path, handle);
        if (method == "DELETE") parts.http.Delete(path, handle);
    }
    parts.http.Get("/api/events", [&parts](const httplib::Request& request, httplib::Response& response) {
        parts.stream(request, response);
    });
    for (const WebFile& file : webfiles())
        parts.http.Get(std::regex_replace(std::string(file.path), std::regex("\\."), "\\."),
                       [&file](const httplib::Request&, httplib::Response& response) {
                           response.set_header("Cache-Control", "no-cache");
                           response.set_header(
                               "Content-Security-Policy",
                               "default-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
                           response.set_content(file.content.data(), file.content.size(), file.type);
                       });
}

ControlApi::~ControlApi() { stop(); }

void ControlApi::start() {
    Parts& parts = *parts_;
    int& port = parts.options.port;
    const int bound = port == 0 ? parts.http.bind_to_any_port(parts.options.host)
                                : (parts.http.bind_to_port(parts.options.host, port) ? port : -1);
    if (bound < 0)
        throw StartError(fmt::format("the control API cannot listen on {}:{}; is the port taken? (--api-port)",
                                     parts.options.host, port));
    port = bound;
    parts.listener = std::thread([&parts] { parts.http.listen_after_bind(); });
    while (!parts.http.is_running()) std::this_thread::yield();
}

void ControlApi::stop() {
    parts_->streams.stop();
    if (!parts_->listener.joinable()) return;
    parts_->http.stop();
    parts_->listener.join();
}

int ControlApi::port() const { return parts_->options.port; }
const std::string& ControlApi::token() const { return parts_->options.token; }
std::string ControlApi::address() const {
    return fmt::format("http://{}:{}/#token={}", parts_->options.host, parts_->options.port, parts_->options.token);
}

}  // namespace host
