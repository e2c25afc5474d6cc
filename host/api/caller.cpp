#include "host/api/caller.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "host/api/outlet.h"

namespace host {

using namespace std::chrono_literals;

namespace {

constexpr auto unlimited = Caller::Clock::duration::max();

// How long a phase may take. Whoever has not shown the token holds a connection for a moment only.
struct Patience {
    Caller::Phase phase;
    short events;
    Caller::Clock::duration stranger, known;
};
using Phase = Caller::Phase;
constexpr Patience patience[] = {
    {Phase::idle, POLLIN, 2s, 30s},          // no byte of the next request has come
    {Phase::head, POLLIN, 2s, 5s},           // begun
    {Phase::body, POLLIN, 2s, 5s},           // of a known caller alone
    {Phase::call, 0, unlimited, unlimited},  // he waits for us
    {Phase::answer, POLLOUT, 2s, 10s},       // not all of it taken
    {Phase::stream, POLLRDHUP, 2s, 30s},     // while he takes nothing
    {Phase::parting, POLLIN, 1s, 1s},
};

const Patience& of(Caller::Phase phase) { return patience[static_cast<std::size_t>(phase)]; }

}  // namespace

Caller::Caller(std::uint64_t which, Descriptor socket) : number(which), socket_(std::move(socket)) {
    enter(Phase::idle);
}

Caller::~Caller() {
    if (outlet_ != nullptr) outlet_->close();
}

short Caller::events() const {
    const short asked = of(phase_).events;
    return phase_ == Phase::stream && sent_ < out_.size() ? static_cast<short>(asked | POLLOUT) : asked;
}

void Caller::enter(Phase phase) {
    phase_ = phase;
    const Clock::duration time = known ? of(phase).known : of(phase).stranger;
    deadline_ = time == unlimited ? Clock::time_point::max() : Clock::now() + time;
}

void Caller::receive(std::size_t most) {
    std::array<char, 16384> buffer;
    while (in.size() < most && !ended_) {
        const ssize_t got = ::recv(socket(), buffer.data(), std::min(buffer.size(), most - in.size()), MSG_DONTWAIT);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return;
        if (got <= 0) ended_ = true;
        if (got > 0) in.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

void Caller::discard() {
    in.clear();
    receive(1 << 16);
    in.clear();
    gone = ended_;
}

bool Caller::send() {
    while (sent_ < out_.size()) {
        const ssize_t put = ::send(socket(), out_.data() + sent_, out_.size() - sent_, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return false;
        if (put < 0) {
            gone = true;
            return false;
        }
        sent_ += static_cast<std::size_t>(put);
    }
    out_.clear();
    sent_ = 0;
    return true;
}

void Caller::sendword(std::string_view text) {
    out_ += text;
    send();
}

void Caller::reply(const HttpAnswer& answer, bool keepalive, std::function<void()> wake) {
    keepalive_ = keepalive && answer.outlet == nullptr;
    outlet_ = answer.outlet;
    wake_ = std::move(wake);
    out_ += writeanswer(answer, keepalive_, request.method == "HEAD");
    enter(Phase::answer);
}

bool Caller::sendanswer() {
    if (!send()) return false;
    if (outlet_ != nullptr) {
        enter(Phase::stream);
        outlet_->attach(wake_);
        sendnews();
        return false;
    }
    if (keepalive_) {
        enter(Phase::idle);
        return true;
    }
    ::shutdown(socket(), SHUT_WR);
    enter(Phase::parting);
    gone = gone || ended_;
    return false;
}

// The time of a stream runs while the other side takes nothing of what there is for it.
void Caller::sendnews() {
    const std::size_t before = sent_;
    while (send()) {
        std::string news = outlet_->take();
        deadline_ = Clock::time_point::max();
        if (news.empty()) break;
        out_ += news;
    }
    if (sent_ > before || (sent_ < out_.size() && deadline_ == Clock::time_point::max())) enter(Phase::stream);
    if (!outlet_->open()) gone = true;
}

}  // namespace host
