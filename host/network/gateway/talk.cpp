#include "host/network/gateway/talk.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "platform/foreignjson.h"

namespace host {

using nlohmann::json;

namespace {

json object(const std::string& payload) {
    json read = payload.empty() ? json::object() : platform::readforeignjson(payload);
    if (!read.is_object()) throw std::runtime_error("is no JSON object");
    return read;
}

// Of the kind that the fallback is of. Throws std::runtime_error.
template <class T>
T field(const json& from, const char* key, T fallback) {
    const auto found = from.find(key);
    if (found == from.end()) return fallback;
    const bool fits = std::is_same_v<T, bool>  ? found->is_boolean()
                      : std::is_same_v<T, int> ? found->is_number_integer()
                                               : found->is_string();
    if (!fits) throw std::runtime_error(fmt::format("has a wrong \"{}\"", key));
    if constexpr (std::is_same_v<T, int>)
        if (found->template get<json::number_float_t>() < 0 || found->template get<json::number_float_t>() > 1e6)
            throw std::runtime_error(fmt::format("has a wrong \"{}\"", key));
    return found->template get<T>();
}

}  // namespace

void GatewayTalk::hear(Frame frame) {
    const auto operation = static_cast<FromGateway>(frame.operation);
    if (operation == FromGateway::login) return login(frame);
    if (!loggedin_) throw BadFrame("the first frame is no login");
    switch (operation) {
        case FromGateway::open:
            return open(frame);
        case FromGateway::packet:
            demandsession(frame);
            return wishes_.packet(frame.session, std::move(frame.payload));
        case FromGateway::close: {
            demandsession(frame);
            std::string reason;
            try {
                reason = field(object(frame.payload), "reason", reason);
            } catch (const std::runtime_error&) {
                // It is over all the same.
            }
            return wishes_.close(frame.session, std::move(reason));
        }
        default:
            throw BadFrame(fmt::format("the unknown operation {}", frame.operation));
    }
}

void GatewayTalk::login(const Frame& frame) {
    if (loggedin_) throw BadFrame("a second login");
    if (frame.session != 0) throw BadFrame("a login with a session");
    std::string token, gateway;
    try {
        const json said = object(frame.payload);
        token = field(said, "token", token);
        gateway = field(said, "gateway", gateway);
    } catch (const std::runtime_error& e) {
        throw BadFrame(fmt::format("the login {}", e.what()));
    }
    wishes_.login(token, gateway);
    loggedin_ = true;
}

void GatewayTalk::open(const Frame& frame) {
    if (frame.session <= lastsession_)
        throw BadFrame(fmt::format("an open of session {} after {}", frame.session, lastsession_));
    lastsession_ = frame.session;
    OpenRequest request;
    JoinRequest& player = request.player;
    try {
        const json said = object(frame.payload);
        player.name = field(said, "name", std::string());
        player.xuid = field(said, "xuid", std::string());
        player.language = field(said, "language", player.language);
        player.devicetype = field(said, "device", player.devicetype);
        request.authenticated = field(said, "authenticated", false);
    } catch (const std::runtime_error& e) {
        return wishes_.refuse(frame.session, fmt::format("the request {}", e.what()));
    }
    wishes_.open(frame.session, std::move(request));
}

void GatewayTalk::demandsession(const Frame& frame) const {
    if (frame.session == 0 || frame.session > lastsession_)
        throw BadFrame(fmt::format("the operation {} in session {}, which never was", frame.operation, frame.session));
}

}  // namespace host
