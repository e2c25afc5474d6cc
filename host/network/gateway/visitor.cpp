#include "host/network/gateway/visitor.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "host/network/gateway/door.h"

namespace host {

namespace {

constexpr std::size_t piece = 256 * 1024;  // read or written at a time

}  // namespace

class Visitor::Wishes : public GatewayWishes {
public:
    Wishes(Visitor& visitor, Login login) : visitor_(visitor), login_(std::move(login)) {}
    void login(const std::string& token, const std::string& gateway) override {
        visitor_.line_ = login_(token, gateway);
        visitor_.since_ = Clock::now();
    }
    void open(std::uint64_t session, OpenRequest request) override {
        visitor_.line_->open(session, std::move(request));
    }
    void refuse(std::uint64_t session, const std::string& reason) override {
        visitor_.line_->out.refuse(session, reason);
    }
    void packet(std::uint64_t session, std::string packet) override {
        visitor_.line_->packet(session, std::move(packet));
    }
    void close(std::uint64_t session, std::string reason) override {
        visitor_.line_->close(session, std::move(reason));
    }

private:
    Visitor& visitor_;
    const Login login_;
};

Visitor::Visitor(Descriptor socket, const GatewayOptions& options, Login login)
    : socket_(std::move(socket)),
      options_(options),
      wishes_(std::make_unique<Wishes>(*this, std::move(login))),
      talk_(*wishes_) {}

Visitor::~Visitor() { hangup(); }

void Visitor::hangup() {
    if (line_ == nullptr) return;
    line_->hangup();
    line_.reset();
}

short Visitor::events() {
    if (line_ != nullptr && out_.size() < piece) {
        const bool idle = out_.empty();
        out_ += line_->out.take(piece - out_.size());
        if (idle) since_ = Clock::now();
    }
    const bool reads = parting_ || line_ == nullptr || !line_->isfull();
    return static_cast<short>((reads ? POLLIN : 0) | (out_.empty() ? 0 : POLLOUT));
}

void Visitor::attend(short events) {
    if ((events & (POLLIN | POLLHUP | POLLERR)) != 0) receive();
    // Also without news: frames may wait that came when the server had enough to do.
    if (!gone_ && !parting_) hear();
    if (!gone_ && !out_.empty()) send();
    if (line_ != nullptr && line_->out.overflown()) part("what is sent is not taken");
}

void Visitor::receive() {
    static thread_local std::vector<char> bytes(piece);  // no part of what every thread of the program begins with
    const auto n = ::recv(socket_.number(), bytes.data(), bytes.size(), 0);
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (n <= 0) {
        gone_ = true;
        return hangup();
    }
    if (!parting_) reader_.add({bytes.data(), static_cast<std::size_t>(n)});
}

void Visitor::hear() try {
    while (line_ == nullptr || !line_->isfull()) {
        auto frame = reader_.next();
        if (!frame) return;
        talk_.hear(std::move(*frame));
    }
} catch (const BadFrame& e) {
    part(e.what());
}

void Visitor::send() {
    const auto n = ::send(socket_.number(), out_.data(), out_.size(), MSG_NOSIGNAL);
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (n < 0) {
        gone_ = true;
        return hangup();
    }
    out_.erase(0, static_cast<std::size_t>(n));
    if (!parting_) since_ = Clock::now();
    // What is still on its way to us is read before the socket closes, or the last words would be lost.
    if (parting_ && out_.empty()) ::shutdown(socket_.number(), SHUT_WR);
}

void Visitor::part(const std::string& reason) {
    if (parting_) return;
    complaint_ = reason;
    if (line_ != nullptr) out_ += line_->out.take(std::numeric_limits<std::size_t>::max());
    hangup();
    out_ += frame(ToGateway::close, 0,
                  nlohmann::json{{"reason", reason}}.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    parting_ = true;
    since_ = Clock::now();
    send();
}

Visitor::Clock::time_point Visitor::deadline() const {
    if (parting_) return since_ + options_.farewell;
    if (line_ == nullptr) return since_ + options_.login;
    return out_.empty() ? Clock::time_point::max() : since_ + options_.stalled;
}

void Visitor::checktime(Clock::time_point now) {
    if (gone_ || now < deadline()) return;
    if (parting_)
        gone_ = true;
    else
        part(line_ == nullptr ? "no login in time" : "what is sent is not taken");
}

}  // namespace host
