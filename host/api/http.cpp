#include "host/api/http.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace host {

namespace {

bool isdigit(char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool istokenbyte(char c) {
    return isdigit(c) || (lower(c) >= 'a' && lower(c) <= 'z') ||
           std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}
bool istoken(std::string_view text) { return !text.empty() && std::ranges::all_of(text, istokenbyte); }
// Bytes above ASCII are let through: header values may hold them.
bool isvisible(char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7f; }
bool isvaluebyte(char c) { return isvisible(c) || c == ' ' || c == '\t'; }

// Takes the text in front of the mark, and the mark, off the rest; all of it when the mark is not there.
std::string_view cut(std::string_view& rest, std::string_view mark) {
    const std::size_t at = rest.find(mark);
    const std::string_view front = rest.substr(0, at);
    rest.remove_prefix(at == std::string_view::npos ? rest.size() : at + mark.size());
    return front;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string decoded(std::string_view text, bool plusisblank) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = static_cast<unsigned char>(text[i]);
        if (byte == '+' && plusisblank) byte = ' ';
        if (byte == '%') {
            const std::string_view digits = text.substr(i + 1, 2);
            const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
            if (digits.size() < 2 || error != std::errc{} || end != digits.data() + 2)
                throw HttpError(400, "a \"%\" in the address is not followed by two digits");
            i += 2;
        }
        out += static_cast<char>(byte);
    }
    return out;
}

void readtarget(std::string_view target, HttpRequest& request) {
    if (!target.starts_with('/') || !std::ranges::all_of(target, isvisible))
        throw HttpError(400, "the address must begin with \"/\" and hold no blanks");
    target = cut(target, "#");
    request.path = decoded(cut(target, "?"), false);
    while (!target.empty()) {
        std::string_view value = cut(target, "&");
        const std::string_view name = cut(value, "=");
        request.query.emplace_back(decoded(name, true), decoded(value, true));
    }
}

void readrequestline(std::string_view line, HttpRequest& request) {
    const std::string_view method = cut(line, " "), target = cut(line, " ");
    if (!istoken(method) || (line != "HTTP/1.1" && line != "HTTP/1.0"))
        throw HttpError(400, "the first line must be a method, an address and HTTP/1.1");
    request.method = method;
    request.keepalive = line == "HTTP/1.1";
    readtarget(target, request);
}

void readheader(std::string_view line, HttpRequest& request) {
    const bool complete = line.find(':') != std::string_view::npos;
    std::string name(cut(line, ":"));
    if (!complete || !istoken(name)) throw HttpError(400, "a header line must be a name, \":\" and a value");
    if (!std::ranges::all_of(line, isvaluebyte))
        throw HttpError(400, fmt::format("the header {} holds a control character", name));
    std::ranges::transform(name, name.begin(), lower);
    // Said twice, these could mean one thing here and another to whoever stands in between.
    const bool once = name == "host" || name == "content-length" || name == "authorization" || name == "origin";
    if (once && std::ranges::any_of(request.headers, [&](const auto& known) { return known.first == name; }))
        throw HttpError(400, fmt::format("the header {} is there twice", name));
    request.headers.emplace_back(std::move(name), trimmed(line));
}

std::string_view find(const HttpFields& fields, std::string_view name) {
    const auto found = std::ranges::find(fields, name, &HttpFields::value_type::first);
    return found == fields.end() ? std::string_view() : std::string_view(found->second);
}

bool sayslower(std::string_view value, std::string_view word) { return std::ranges::equal(value, word, {}, lower); }

void readbodylength(HttpRequest& request) {
    if (!request.header("transfer-encoding").empty())
        throw HttpError(411, "a body needs a Content-Length, it cannot come in chunks");
    const bool given = std::ranges::count(request.headers, "content-length", &HttpFields::value_type::first) > 0;
    if (!given) return;
    const std::string_view length = request.header("content-length");
    const auto [end, error] = std::from_chars(length.data(), length.data() + length.size(), request.bodylength);
    if (error == std::errc::result_out_of_range) throw HttpError(413, "the body is too long");
    if (error != std::errc{} || end != length.data() + length.size())
        throw HttpError(400, "the Content-Length is no number");
}

struct Reason {
    int status;
    const char* text;
};
constexpr Reason reasons[] = {{200, "OK"},
                              {304, "Not Modified"},
                              {400, "Bad Request"},
                              {401, "Unauthorized"},
                              {403, "Forbidden"},
                              {404, "Not Found"},
                              {405, "Method Not Allowed"},
                              {408, "Request Timeout"},
                              {409, "Conflict"},
                              {411, "Length Required"},
                              {413, "Content Too Large"},
                              {429, "Too Many Requests"},
                              {431, "Request Header Fields Too Large"},
                              {500, "Internal Server Error"},
                              {503, "Service Unavailable"}};

}  // namespace

std::string_view HttpRequest::header(std::string_view name) const { return find(headers, name); }
std::string_view HttpRequest::param(std::string_view name) const { return find(query, name); }

HttpRequest readhead(std::string_view head) {
    HttpRequest request;
    readrequestline(cut(head, "\r\n"), request);
    for (std::string_view line = cut(head, "\r\n"); !line.empty(); line = cut(head, "\r\n")) readheader(line, request);
    readbodylength(request);
    const std::string_view connection = request.header("connection");
    if (sayslower(connection, "close")) request.keepalive = false;
    if (sayslower(connection, "keep-alive")) request.keepalive = true;
    request.waits = sayslower(request.header("expect"), "100-continue");
    return request;
}

std::string writeanswer(const HttpAnswer& answer, bool keepalive, bool headonly) {
    const auto* const reason = std::ranges::find(reasons, answer.status, &Reason::status);
    std::string text = fmt::format("HTTP/1.1 {} {}\r\nContent-Type: {}\r\n", answer.status,
                                   reason == std::end(reasons) ? "" : reason->text, answer.type);
    for (const auto& [name, value] : answer.headers) text += fmt::format("{}: {}\r\n", name, value);
    if (answer.outlet == nullptr && answer.status != 304)
        text += fmt::format("Content-Length: {}\r\n", answer.body.size());
    text += keepalive ? "Connection: keep-alive\r\n\r\n" : "Connection: close\r\n\r\n";
    if (!headonly) text += answer.body;
    return text;
}

}  // namespace host
