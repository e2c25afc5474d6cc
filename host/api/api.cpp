#include "host/api/api.h"

#include <fmt/format.h>
#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>

#include <algorithm>

#include "host/api/door.h"
#include "host/api/eventstream.h"
#include "host/api/handlers.h"
#include "host/api/keyfiles.h"
#include "host/api/webfiles.h"
#include "host/clients.h"
#include "host/core/secretfiles.h"
#include "host/server.h"
#include "platform/foreignjson.h"

namespace host {

using nlohmann::json;

namespace {

constexpr std::string_view eventspath = "/api/events", metricspath = "/metrics";

HttpAnswer answered(int status, const json& body) {
    return {status, "application/json", body.dump(-1, ' ', false, json::error_handler_t::replace), {}, {}};
}

HttpAnswer refusal(int status, const std::string& text) { return answered(status, {{"error", text}}); }

// Whether the path is of the table's form; the name in it, if the form has a place for one.
bool matches(std::string_view form, std::string_view path, std::string& name) {
    const std::size_t place = form.find("{}");
    if (place == std::string_view::npos) return form == path;
    const std::string_view before = form.substr(0, place), behind = form.substr(place + 2);
    if (!path.starts_with(before)) return false;
    path.remove_prefix(before.size());
    const std::string_view given = path.substr(0, path.find('/'));
    name = given;
    return !given.empty() && path.substr(given.size()) == behind;
}

// Of a page's file, which is not secret.
std::optional<HttpAnswer> fileanswer(const HttpRequest& request) {
    if (request.method != "GET" && request.method != "HEAD") return std::nullopt;
    const auto found = std::ranges::find(webfiles(), request.path, &WebFile::path);
    if (found == webfiles().end()) return std::nullopt;
    return HttpAnswer{200,
                      found->type,
                      std::string(found->content),
                      {{"Cache-Control", "no-cache"},
                       {"Content-Security-Policy",
                        "default-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"}},
                      {}};
}

HttpAnswer nosuchcall(const HttpRequest& request) {
    return refusal(404, fmt::format("{} {}: no such call", request.method, request.path));
}

}  // namespace

struct ControlApi::Parts {
    Server& server;
    Clients& clients;
    Bustle& bustle;
    ApiOptions options;
    KeyFiles keys;
    bool told = false;  // where it listens
    EventStreams streams;
    Door door;

    Parts(Server& s, Clients& c, Bustle& b, ApiOptions o)
        : server(s),
          clients(c),
          bustle(b),
          options(std::move(o)),
          keys(s.options().directory),
          streams(s, c),
          door({.look = [this](const HttpRequest& request) { return look(request); },
                .call = [this](const HttpRequest& request) { return call(request); },
                .refusal = refusal}) {}

    // A page of another origin, or another name for this address, must not reach the API through somebody's browser.
    [[nodiscard]] bool ownname(std::string_view name) const {
        for (const std::string& host :
             {options.host, std::string("127.0.0.1"), std::string("localhost"), std::string("[::1]")})
            if (name == fmt::format("{}:{}", host, options.port)) return true;
        return false;
    }

    // In the address only where a browser can send no header; addresses end up in histories and logs.
    [[nodiscard]] bool hastoken(const HttpRequest& request) const {
        std::string_view given = request.header("authorization");
        if (given.starts_with("Bearer "))
            given.remove_prefix(7);
        else
            given = request.path == eventspath ? request.param("token") : "";
        return sametoken(given, options.token);
    }

    [[nodiscard]] std::optional<HttpAnswer> look(const HttpRequest& request) const {
        if (!ownname(request.header("host"))) return refusal(403, "the Host header names another server");
        const std::string_view origin = request.header("origin");
        if (!origin.empty() && !(origin.starts_with("http://") && ownname(origin.substr(7))))
            return refusal(403, fmt::format("the origin {} may not call this server", origin));
        const bool ismetrics = request.path == metricspath;
        if (ismetrics && options.openmetrics) return std::nullopt;
        if (!ismetrics && !request.path.starts_with("/api/")) {
            const auto file = fileanswer(request);
            return file ? *file : nosuchcall(request);
        }
        if (!hastoken(request)) return refusal(401, "the token is missing or wrong; the server prints it at start");
        return std::nullopt;
    }

    HttpAnswer call(const HttpRequest& request) {
        try {
            if (request.method == "GET" && request.path == eventspath) return events(request);
            if (request.method == "GET" && request.path == metricspath) return metrics();
            std::string player;
            for (const ApiRoute& route : apiroutes())
                if (request.method == route.method && matches(route.path, request.path, player)) {
                    ApiCall made{server,
                                 clients,
                                 bustle,
                                 streams,
                                 player,
                                 bodyof(request),
                                 [&](const char* name) { return std::string(request.param(name)); },
                                 request.query};
                    return answered(200, route.handle(made));
                }
            return nosuchcall(request);
        } catch (const ApiError& e) {
            return refusal(e.status, e.what());
        } catch (const BackupError& e) {
            return refusal(409, e.what());
        } catch (const std::exception& e) {
            return refusal(400, e.what());
        }
    }

    static json bodyof(const HttpRequest& request) {
        if (request.body.empty()) return json::object();
        try {
            json body = platform::readforeignjson(request.body);
            if (!body.is_object()) throw ApiError(400, "the body must be a JSON object");
            return body;
        } catch (const platform::ForeignJsonError& e) {
            throw ApiError(400, fmt::format("the body {}", e.what()));
        }
    }

    [[nodiscard]] HttpAnswer metrics() const {
        return {200,
                "text/plain; version=0.0.4; charset=utf-8",
                prometheus::TextSerializer().Serialize(server.metrics()),
                {{"Cache-Control", "no-store"}},
                {}};
    }

    HttpAnswer events(const HttpRequest& request) {
        EventStreams::Wish wish;
        for (const auto& [name, value] : request.query)
            if (name == "player") wish.players.insert(value);
        wish.log = request.param("log") == "1";
        wish.heard = numberof(request.param("heard"));
        wish.logline = numberof(request.param("after"));
        wish.run = request.param("run");
        const auto outlet = streams.subscribe(std::move(wish));
        if (outlet == nullptr)
            throw ApiError(503, fmt::format("{} event streams are open already; close one", EventStreams::most));
        return {200, "text/event-stream", "", {{"Cache-Control", "no-store"}}, outlet};
    }
};

ControlApi::ControlApi(Server& server, Clients& clients, Bustle& bustle, ApiOptions options)
    : parts_(std::make_unique<Parts>(server, clients, bustle, std::move(options))) {
    if (parts_->options.token.empty()) parts_->options.token = parts_->keys.token();
}

ControlApi::~ControlApi() { stop(); }

void ControlApi::start() {
    ApiOptions& options = parts_->options;
    const int port = parts_->door.listen(options.host, options.port);
    if (port == 0)
        throw StartError(fmt::format("the control API cannot listen on {}:{}; is the port taken? (--api-port)",
                                     options.host, options.port));
    options.port = port;
    parts_->keys.tell({options.host, options.port, options.token});
    parts_->told = true;
    parts_->streams.start();
    parts_->door.start();
}

void ControlApi::stop() {
    if (std::exchange(parts_->told, false)) parts_->keys.forget();
    parts_->streams.stop();
    parts_->door.stop();
}

int ControlApi::port() const { return parts_->options.port; }
const std::string& ControlApi::token() const { return parts_->options.token; }
std::string ControlApi::address() const {
    return fmt::format("http://{}:{}/#token={}", parts_->options.host, parts_->options.port, parts_->options.token);
}

}  // namespace host
