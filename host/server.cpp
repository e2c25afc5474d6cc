// The face of the server towards other threads: what they want is put in the server thread's mailbox, and those that
// wait are given the result.
#include "host/server.h"

#include <exception>
#include <semaphore>
#include <utility>

#include "host/core/parts.h"

namespace host {

namespace {

template <class T>
T& open(const std::unique_ptr<T>& part) {
    if (!part) throw std::logic_error("the server does not run");
    return *part;
}

// Puts a body in the mailbox and waits for its end.
template <class Put>
void await(const std::function<void()>& body, Put&& put) {
    // Shared, since the waiting thread may be gone before release() has returned. The failure changes hands by the
    // semaphore alone: the server thread has let go of it by then, and it dies with the caller.
    struct Outcome {
        std::binary_semaphore done{0};
        std::exception_ptr failure;
    };
    const auto outcome = std::make_shared<Outcome>();
    put([outcome, &body] {
        try {
            body();
        } catch (...) {
            outcome->failure = std::current_exception();
        }
        outcome->done.release();
    });
    outcome->done.acquire();
    if (const auto failure = std::exchange(outcome->failure, nullptr)) std::rethrow_exception(failure);
}

}  // namespace

Server::Server(ServerOptions options) : options_(std::move(options)) {}

Server::~Server() { stop(); }

void Server::start() {
    if (parts_ && parts_->thread.joinable()) throw std::logic_error("the server runs already");
    parts_ = std::make_unique<Parts>(*this, options_);
    parts_->launch();
}

void Server::stop() {
    if (!parts_ || !parts_->thread.joinable()) return;
    announcestop();
    parts_->mailbox.order([this] { parts_->stopping = true; });
    parts_->land();
}

void Server::announcestop() { open(parts_).background.announcestop(); }

const std::vector<std::string>& Server::unsaved() const { return open(parts_).unsaved; }

void Server::post(std::function<void()> work) { open(parts_).mailbox.post(std::move(work)); }

void Server::run(const std::function<void()>& work) {
    auto& parts = open(parts_);
    if (parts.onserverthread()) return work();
    await(work, [&](auto item) { parts.mailbox.post(std::move(item)); });
}

void Server::wake() { open(parts_).mailbox.wake(); }

std::shared_ptr<void> Server::watchpasses(std::function<void()> watcher) {
    return open(parts_).passwatchers.add(std::move(watcher));
}

void Server::manually(const std::function<void(Parts&)>& steps) {
    auto& parts = open(parts_);
    if (!options_.manual) throw std::logic_error("only a server in manual mode can be driven by hand");
    if (parts.onserverthread()) throw std::logic_error("the server thread cannot wait for itself");
    await([&] { steps(parts); }, [&](auto item) { parts.mailbox.order(std::move(item)); });
}

BackupReport Server::backup(const std::string& file) {
    auto& parts = open(parts_);
    if (parts.onserverthread()) throw std::logic_error("the server thread cannot wait for itself");
    return parts.backup(file, [&](const std::function<void()>& work) {
        await(work, [&](auto item) { parts.mailbox.order(std::move(item)); });
    });
}

void Server::settle() {
    if (options_.manual) return manually([](Parts& parts) { parts.settle(); });
    // A pass does work first and reads packets then: they have been read when there is work in the pass behind it.
    run([] {});
    run([] {});
}

void Server::ticks(int n) {
    manually([n](Parts& parts) {
        parts.settle();
        for (int i = 0; i < n; ++i) parts.tick();
    });
}

void Server::advanceclock(std::int64_t milliseconds) {
    manually([=](Parts& parts) { parts.clock.advance(milliseconds); });
}

void Server::setspeed(double tickspersecond) {
    open(parts_).pacer.setspeed(tickspersecond);
    wake();
}

void Server::setpaused(bool paused) {
    open(parts_).pacer.setpaused(paused);
    wake();
}

double Server::speed() const { return open(parts_).pacer.speed(); }
bool Server::paused() const { return open(parts_).pacer.paused(); }
std::uint64_t Server::tickcount() const { return open(parts_).tickcount; }
PassTimes& Server::passtimes() const { return open(parts_).passtimes; }

const ServerOptions& Server::options() const { return options_; }
World& Server::world() { return open(open(parts_).world); }
Network& Server::network() { return open(open(parts_).network); }
Commands& Server::commands() { return open(parts_).commands; }
Log& Server::log() { return open(parts_).log; }
Events& Server::events() { return open(parts_).events; }
Hooks& Server::hooks() { return open(parts_).hooks; }
const ShownViews& Server::views() const { return open(parts_).views; }
std::vector<prometheus::MetricFamily> Server::metrics() const { return open(parts_).metrics(); }
platform::Host& Server::services() { return open(parts_).services; }
std::vector<platform::PluginRecord> Server::plugins() const { return open(parts_).plugins.records(); }

}  // namespace host
