// Stricter than the standard: what a service's address or a sane redirect never holds is refused.
#include "host/http/weburl.h"

#include <algorithm>
#include <charconv>

namespace host {

namespace {

struct Scheme {
    std::string_view prefix;
    bool tls;
    int port;
};
constexpr Scheme schemes[] = {{"https://", true, 443}, {"http://", false, 80}};

constexpr std::string_view hostcharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._";
constexpr std::string_view numbercharacters = "abcdefABCDEF0123456789:.";  // of version 6

bool isonly(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool beginswith(std::string_view text, std::string_view prefix) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [&](char a, char b) { return a == lower(b); });
}

// "name", "name:port", "[number]", "[number]:port".
bool readauthority(std::string_view text, WebUrl& url) {
    const bool bracketed = text.starts_with('[');
    const auto end = bracketed ? text.find(']') : text.find(':');
    if (bracketed && end == std::string_view::npos) return false;
    const std::string_view name = bracketed ? text.substr(1, end - 1) : text.substr(0, end);
    if (!isonly(name, bracketed ? numbercharacters : hostcharacters)) return false;
    url.host = name;
    std::string_view rest = end == std::string_view::npos ? std::string_view() : text.substr(end + (bracketed ? 1 : 0));
    if (rest.empty()) return true;
    if (!rest.starts_with(':')) return false;
    rest.remove_prefix(1);
    const auto [stopped, error] = std::from_chars(rest.data(), rest.data() + rest.size(), url.port);
    return error == std::errc() && stopped == rest.data() + rest.size() && url.port >= 1 && url.port <= 65535;
}

}  // namespace

std::optional<WebUrl> WebUrl::parse(std::string_view text) {
    if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c <= ' ' || c == 0x7f; })) return {};
    for (const Scheme& scheme : schemes) {
        if (!beginswith(text, scheme.prefix)) continue;
        WebUrl url{.tls = scheme.tls, .host = {}, .port = scheme.port};
        text.remove_prefix(scheme.prefix.size());
        text = text.substr(0, text.find('#'));
        const auto end = text.find_first_of("/?");
        if (!readauthority(text.substr(0, end), url)) return {};
        if (end != std::string_view::npos) url.path = (text[end] == '?' ? "/" : "") + std::string(text.substr(end));
        return url;
    }
    return {};
}

std::optional<WebUrl> WebUrl::redirectedto(std::string_view location) const {
    if (tls && location.starts_with("//")) return parse("https:" + std::string(location));
    if (tls && location.starts_with('/')) {
        const std::string authority = host.find(':') != std::string::npos ? '[' + host + ']' : host;
        return parse("https://" + authority + ':' + std::to_string(port) + std::string(location));
    }
    const auto target = parse(location);
    return target && target->tls ? target : std::nullopt;
}

}  // namespace host
