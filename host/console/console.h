// The terminal: lines typed by a person, and what the joined clients see, drawn as it comes. "help" lists the lines.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/clients.h"
#include "host/console/lineeditor.h"

namespace host {

class Server;
class Bustle;

class Console {
public:
    // Takes text with § codes, whole lines; called on any thread, and must not make it wait.
    using Show = std::function<void(const std::string& text)>;
    Console(Server& server, Clients& clients, Bustle& bustle, Show show);

    // One line. False for "stop", "quit" and "exit". What is wrong with it is printed.
    bool line(const std::string& text);
    void print(const std::string& text) { show_(text); }
    // What can stand at the end of a line that is being typed.
    [[nodiscard]] Offer complete(const std::string& typed);

private:
    struct Line {
        const char* word;
        const char* usage;
        const char* help;
        void (Console::*run)(const std::vector<std::string>& words, const std::string& rest);
    };
    static const std::vector<Line>& serverlines();
    static const std::vector<Line>& playerlines();
    [[nodiscard]] std::vector<std::string> offered(const std::string& place, const std::string& usage);
    static void check(const Line& line, const std::vector<std::string>& words, std::size_t least);

    // of the server
    void help(const std::vector<std::string>& words, const std::string& rest);
    void join(const std::vector<std::string>& words, const std::string& rest);
    void leave(const std::vector<std::string>& words, const std::string& rest);
    void players(const std::vector<std::string>& words, const std::string& rest);
    void give(const std::vector<std::string>& words, const std::string& rest);
    void money(const std::vector<std::string>& words, const std::string& rest);
    void score(const std::vector<std::string>& words, const std::string& rest);
    void kill(const std::vector<std::string>& words, const std::string& rest);
    void revive(const std::vector<std::string>& words, const std::string& rest);
    void tick(const std::vector<std::string>& words, const std::string& rest);
    void backup(const std::vector<std::string>& words, const std::string& rest);
    void commands(const std::vector<std::string>& words, const std::string& rest);
    void bustle(const std::vector<std::string>& words, const std::string& rest);
    // of one player; words[0] is his name
    void screen(const std::vector<std::string>& words, const std::string& rest);
    void form(const std::vector<std::string>& words, const std::string& rest);
    void answer(const std::vector<std::string>& words, const std::string& rest);
    void click(const std::vector<std::string>& words, const std::string& rest);
    void close(const std::vector<std::string>& words, const std::string& rest);

    void playerline(const std::string& text);
    [[nodiscard]] std::string unknown(const std::string& text);
    void stand(const std::string& name);  // what he has in front
    void setalive(const std::string& name, bool alive);
    void command(const std::string& name, const std::string& text);
    struct Told {
        std::uint64_t chat = 0, toasts = 0, replies = 0, sounds = 0;
        std::uint32_t front = 0, last = 0;  // forms
        bool own = false;                   // joined by this console
    };
    // Prints what a client has heard and been shown since the last time.
    void tell(const std::string& name);
    static std::string toldforms(const std::string& name, const client::ModelClient& c, Told& told);

    Server& server_;
    Clients& clients_;
    Bustle& bustle_;
    const Show show_;
    std::map<std::string, Told> told_;  // the server thread's
    std::shared_ptr<void> watch_;       // last, since it goes first
};

}  // namespace host
