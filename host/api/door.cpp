#include "host/api/door.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>

#include "host/api/outlet.h"
#include "host/core/listening.h"

namespace host {

using namespace std::chrono_literals;
using Phase = Caller::Phase;

namespace {

constexpr std::ptrdiff_t mostcallers = 512;
constexpr int mostatonce = 64;  // new ones in a pass
constexpr std::size_t longesthead = 16 << 10, longestbody = 1 << 20;
constexpr auto farewell = 1s;  // for answers that are on their way when all ends
constexpr auto outofreach = 100ms;

// The address of the other side in numbers; empty when it is gone already.
std::string peerof(int socket) {
    sockaddr_storage peer{};
    socklen_t length = sizeof peer;
    std::array<char, NI_MAXHOST> text{};
    const bool isknown = ::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length) == 0 &&
                         ::getnameinfo(reinterpret_cast<const sockaddr*>(&peer), length, text.data(), text.size(),
                                       nullptr, 0, NI_NUMERICHOST) == 0;
    return isknown ? std::string(text.data()) : std::string();
}

int milliseconds(Caller::Clock::duration time) {
    return static_cast<int>(
        std::clamp<std::int64_t>(std::chrono::ceil<std::chrono::milliseconds>(time).count(), 0, 60'000));
}

}  // namespace

Door::Door(DoorRules rules) : rules_(std::move(rules)) {}

Door::~Door() { stop(); }

int Door::listen(const std::string& host, int port) {
    listener_ = listenat(host, port);
    return listener_.isopen() ? portof(listener_) : 0;
}

void Door::start() {
    workers_.emplace(rules_.workers);
    thread_ = std::thread([this] { run(); });
}

void Door::stop() {
    if (!thread_.joinable()) return;
    stopping_ = true;
    waker_.wake();
    thread_.join();
}

void Door::run() {
    while (!stopping_) pass(Time::max());
    listener_.close();
    workers_->stop();
    takeanswers();
    const Time end = Caller::Clock::now() + farewell;
    const auto answering = [](const auto& entry) { return entry.second.phase() == Phase::answer; };
    while (Caller::Clock::now() < end && std::ranges::any_of(callers_, answering)) pass(end);
    callers_.clear();
}

// Waits until there is something to do, and does it.
void Door::pass(Time until) {
    const Time now = Caller::Clock::now();
    std::vector<pollfd> waiting{{waker_.number(), POLLIN, 0}, {now < deaf_ ? -1 : listener_.number(), POLLIN, 0}};
    if (now < deaf_) until = std::min(until, deaf_);
    for (const auto& [number, caller] : callers_) {
        waiting.push_back({caller.events() == 0 ? -1 : caller.socket(), caller.events(), 0});
        until = std::min(until, caller.deadline());
    }
    ::poll(waiting.data(), waiting.size(), until == Time::max() ? -1 : milliseconds(until - now));

    auto at = waiting.begin() + 2;
    for (auto& [number, caller] : callers_)
        if (const short events = (at++)->revents; events != 0) attend(caller, events);
    if (waiting[0].revents != 0) {
        waker_.settle();
        takeanswers();
        for (auto& [number, caller] : callers_)
            if (caller.phase() == Phase::stream) caller.sendnews();
    }
    if (waiting[1].revents != 0) admit();
    forget();
}

void Door::admit() {
    for (int i = 0; i < mostatonce; ++i) {
        Descriptor socket = acceptfrom(listener_);
        if (!socket.isopen()) {
            // Out of descriptors, most likely; the listener stays ready all the while.
            if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) deaf_ = Caller::Clock::now() + outofreach;
            if (errno != EINTR && errno != ECONNABORTED) return;
            continue;
        }
        makeroom();
        ++lastcaller_;
        const auto place = callers_.try_emplace(lastcaller_, lastcaller_, std::move(socket)).first;
        place->second.address = peerof(place->second.socket());
        attend(place->second, POLLIN);
        if (place->second.gone) callers_.erase(place);
    }
}

// For one more.
void Door::makeroom() {
    const auto stranger = [](const auto& entry) { return !entry.second.known; };
    const auto resting = [](const auto& entry) { return entry.second.known && entry.second.phase() == Phase::idle; };
    if (std::ranges::count_if(callers_, stranger) >= rules_.moststrangers)
        callers_.erase(std::ranges::find_if(callers_, stranger));
    else if (std::ssize(callers_) >= mostcallers)
        if (const auto oldest = std::ranges::find_if(callers_, resting); oldest != callers_.end())
            callers_.erase(oldest);
}

void Door::forget() {
    const Time now = Caller::Clock::now();
    for (auto& [number, caller] : callers_) {
        if (caller.gone || now < caller.deadline()) continue;
        const bool unfinished = caller.phase() == Phase::head || caller.phase() == Phase::body;
        if (!unfinished) {
            caller.gone = true;
            continue;
        }
        refuse(caller, 408, "the request did not come to its end in time");
        attend(caller, 0);
    }
    std::erase_if(callers_, [](const auto& entry) { return entry.second.gone; });
}

void Door::takeanswers() {
    std::vector<std::pair<std::uint64_t, HttpAnswer>> answers;
    {
        const std::lock_guard lock(mutex_);
        answers.swap(answers_);
    }
    for (const auto& [number, answer] : answers) {
        const auto found = callers_.find(number);
        if (found != callers_.end()) {
            reply(found->second, answer, found->second.request.keepalive);
            attend(found->second, 0);
        } else if (answer.outlet != nullptr) {
            answer.outlet->close();
        }
    }
}

void Door::attend(Caller& caller, short events) {
    if (events != 0 && caller.phase() == Phase::parting) return caller.discard();
    if (events != 0 && caller.phase() == Phase::stream) {
        caller.gone = (events & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
        return caller.gone ? void() : caller.sendnews();
    }
    if (events != 0 && caller.phase() != Phase::answer)
        caller.receive(caller.phase() == Phase::body ? caller.request.bodylength : longesthead + 1);
    while (!caller.gone && step(caller)) {
    }
}

// False when it must wait for the other side, or for a worker.
bool Door::step(Caller& caller) {
    switch (caller.phase()) {
        case Phase::idle:
        case Phase::head:
            return takehead(caller);
        case Phase::body:
            return takebody(caller);
        case Phase::answer:
            return caller.sendanswer();
        default:
            return false;
    }
}

bool Door::takehead(Caller& caller) {
    while (caller.in.starts_with("\r\n")) caller.in.erase(0, 2);
    const std::size_t end = caller.in.find("\r\n\r\n");
    if (end == std::string::npos && caller.in.size() <= longesthead) {
        if (caller.ended()) caller.gone = true;
        if (caller.phase() == Phase::idle && !caller.in.empty()) caller.enter(Phase::head);
        return false;
    }
    try {
        if (end == std::string::npos) throw HttpError(431, "the head of the request is too long");
        caller.request = readhead(std::string_view(caller.in).substr(0, end + 4));
    } catch (const HttpError& e) {
        refuse(caller, e.status, e.what());
        return true;
    }
    caller.in.erase(0, end + 4);
    HttpRequest& request = caller.request;
    request.from = caller.address;
    if (const auto answer = rules_.look(request)) {
        // The body of what was not let in is not read.
        reply(caller, *answer, request.keepalive && answer->status < 400 && request.bodylength == 0);
        return true;
    }
    caller.known = rules_.trusting;
    if (request.bodylength > longestbody) {
        refuse(caller, 413, "the body is longer than 1 MiB");
        return true;
    }
    caller.enter(Phase::body);
    if (request.waits && caller.in.size() < request.bodylength) caller.sendword("HTTP/1.1 100 Continue\r\n\r\n");
    return true;
}

bool Door::takebody(Caller& caller) {
    HttpRequest& request = caller.request;
    caller.receive(request.bodylength);
    if (caller.in.size() < request.bodylength) {
        if (caller.ended()) caller.gone = true;
        return false;
    }
    HttpRequest whole = request;
    whole.body = caller.in.substr(0, request.bodylength);
    caller.in.erase(0, request.bodylength);
    caller.enter(Phase::call);
    workers_->put([this, number = caller.number, call = std::move(whole)] {
        auto answer = rules_.call(call);
        const std::lock_guard lock(mutex_);
        answers_.emplace_back(number, std::move(answer));
        waker_.wake();
    });
    return false;
}

void Door::reply(Caller& caller, const HttpAnswer& answer, bool keepalive) {
    caller.reply(answer, keepalive, [this] { waker_.wake(); });
}

void Door::refuse(Caller& caller, int status, const std::string& text) {
    // Whatever the head said, it is not believed.
    if (caller.phase() != Phase::body) caller.request = {};
    reply(caller, rules_.refusal(status, text), false);
}

}  // namespace host
