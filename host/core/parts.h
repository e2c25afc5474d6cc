// The inside of a server: every service that stands behind platform/host.h, and the server thread that drives them.
// server.h is the face; lifecycle.cpp starts and stops, passes.cpp keeps it going.
#pragma once

#include <atomic>
#include <filesystem>
#include <future>
#include <memory>
#include <thread>

#include "host/backup/backup.h"
#include "host/core/background.h"
#include "host/core/clock.h"
#include "host/core/commands.h"
#include "host/core/descriptor.h"
#include "host/core/events.h"
#include "host/core/files.h"
#include "host/core/hooks.h"
#include "host/core/libraries.h"
#include "host/core/log.h"
#include "host/core/mailbox.h"
#include "host/core/memory.h"
#include "host/core/module.h"
#include "host/core/pacer.h"
#include "host/core/passtimes.h"
#include "host/core/patience.h"
#include "host/core/plugins.h"
#include "host/core/scheduler.h"
#include "host/core/texts.h"
#include "host/core/turnkeeper.h"
#include "host/core/views.h"
#include "host/core/watchers.h"
#include "host/http/httpclient.h"
#include "host/network/network.h"
#include "host/server.h"
#include "host/world/world.h"
#include "platform/turn.h"

namespace host {

struct Server::Parts {
    Parts(Server& face, const ServerOptions& settings);

    // lifecycle.cpp, and stopping.cpp from farewell() on. launch() returns when the server is up, or throws StartError
    // when it is down again; land() waits until it is down. The steps between are the server thread's, but for
    // teardown(), which comes when that has ended.
    void launch();
    void land();
    void live(std::promise<void> started);
    void startup();
    void openworld();
    void loadplugin(const std::filesystem::path& file);
    void teardown();
    void farewell();
    void leavebehind(int left);
    void closeworld();
    void tellunsaved();
    template <class E>
    void fire(const E& event) {
        const platform::Turn held;
        events.fire(event);
    }
    // One line of the server's own.
    void say(platform::LogLevel level, const std::string& text);

    // passes.cpp; the server thread.
    void runfree();
    void runmanually();
    bool pass(bool tick);  // true when there was something to do
    bool dowork();
    void doorders();
    // Passes until nothing is under way any more; false when the patience was over before.
    bool rest(Patience& patience);
    // The same without an end; throws std::runtime_error when tasks make tasks for ever.
    void settle();
    void tick();  // one of 50 ms of the manual clock, and what follows from it

    // running.cpp of backup/; the caller's thread. `betweenpasses` does a piece of work on the server thread.
    using BetweenPasses = std::function<void(const std::function<void()>&)>;
    BackupReport backup(const std::filesystem::path& target, const BetweenPasses& betweenpasses);
    void begininstant(Backup& backup);

    // metrics.cpp; any thread.
    [[nodiscard]] std::vector<prometheus::MetricFamily> metrics();

    // healthview.cpp
    void offerhealth();
    [[nodiscard]] std::string health();  // any thread
    void offermoneyview();               // moneyview.cpp

    [[nodiscard]] bool onserverthread() const { return std::this_thread::get_id() == serverthread.load(); }

    Server& server;
    const ServerOptions& options;
    const std::filesystem::path directory;
    Descriptor directorylock;
    Complain complain = [this](const std::string& text) { say(platform::LogLevel::error, text); };

    Mailbox mailbox;
    Pacer pacer;
    ServerClock clock;
    FrozenFiles frozen;
    Log log;
    TurnKeeper turn;
    BackgroundBodies background;
    FreedMemory freedmemory{background};
    TickScheduler scheduler;
    DiskFiles files;
    Hooks hooks;
    BoundLibraries libraries;
    Events events;
    GameTexts texts;
    FixedProperties properties;
    Plugins plugins;
    HttpClient http;
    ShownViews views{complain};
    Commands commands;
    Watchers<> passwatchers;
    platform::Host services;

    std::unique_ptr<World> world;
    std::unique_ptr<Network> network;
    std::unique_ptr<PluginModule> module;

    std::thread thread;
    std::atomic<std::thread::id> serverthread;
    std::atomic<std::uint64_t> tickcount = 0;
    std::atomic<std::size_t> playersonline = 0;
    PassTimes passtimes;
    std::mutex backingup;
    bool stopping = false;             // the server thread's
    std::vector<std::string> unsaved;  // by the end of a stop
};

}  // namespace host
