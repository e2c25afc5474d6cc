// The program: reads its arguments, starts a server and keeps it until it is told to end. SIGINT and SIGTERM end it in
// good order, with a status of its own when something could not be saved; a second one ends it at once. Whatever else
// wants it to end sends the process a SIGTERM.
#include <signal.h>

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <optional>

#include "host/api/api.h"
#include "host/backup/command.h"
#include "host/backup/restore.h"
#include "host/board/board.h"
#include "host/bustle/bustle.h"
#include "host/bustle/cast.h"
#include "host/clients.h"
#include "host/console/colours.h"
#include "host/console/console.h"
#include "host/console/output.h"
#include "host/console/terminal.h"
#include "host/core/descriptor.h"
#include "host/demo/demo.h"
#include "host/network/gateway/door.h"
#include "host/server.h"

namespace {

struct Arguments {
    host::ServerOptions server;
    bool empty = false;  // no demo market in a new directory
    int bustle = 0;      // players of it
    std::uint64_t seed = host::Bustle::usualseed;
    host::ApiOptions api;
    bool gateway = false;
    host::GatewayOptions door;
    host::BoardOptions board;
    std::optional<int> boardport;                // none: there is no board
    std::optional<std::string> backup, restore;  // archives
};

void describe(CLI::App& app, Arguments& arguments) {
    app.set_version_flag("--version", "ordomart-server " ORDOMART_VERSION, "Print the version and exit");
    auto& server = arguments.server;
    server.directory = "server";
    app.add_option("DIRECTORY", server.directory, "The server directory; made when it is missing")
        ->capture_default_str();
    app.add_flag("--manual", server.manual, "Ticks and clock move only by the control API");
    app.add_flag("--empty", arguments.empty, "No demo market in a new directory");
    const auto bustle = app.add_option("--bustle", arguments.bustle, "So many made-up players trade in the demo market")
                            ->check(CLI::Range(1, host::mostaround));
    app.add_option("--bustle-seed", arguments.seed, "Which players come and what they do")
        ->needs(bustle)
        ->capture_default_str();
    app.add_flag("--new-world", server.newworld, "Make a new world also where one has been and is missing or empty");
    app.add_flag("--durable", server.durable,
                 "What has happened also outlives a loss of power; each pass is flushed to the disk");
    app.add_option("--language", server.language, "The language that the server chooses first")->capture_default_str();
    app.add_option("--port", server.port, "The game port that the server says it has; nothing listens on it")
        ->check(CLI::Range(1, 65535))
        ->capture_default_str();
    app.add_option("--api-port", arguments.api.port, "Port of the web page and the control API; 0 takes any")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--host", arguments.api.host, "Address of the web page and the control API")->capture_default_str();
    app.add_option("--token", arguments.api.token,
                   "The token of the control API; if left out that of the server directory, a new random one at first");
    const auto board = app.add_option("--board", arguments.boardport,
                                      "Show the board, a page for everybody without a token, on this port; 0 takes any")
                           ->check(CLI::Range(0, 65535));
    app.add_option("--board-address", arguments.board.host, "Address of the board")
        ->needs(board)
        ->capture_default_str();
    app.add_flag("--open-metrics", arguments.api.openmetrics, "Show /metrics to whoever asks, without the token");
    app.add_flag_callback(
        "--no-llmoney", [&server] { server.moneylibrary = "none"; },
        "Do not offer LLMoney; money is then kept on the scoreboard");
    const auto gateway = app.add_flag("--gateway", arguments.gateway,
                                      "Let a gateway in, through which clients of the network play (docs/network.md)");
    app.add_option("--gateway-port", arguments.door.port,
                   "A port of this machine for the gateway, in place of a unix socket in DIRECTORY; 0 takes any")
        ->check(CLI::Range(0, 65535))
        ->needs(gateway);
    app.add_flag("--offline", arguments.door.offline, "Let in players of the network who have not signed in")
        ->needs(gateway);
    const auto backup =
        app.add_option("--backup", arguments.backup,
                       "Only write DIRECTORY to this archive (.tar, .tar.gz, .tar.zst), also while its server runs");
    app.add_option("--restore", arguments.restore, "Only unpack this archive into DIRECTORY, which is missing or empty")
        ->excludes(backup);
    app.add_flag("--quiet", server.quiet, "No log lines on the console");
}

// All threads inherit the mask, so that only the main thread is ever told of the signals.
sigset_t blocksignals() {
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    signal(SIGPIPE, SIG_IGN);
    return ending;
}

// The exit statuses: in good order, not started, something left unsaved.
enum : int { ended = 0, failed = 1, incomplete = 2 };

int told(const std::vector<std::string>& unsaved) {
    for (const auto& line : unsaved) std::cerr << "ordomart-server: not saved: " << line << std::endl;
    return unsaved.empty() ? ended : incomplete;
}

int serve(Arguments& arguments) {
    const auto ending = blocksignals();
    const bool demo = !arguments.empty && host::makedemo(arguments.server.directory);
    host::Output output(STDOUT_FILENO);
    const host::Console::Show show = [&output, colour = isatty(STDOUT_FILENO) != 0](const std::string& text) {
        output.print(host::terminaltext(text, colour));
    };
    arguments.server.console = show;
    host::Server server(arguments.server);
    server.start();
    host::Clients clients(server);
    host::playdemo(server);
    host::Bustle bustle(server, clients);
    if (arguments.bustle > 0) bustle.start(arguments.bustle, arguments.seed);
    host::Console console(server, clients, bustle, show);
    host::ControlApi api(server, clients, bustle, arguments.api);
    api.start();
    host::GatewayDoor door(server, arguments.door);
    if (arguments.gateway) door.start();
    arguments.board.port = arguments.boardport.value_or(0);
    host::Board board(server, arguments.board);
    if (arguments.boardport) board.start();
    if (demo) console.print("A small demo market was made; --empty leaves it out.");
    if (arguments.boardport) console.print("The board is at " + board.address());
    console.print("The page is at " + api.address());
    if (arguments.gateway) console.print("A gateway is listened for at " + door.address());
    console.print(
        "Or play here: \"join Alice\", then \"Alice: ordomart formmenu\"; \"help\" lists all, \"stop\" ends.");
    host::Terminal terminal(console, output, STDIN_FILENO, arguments.server.directory, [] { kill(getpid(), SIGTERM); });
    int signal = 0;
    sigwait(&ending, &signal);
    pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
    server.announcestop();
    terminal.stop();
    board.stop();
    api.stop();
    door.stop();
    bustle.stop();
    clients.leaveall();
    server.stop();
    return told(server.unsaved());
}

int backup(const Arguments& arguments) {
    std::cout << host::backup(arguments.server.directory, *arguments.backup).text() << std::endl;
    return ended;
}

int restore(const Arguments& arguments) {
    const auto files = host::restore(*arguments.restore, arguments.server.directory);
    std::cout << files << " files of " << *arguments.restore << " are restored to " << arguments.server.directory
              << std::endl;
    return ended;
}

}  // namespace

int main(int count, char** values) {
    host::keepstandardfiles();
    CLI::App app("A small server with the Ordomart market in it", "ordomart-server");
    Arguments arguments;
    describe(app, arguments);
    CLI11_PARSE(app, count, values);
    arguments.server.abandon = [](const std::vector<std::string>& unsaved) { _exit(told(unsaved)); };
    try {
        if (arguments.backup) return backup(arguments);
        if (arguments.restore) return restore(arguments);
        return serve(arguments);
    } catch (const std::exception& e) {
        std::cerr << "ordomart-server: " << e.what() << std::endl;
        return failed;
    }
}
