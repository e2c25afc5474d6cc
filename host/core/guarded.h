// The edge at which the server catches what other people's code throws: the text goes to the log, the server goes on.
#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// Takes one line for the error stream of the server's log.
using Complain = std::function<void(const std::string&)>;

// What the body threw, as text; nothing when it came through. The exception itself does not outlive the call, and so
// not the code that it came from.
template <class Body>
std::optional<std::string> failureof(Body&& body) {
    try {
        body();
        return std::nullopt;
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return "unknown exception";
    }
}

// False when the body threw.
template <class Body>
bool guarded(const Complain& complain, std::string_view what, Body&& body) {
    const auto failure = failureof(body);
    if (failure) complain(std::string(what) + ": " + *failure);
    return !failure;
}

}  // namespace host
