#include "host/board/board.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>

#include "host/api/door.h"
#include "host/api/webfiles.h"
#include "host/board/answercache.h"
#include "host/core/log.h"
#include "host/core/views.h"
#include "host/server.h"

namespace host {

using nlohmann::json;

namespace {

constexpr std::string_view apipath = "/api";
constexpr std::size_t longestquery = 2048;
constexpr std::ptrdiff_t mostconnections = 256;

// What the page is made of: a path here, and the file that stands there.
struct PageFile {
    const char *path, *file;
};
constexpr PageFile pagefiles[] = {{"/", "/board/index.html"},
                                  {"/board/board.js", "/board/board.js"},
                                  {"/board/board.css", "/board/board.css"},
                                  {"/api.js", "/api.js"},
                                  {"/colours.js", "/colours.js"},
                                  {"/deskvalues.js", "/deskvalues.js"},
                                  {"/dom.js", "/dom.js"},
                                  {"/items.js", "/items.js"},
                                  {"/settings.js", "/settings.js"},
                                  {"/strings.js", "/strings.js"},
                                  {"/strings.en.js", "/strings.en.js"},
                                  {"/strings.zh.js", "/strings.zh.js"},
                                  {"/page.css", "/page.css"},
                                  {"/text.css", "/text.css"},
                                  {"/favicon.svg", "/favicon.svg"}};

// Asked again each time, and sent only where it is another one: so what is shown is never older than the call.
HttpFields headersof(const std::string& tag) {
    HttpFields headers = {{"Cache-Control", tag.empty() ? "no-store" : "public, no-cache"},
                          {"X-Content-Type-Options", "nosniff"}};
    if (!tag.empty()) headers.emplace_back("ETag", tag);
    return headers;
}

HttpAnswer refusal(int status, const std::string& text) {
    return {
        status,
        "application/json",
        json{{"error", text}}.dump(-1, ' ', false, json::error_handler_t::replace),
        {{"Cache-Control", "no-store"}, {"X-Content-Type-Options", "nosniff"}, {"Access-Control-Allow-Origin", "*"}},
        {}};
}

// Whether the caller has what bears the tag. A proxy that packs answers makes weak ones of them.
bool has(const HttpRequest& request, const std::string& tag) {
    if (tag.empty()) return false;
    std::string_view rest = request.header("if-none-match");
    while (!rest.empty()) {
        const auto end = std::min(rest.find(','), rest.size());
        auto one = rest.substr(0, end);
        while (one.starts_with(' ')) one.remove_prefix(1);
        while (one.ends_with(' ')) one.remove_suffix(1);
        if (one.starts_with("W/")) one.remove_prefix(2);
        if (one == tag) return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

// A number that no other run has, so that nobody takes a tag of another run for ours.
std::string newrun() {
    std::random_device chance;
    return fmt::format("{:08x}{:08x}", chance(), chance());
}

// The one who calls: behind a proxy on this machine the one whom the proxy has seen, which it names last.
std::string_view callerof(const HttpRequest& request) {
    const bool isnear = request.from == "127.0.0.1" || request.from == "::1" || request.from == "::ffff:127.0.0.1";
    std::string_view told;
    if (isnear)
        for (const auto& [name, value] : request.headers)
            if (name == "x-forwarded-for") told = value;
    if (const auto at = told.rfind(','); at != std::string_view::npos) told.remove_prefix(at + 1);
    while (told.starts_with(' ')) told.remove_prefix(1);
    constexpr std::size_t longestaddress = 64;
    return told.empty() || told.size() > longestaddress ? std::string_view(request.from) : told;
}

}  // namespace

struct Board::Parts {
    Server& server;
    BoardOptions options;
    const std::string run = newrun();
    RateLimit limit;  // the door's thread alone
    AnswerCache kept;
    Door door;

    Parts(Server& s, BoardOptions o)
        : server(s),
          options(std::move(o)),
          limit(options.rate),
          door({.look = [this](const HttpRequest& request) { return look(request); },
                .call = [this](const HttpRequest& request) { return call(request); },
                .refusal = refusal,
                .trusting = false,
                .workers = 4,
                .moststrangers = mostconnections}) {}

    std::optional<HttpAnswer> look(const HttpRequest& request) {
        if (const int seconds = limit.refusedfor(callerof(request), std::chrono::steady_clock::now()); seconds > 0) {
            auto answer = refusal(429, "too many calls from this address; wait a little");
            answer.headers.emplace_back("Retry-After", std::to_string(seconds));
            return answer;
        }
        if (request.method != "GET" && request.method != "HEAD") {
            auto answer = refusal(405, "this can only be read");
            answer.headers.emplace_back("Allow", "GET, HEAD");
            return answer;
        }
        if (request.bodylength > 0) return refusal(413, "a call for reading has no body");
        const bool isview = request.path == apipath || request.path.starts_with("/api/");
        return isview ? std::nullopt : std::optional(fileanswer(request));
    }

    [[nodiscard]] HttpAnswer fileanswer(const HttpRequest& request) const {
        const auto* const known = std::ranges::find(pagefiles, request.path, &PageFile::path);
        if (known == std::end(pagefiles)) return refusal(404, "there is nothing at this address");
        const auto file = std::ranges::find(webfiles(), std::string_view(known->file), &WebFile::path);
        const auto tag = fmt::format("\"{}\"", run);
        auto headers = headersof(tag);
        headers.emplace_back("Content-Security-Policy",
                             "default-src 'self'; base-uri 'none'; form-action 'self'; frame-ancestors *");
        if (has(request, tag)) return {304, file->type, "", std::move(headers), {}};
        return {200, file->type, std::string(file->content), std::move(headers), {}};
    }

    HttpAnswer call(const HttpRequest& request) {
        try {
            return request.path == apipath ? listed() : answered(request);
        } catch (const NoSuchView& e) {
            return refusal(404, e.what());
        } catch (const ViewsClosed& e) {
            return refusal(503, e.what());
        } catch (const std::invalid_argument& e) {
            return refusal(400, e.what());
        } catch (const std::exception& e) {
            // What went wrong may name what is nobody's business.
            server.log().write("Board", platform::LogLevel::error, fmt::format("{}: {}", request.path, e.what()), 5,
                               {});
            return refusal(500, "the answer could not be made");
        }
    }

    [[nodiscard]] HttpAnswer listed() const {
        json views = json::array();
        for (auto& view : server.views().descriptions()) {
            if (!view.value("open", false)) continue;
            view.erase("actions");
            views.push_back(std::move(view));
        }
        return found(json{{"views", std::move(views)}}.dump(-1, ' ', false, json::error_handler_t::replace), "");
    }

    HttpAnswer answered(const HttpRequest& request) {
        const auto view = request.path.substr(apipath.size() + 1);
        const auto query = queryof(request);
        // First, so that what is kept under it is never older than it says.
        const auto state = server.views().state(view, true);
        const auto tag = state.empty() ? state : fmt::format("\"{}-{}\"", run, state);
        if (has(request, tag)) return {304, "application/json", "", headersof(tag), {}};
        const auto question = view + "?" + query;
        if (const auto body = state.empty() ? nullptr : kept.find(question, state)) return found(*body, tag);
        const auto body = std::make_shared<const std::string>(server.views().ask(view, query, true));
        if (!state.empty()) kept.keep(question, state, body);
        return found(*body, tag);
    }

    // The same text for the same query, in whatever order it was written.
    static std::string queryof(const HttpRequest& request) {
        json query = json::object();
        std::size_t length = 0;
        for (const auto& [name, value] : request.query) {
            length += name.size() + value.size();
            if (length > longestquery) throw std::invalid_argument("the query is too long");
            if (!value.empty() && !query.emplace(name, value).second)
                throw std::invalid_argument("the query has a field twice");
        }
        return query.dump(-1, ' ', false, json::error_handler_t::replace);
    }

    static HttpAnswer found(std::string body, const std::string& tag) {
        auto headers = headersof(tag);
        headers.emplace_back("Access-Control-Allow-Origin", "*");
        return {200, "application/json", std::move(body), std::move(headers), {}};
    }
};

Board::Board(Server& server, BoardOptions options) : parts_(std::make_unique<Parts>(server, std::move(options))) {}

Board::~Board() { stop(); }

void Board::start() {
    BoardOptions& options = parts_->options;
    const int port = parts_->door.listen(options.host, options.port);
    if (port == 0)
        throw StartError(
            fmt::format("the board cannot listen on {}:{}; is the port taken? (--board)", options.host, options.port));
    options.port = port;
    parts_->door.start();
}

void Board::stop() { parts_->door.stop(); }

int Board::port() const { return parts_->options.port; }
std::string Board::address() const {
    const std::string& host = parts_->options.host;
    const std::string name = host.find(':') == std::string::npos ? host : "[" + host + "]";
    return fmt::format("http://{}:{}/", name, parts_->options.port);
}

}  // namespace host
