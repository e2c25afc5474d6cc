// The embedded server: one thread that ticks 20 times a second, the world on disk, the plug-in loaded as a module.
// One per process at a time. start() and stop() are called by the same thread; post() and the waiting forms by any
// thread but the server's own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/backup/backup.h"
#include "host/core/passtimes.h"
#include "platform/host.h"

namespace prometheus {
struct MetricFamily;
}

namespace host {

class World;
class Network;
class Commands;
class Log;
class Events;
class Hooks;
class ShownViews;

struct ServerOptions {
    std::string directory;                     // the server directory; made when it is missing
    std::string module;                        // path of ordomart.so; empty: beside the program
    std::string moneylibrary;                  // path of LLmoney.so; empty: beside the program; "none": do not offer it
    std::string language = "en_US";            // the language that the server chooses first
    bool manual = false;                       // ticks and clock move only by call
    std::int64_t manualclock = 1767225600000;  // where the clock starts in manual mode, Unix milliseconds
    bool newworld = false;                     // make a world also where one is missing that has been there
    bool durable = false;                      // every pass outlives a loss of power
    bool quiet = false;                        // no log lines on the console
    int port = 19132;                          // what the properties answer; nothing listens on it
    std::string certificates;                  // calls to web services trust these (a PEM file); empty: the system's
    // Takes the lines that the log has for a console; must not make its caller wait.
    std::function<void(const std::string& line)> console;
    // Called with the finished set of services before the plug-in is loaded; a test may swap one for its own.
    std::function<void(platform::Host&)> adjust;
    // Called on the server thread at a stop when everything that can be is saved and background work does not end, with
    // what unsaved() would tell. It may end the process. When it comes back, or there is none, the stop waits on.
    std::function<void(const std::vector<std::string>& unsaved)> abandon;
};

// A start that failed, with one line that names file, key or position.
class StartError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class Server {
public:
    explicit Server(ServerOptions options);
    ~Server();  // stops
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Opens the world, installs the host, loads the plug-in, calls its entry, fires the command event, chooses the
    // language, then lets the server thread run. Throws StartError, with everything undone and nothing overwritten.
    void start();
    // Orderly: players leave, background bodies and the plug-in's queue end, the plug-in saves and is unloaded, the
    // world closed. Bodies that do not end within a few seconds are left to `abandon`.
    void stop();
    // Any thread: lets background bodies end early while those who use the server are still being shut out.
    void announcestop();
    // After stop(): a line for each thing that did not get to the disk.
    [[nodiscard]] const std::vector<std::string>& unsaved() const;

    // Runs the work on the server thread, in order, at the start of its next pass; what it throws is logged. In manual
    // mode it runs at once, too, but packets and tasks wait for settle() or ticks(). Throws std::logic_error when the
    // server does not run.
    void post(std::function<void()> work);
    // The same, and waits for it; an exception comes back to the caller. On the server thread itself it runs at once.
    void run(const std::function<void()>& work);
    // Any thread: something has come in, look at it now and not at the next tick.
    void wake();

    // Called at the end of every pass, and of posted work in manual mode, on the server thread, until the handle is
    // dropped.
    [[nodiscard]] std::shared_ptr<void> watchpasses(std::function<void()> watcher);

    // The server directory as it is between two passes goes to an archive, while the server goes on. The calling thread
    // does the work; the server thread only marks the instant. Throws BackupError that names the file.
    BackupReport backup(const std::string& file);

    // Packets that came in before the call are dealt with, and answered, when it returns, unless the server is paused.
    // In manual mode so is all that can be done without a tick: posted work, tasks of 0 ticks, background bodies and
    // the plug-in's queue.
    void settle();
    // Manual mode: n ticks of 50 ms of the manual clock, settled before, between and after.
    void ticks(int n);
    // Manual mode: moves the clock without ticking.
    void advanceclock(std::int64_t milliseconds);
    // Real time: ticks per second (default 20) and pause, for the operator's side of the page. While it is paused there
    // are no ticks and packets wait; posted work is done.
    void setspeed(double tickspersecond);
    void setpaused(bool paused);
    [[nodiscard]] double speed() const;
    [[nodiscard]] bool paused() const;
    [[nodiscard]] std::uint64_t tickcount() const;
    // Any thread. Of all passes since the start.
    [[nodiscard]] PassTimes& passtimes() const;

    [[nodiscard]] const ServerOptions& options() const;
    [[nodiscard]] World& world();
    [[nodiscard]] Network& network();
    [[nodiscard]] Commands& commands();
    [[nodiscard]] Log& log();  // also after stop()
    [[nodiscard]] Events& events();
    [[nodiscard]] Hooks& hooks();
    // Any thread but the server's.
    [[nodiscard]] const ShownViews& views() const;
    // Its own figures and the plug-in's counts, by name.
    [[nodiscard]] std::vector<prometheus::MetricFamily> metrics() const;
    [[nodiscard]] platform::Host& services();
    [[nodiscard]] std::vector<platform::PluginRecord> plugins() const;

private:
    struct Parts;
    void manually(const std::function<void(Parts&)>& steps);
    const ServerOptions options_;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
