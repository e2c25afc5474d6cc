// HTTP/1.1 as far as a page and a tool need it, as text: the head of a request read strictly, an answer written.
//
//   head    = method SP target SP "HTTP/1." ( "0" | "1" ) CRLF { name ":" value CRLF } CRLF
//   target  = "/" ... [ "?" [ query ] ]              percent-coded; "+" is a blank in the query
//   query   = name [ "=" value ] { "&" name [ "=" value ] }
//
// A body is as long as Content-Length says; chunked ones are refused. There are no ranges: an answer is sent whole.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

class Outlet;

using HttpFields = std::vector<std::pair<std::string, std::string>>;

struct HttpRequest {
    std::string method, path;
    HttpFields query, headers;  // the names of headers in small letters
    std::string from;           // the address of the other side, in numbers
    std::string body;
    std::size_t bodylength = 0;
    bool keepalive = true;
    bool waits = false;  // with the body, until it is told to go on

    [[nodiscard]] std::string_view header(std::string_view name) const;  // "" when missing
    [[nodiscard]] std::string_view param(std::string_view name) const;   // the first of the name, "" when missing
};

struct HttpAnswer {
    int status = 200;
    std::string type, body;
    HttpFields headers;
    // Not null: the answer has no end, and what is put in here follows its head.
    std::shared_ptr<Outlet> outlet;
};

// What is wrong with a request, and the status that says so.
struct HttpError : std::runtime_error {
    HttpError(int status_, const std::string& text) : std::runtime_error(text), status(status_) {}
    int status;
};

// Throws HttpError.
[[nodiscard]] HttpRequest readhead(std::string_view head);

// With its body, unless only the head was asked for.
[[nodiscard]] std::string writeanswer(const HttpAnswer& answer, bool keepalive, bool headonly);

}  // namespace host
