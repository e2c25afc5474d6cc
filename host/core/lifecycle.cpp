// From nothing to a running server, and the end of one that has stopped. The server thread does all that the plug-in
// sees of it, so that this knows one thread from its first line to its last. What holds code of the plug-in is emptied
// before the plug-in is unloaded, and the services stand until its last destructor has run.
#include <sys/file.h>

#include <future>

#include "host/backup/restore.h"
#include "host/core/newworld.h"
#include "host/core/parts.h"
#include "host/core/paths.h"
#include "host/world/items.h"
#include "host/world/worldparts.h"
#include "platform/turn.h"

namespace fs = std::filesystem;

namespace host {

namespace {

std::atomic<bool> running = false;  // a server in this process

GameTexts* speaking = nullptr;  // that server's texts
void chooselanguage(const std::string& code) { speaking->setlanguage(code); }

std::string oneline(std::string text) {
    for (char& c : text) c = c == '\n' || c == '\r' ? ' ' : c;
    return text;
}

Descriptor takedirectory(const fs::path& directory) {
    std::error_code error;
    fs::create_directories(directory, error);
    if (error) throw StartError(directory.string() + ": the directory cannot be made: " + error.message());
    if (::access(directory.c_str(), W_OK | X_OK) != 0) {
        throw StartError(directory.string() + ": the directory cannot be written to");
    }
    Descriptor opened(directory.c_str(), O_RDONLY | O_DIRECTORY);
    if (::flock(opened.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        throw StartError(directory.string() + ": another server runs in this directory");
    }
    return opened;
}

}  // namespace

Server::Parts::Parts(Server& face, const ServerOptions& settings)
    : server(face),
      options(settings),
      directory(fs::absolute(settings.directory).lexically_normal()),
      clock(settings.manual, settings.manualclock),
      log(
          directory.string(), settings.quiet, [this] { return clock.unixmilliseconds(); }, &frozen),
      background([this] { mailbox.wake(); }, complain),
      scheduler([this] { mailbox.wake(); }, complain),
      files(directory, &frozen),
      libraries(complain),
      events(complain),
      texts([this]() -> platform::Files& { return *services.files; }, complain),
      properties(settings.port),
      http(settings.certificates, complain) {
    log.setconsole(settings.console);
    services = {.scheduler = &scheduler,
                .log = &log,
                .texts = &texts,
                .files = &files,
                .turn = &turn,
                .background = &background,
                .clock = &clock,
                .hooks = &hooks,
                .libraries = &libraries,
                .events = &events,
                .items = &itemtable(),
                .properties = &properties,
                .plugins = &plugins,
                .http = &http,
                .views = &views};
}

void Server::Parts::say(platform::LogLevel level, const std::string& text) {
    services.log->write("Server", level, text, 5, {});
}

void Server::Parts::launch() {
    if (running.exchange(true)) throw StartError("another server runs in this process");
    std::promise<void> started;
    auto up = started.get_future();
    try {
        thread = std::thread([this, &started] { live(std::move(started)); });
        up.get();
    } catch (...) {
        land();
        throw;
    }
}

void Server::Parts::land() {
    if (thread.joinable()) thread.join();
    teardown();
    running = false;
}

void Server::Parts::live(std::promise<void> started) {
    serverthread = std::this_thread::get_id();
    turn.bindserver();
    const auto failure = failureof([&] { startup(); });
    if (failure) {
        started.set_exception(std::make_exception_ptr(StartError(oneline(*failure))));
    } else {
        started.set_value();
        options.manual ? runmanually() : runfree();
    }
    if (network) farewell();
    turn.unbindserver();
}

void Server::Parts::startup() {
    const fs::path file = options.module.empty() ? besideprogram("ordomart.so") : fs::path(options.module);
    if (!fs::is_regular_file(file)) throw StartError(file.string() + ": the plug-in's module is missing");
    directorylock = takedirectory(directory);
    if (halfrestored(directory))
        throw StartError(directory.string() + ": a restore was cut short here; empty the directory and restore again");
    removeleftovers(directory);

    speaking = &texts;
    hooks.registerfunction<&chooselanguage>(platform::symbols::chooseLanguage);
    platform::installhost(&services);
    openworld();
    if (options.moneylibrary != "none") {
        const auto money = options.moneylibrary.empty() ? besideprogram("LLmoney.so") : fs::path(options.moneylibrary);
        offermoney(libraries, fs::absolute(money).string(), *world, (directory / "money.sqlite").string());
    }
    if (options.adjust) options.adjust(services);
    loadplugin(file);
    offermoneyview();  // behind what the plug-in shows
    offerhealth();
    for (const auto& plugin : plugins.records()) {
        say(platform::LogLevel::info, "Plug-in " + plugin.name + " " + plugin.version.toString(true));
    }
    say(platform::LogLevel::info, "The server runs in " + directory.string());
}

void Server::Parts::openworld() {
    const auto file = directory / "server.sqlite";
    world = std::make_unique<World>(file.string(), mustexist(file, options.newworld));
    if (options.durable) world->parts().file.setdurable();
    services.level = &world->level();
    services.scoreboard = &world->scoreboard();
    services.knownplayers = &world->knownplayers();
    services.stores = &world->stores();
    services.records = &world->tables();
    network = std::make_unique<Network>(server);
}

void Server::Parts::loadplugin(const fs::path& file) {
    const platform::Turn held;
    module = std::make_unique<PluginModule>(file, options.manual ? directory : fs::path());
    module->enter();
    events.fire(platform::Event::RegCmdEvent{&commands});
    platform::I18n::chooseLanguage(options.language);
}

// The plug-in is unloaded by a thread that has never run its code: one that has may hold objects of its own that keep
// the module in memory until the thread ends.
void Server::Parts::teardown() {
    mailbox.close();
    views.close();
    const std::lock_guard nobackup(backingup);  // one under way has seen the stop
    background.waitidle();
    scheduler.close();
    // Before the plug-in, which gives its records their bytes, and before the money library, which has accounts to
    // write.
    const bool wasopen = world != nullptr;
    if (wasopen) closeworld();
    events.clear();
    commands.clear();
    hooks.restore();
    module.reset();
    libraries.close();
    tellunsaved();
    network.reset();
    world.reset();
    services.level = nullptr;
    services.scoreboard = nullptr;
    services.knownplayers = nullptr;
    services.stores = nullptr;
    services.records = nullptr;
    if (wasopen) say(platform::LogLevel::info, "The server has stopped");
    platform::installhost(nullptr);
    speaking = nullptr;
    log.close();
    directorylock.close();
}

}  // namespace host
