#include "host/network/gateway/door.h"

#include <fmt/format.h>
#include <poll.h>

#include <algorithm>
#include <filesystem>
#include <list>
#include <thread>

#include "host/core/guarded.h"
#include "host/core/listening.h"
#include "host/core/secretfiles.h"
#include "host/core/waker.h"
#include "host/network/complaints.h"
#include "host/network/gateway/visitor.h"
#include "host/server.h"
#include "platform/logger.h"

namespace host {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Time = Visitor::Clock::time_point;

namespace {

constexpr std::ptrdiff_t moststrangers = 8;
constexpr auto outofreach = 100ms;
constexpr const char* loopback = "127.0.0.1";

int milliseconds(Visitor::Clock::duration time) {
    return static_cast<int>(
        std::clamp<std::int64_t>(std::chrono::ceil<std::chrono::milliseconds>(time).count(), 0, 60'000));
}

}  // namespace

struct GatewayDoor::Parts {
    Parts(Server& s, GatewayOptions o)
        : server(s), options(std::move(o)), directory(fs::absolute(s.options().directory).lexically_normal()) {}

    Server& server;
    const GatewayOptions options;
    const fs::path directory;
    std::string token, address;
    Descriptor listener;
    const std::shared_ptr<Waker> waker = std::make_shared<Waker>();  // also the lines', which live longer
    std::atomic<bool> stopping = false;
    std::thread thread;

    // The thread's own.
    std::list<Visitor> visitors;   // by age
    std::weak_ptr<Line> gateway;   // the one that is logged in
    std::shared_ptr<void> passes;  // tells it of their ends
    Complaints complaints{"The gateway's door"};
    Time deaf;  // until then nobody is let in

    void listen();
    void run();
    void pass();
    void admit();
    std::shared_ptr<Line> login(const std::string& given, const std::string& name);
    void forget();
    void farewell();
};

void GatewayDoor::Parts::listen() {
    token = kepttoken(directory / GatewayDoor::tokenname);
    if (options.port < 0) {
        address = (directory / GatewayDoor::socketname).string();
        listener = listenat(directory / GatewayDoor::socketname);
        return;
    }
    listener = listenat(loopback, options.port);
    address = fmt::format("{}:{}", loopback, listener.isopen() ? portof(listener) : options.port);
    if (!listener.isopen()) throw StartError(address + ": no gateway can be listened for here; is the port in use?");
}

void GatewayDoor::Parts::run() {
    while (!stopping) pass();
    listener.close();
    farewell();
}

void GatewayDoor::Parts::farewell() {
    constexpr const char* reason = "the server stops";
    if (const auto line = gateway.lock()) failureof([&] { server.run([&] { line->leaveall(reason); }); });
    for (Visitor& visitor : visitors) visitor.part(reason);
    while (!visitors.empty()) pass();
}

// Waits until there is something to do, and does it.
void GatewayDoor::Parts::pass() {
    const Time now = Visitor::Clock::now();
    Time until = now < deaf ? deaf : Time::max();
    std::vector<pollfd> waiting{{waker->number(), POLLIN, 0}, {now < deaf ? -1 : listener.number(), POLLIN, 0}};
    for (Visitor& visitor : visitors) {
        waiting.push_back({visitor.socket(), visitor.events(), 0});
        until = std::min(until, visitor.deadline());
    }
    ::poll(waiting.data(), waiting.size(), until == Time::max() ? -1 : milliseconds(until - now));
    if (waiting[0].revents != 0) waker->settle();
    auto at = waiting.begin() + 2;
    for (Visitor& visitor : visitors) {
        visitor.attend((at++)->revents);
        visitor.checktime(Visitor::Clock::now());
    }
    forget();
    if (waiting[1].revents != 0) admit();
}

void GatewayDoor::Parts::admit() {
    Descriptor socket = acceptfrom(listener);
    if (!socket.isopen()) {
        // Out of descriptors, most likely; the listener stays ready all the while.
        if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) deaf = Visitor::Clock::now() + outofreach;
        return;
    }
    const auto stranger = [](const Visitor& visitor) { return visitor.line() == nullptr; };
    if (std::ranges::count_if(visitors, stranger) >= moststrangers)
        visitors.erase(std::ranges::find_if(visitors, stranger));
    visitors.emplace_back(std::move(socket), options,
                          [this](const std::string& given, const std::string& name) { return login(given, name); });
}

std::shared_ptr<Line> GatewayDoor::Parts::login(const std::string& given, const std::string& name) {
    if (!sametoken(given, token)) throw BadFrame("the token is wrong");
    if (passes != nullptr) throw BadFrame("another gateway is connected");
    const auto line =
        std::make_shared<Line>(server, options.offline, options.limits, [shared = waker] { shared->wake(); });
    line->greet(options.motd);
    gateway = line;
    passes = server.watchpasses([line] { line->endpass(); });
    platform::Logger("Server").info("The gateway {} is connected", shownline(name));
    return line;
}

void GatewayDoor::Parts::forget() {
    const bool had = passes != nullptr;
    if (std::ranges::none_of(visitors, [](const Visitor& visitor) { return visitor.line() != nullptr; }))
        passes.reset();
    for (Visitor& visitor : visitors)
        if (const std::string why = visitor.takecomplaint(); !why.empty() && !stopping) complaints.add("closed", why);
    if (had && passes == nullptr && !stopping) platform::Logger("Server").info("The gateway is gone");
    std::erase_if(visitors, [](const Visitor& visitor) { return visitor.gone(); });
}

GatewayDoor::GatewayDoor(Server& server, GatewayOptions options)
    : parts_(std::make_unique<Parts>(server, std::move(options))) {}

GatewayDoor::~GatewayDoor() { stop(); }

void GatewayDoor::start() {
    parts_->listen();
    parts_->thread = std::thread([this] { parts_->run(); });
}

void GatewayDoor::stop() {
    if (!parts_->thread.joinable()) return;
    parts_->stopping = true;
    parts_->waker->wake();
    parts_->thread.join();
    if (parts_->options.port < 0) ::unlink(parts_->address.c_str());
}

const std::string& GatewayDoor::address() const { return parts_->address; }

}  // namespace host
