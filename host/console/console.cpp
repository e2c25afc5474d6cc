#include "host/console/console.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <nlohmann/json.hpp>
#include <thread>

#include "host/bustle/bustle.h"
#include "host/console/drawing.h"
#include "host/console/typed.h"
#include "host/core/commands.h"
#include "host/money.h"
#include "host/server.h"
#include "host/world/world.h"

namespace host {

namespace {

std::string can(const std::string& name) {
    return fmt::format("can screen, form, answer, click, close, or type a command: \"{}: ordomart\"", name);
}

constexpr std::array<std::string_view, 3> endwords{"stop", "quit", "exit"};

}  // namespace

Console::Console(Server& server, Clients& clients, Bustle& bustle, Show show)
    : server_(server), clients_(clients), bustle_(bustle), show_(std::move(show)) {
    watch_ = clients_.watch([this](const std::string& name) { tell(name); });
}

const std::vector<Console::Line>& Console::serverlines() {
    static const std::vector<Line> lines{
        {"help", "help", "this list", &Console::help},
        {"join", "join NAME [--xuid X] [--lang zh_CN] [--touch] [--op LEVEL]", "a player joins", &Console::join},
        {"leave", "leave NAME", "he leaves", &Console::leave},
        {"players", "players", "everybody known here", &Console::players},
        {"give", "give NAME ITEM [COUNT] [SLOT]", "a stack, into a slot or the first free one", &Console::give},
        {"money", "money NAME [AMOUNT]", "his LLMoney account, shown or set", &Console::money},
        {"score", "score NAME OBJECTIVE [VALUE]", "a score, shown or set", &Console::score},
        {"kill", "kill NAME", "he dies", &Console::kill},
        {"revive", "revive NAME", "and lives again", &Console::revive},
        {"tick", "tick [N]", "N game ticks, with --manual", &Console::tick},
        {"backup", "backup FILE", "everything into one archive: .tar, .tar.gz, .tar.zst", &Console::backup},
        {"bustle", "bustle [off|N]", "N made-up players trade in the demo market, or how it goes", &Console::bustle},
        {"commands", "commands", "the server commands a player can type", &Console::commands},
    };
    return lines;
}

const std::vector<Console::Line>& Console::playerlines() {
    static const std::vector<Line> lines{
        {"screen", "NAME screen", "his inventory screen", &Console::screen},
        {"form", "NAME form", "the form in front of him, again", &Console::form},
        {"answer", "NAME answer VALUE...", "a button's number or text, the values in order, or close",
         &Console::answer},
        {"click", "NAME click CONTAINER SLOT", "clicks; also rightclick, drop, swap (with the cursor)",
         &Console::click},
        {"rightclick", "NAME rightclick CONTAINER SLOT", nullptr, &Console::click},
        {"drop", "NAME drop CONTAINER SLOT", nullptr, &Console::click},
        {"swap", "NAME swap CONTAINER SLOT", nullptr, &Console::click},
        {"close", "NAME close", "closes the open menu", &Console::close},
    };
    return lines;
}

void Console::check(const Line& line, const std::vector<std::string>& words, std::size_t least) {
    if (words.size() < least) throw std::runtime_error(fmt::format("usage: {}", line.usage));
}

bool Console::line(const std::string& text) {
    const std::vector<std::string> words = split(text);
    if (words.empty() || words[0].starts_with('#')) return true;
    // Only alone: players may have these names.
    if (words.size() == 1 && std::ranges::count(endwords, words[0]) > 0) return false;
    try {
        const auto known = std::ranges::find_if(serverlines(), [&](const Line& line) { return words[0] == line.word; });
        if (known == serverlines().end()) {
            playerline(text);
        } else {
            const auto names = std::ranges::count_if(split(known->usage), [](const std::string& w) {
                return w.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos;
            });
            check(*known, words, 1 + static_cast<std::size_t>(names));
            (this->*known->run)(words, behind(text, 1));
        }
    } catch (const std::exception& e) {
        print(fmt::format("\u00a7c{}", e.what()));
    }
    return true;
}

void Console::playerline(const std::string& text) {
    // Names may hold blanks: the longest joined name that the line begins with is meant.
    std::string name;
    const std::string typed = behind(text, 0) + ' ';
    for (const JoinRequest& who : clients_.joined())
        if (typed.starts_with(who.name) && who.name.size() > name.size() &&
            (typed[who.name.size()] == ':' || typed[who.name.size()] == ' '))
            name = who.name;
    if (name.empty()) throw std::runtime_error(unknown(text));
    const bool types = typed[name.size()] == ':';
    const std::string tail = behind(typed.substr(name.size() + 1), 0);
    std::vector<std::string> his = split(tail);
    if (his.empty()) return stand(name);
    if (types) return command(name, trimmed(tail));
    his.insert(his.begin(), name);
    for (const Line& known : playerlines())
        if (his[1] == known.word) {
            check(known, his, known.run == &Console::click ? 4 : 2);
            return (this->*known.run)(his, trimmed(behind(tail, 1)));
        }
    throw std::runtime_error(fmt::format("{} {}", name, can(name)));
}

// What a line is that begins with no word of the console and with no joined player.
std::string Console::unknown(const std::string& text) {
    std::string name = trimmed(text.substr(0, text.find(':')));
    bool here = false;
    server_.run([&] {
        here = std::ranges::any_of(server_.world().players(), [&](const PlayerSummary& p) { return p.name == name; });
    });
    if (here) return fmt::format("{} is not joined: type \"join {}\"", name, name);
    const std::string word = split(text)[0];
    return fmt::format("\"{}\" is neither a line of the console nor a joined player; try help, or \"join {}\"", word,
                       word.substr(0, word.find(':')));
}

void Console::stand(const std::string& name) {
    std::string text;
    clients_.with(name, [&](client::ModelClient& c) {
        text = c.forms().empty() ? "no form"
                                 : fmt::format("the form {}", formline(nlohmann::json::parse(c.forms().front().json)));
        text += c.container() ? " and an open menu" : " and no menu";
    });
    print(fmt::format("{} has {} in front; he {}", name, text, can(name)));
}

void Console::help(const std::vector<std::string>&, const std::string&) {
    // A usage that is wider than its column has a line of its own.
    constexpr std::size_t column = 36;
    std::string text;
    const auto add = [&](std::string_view usage, std::string_view help) {
        const bool fits = usage.size() < column;
        text += fmt::format("{}{:<{}}{}\n", usage, fits ? "" : "\n", fits ? column - usage.size() : column + 1, help);
    };
    for (const Line& line : serverlines()) add(line.usage, line.help);
    add("NAME", "what is in front of him");
    add("NAME: COMMAND", "he types a command: Alice: ordomart formmenu");
    for (const Line& line : playerlines())
        if (line.help != nullptr) add(line.usage, line.help);
    add("stop", "stops the server; also quit, exit");
    print(text);
}

void Console::join(const std::vector<std::string>& words, const std::string&) {
    JoinRequest who;
    who.name = words.at(1);
    for (std::size_t i = 2; i < words.size(); ++i) {
        const std::string& word = words[i];
        const auto value = [&]() -> const std::string& {
            if (i + 1 >= words.size()) throw std::runtime_error(fmt::format("{} needs a value", word));
            return words[++i];
        };
        if (word == "--xuid")
            who.xuid = value();
        else if (word == "--lang")
            who.language = value();
        else if (word == "--touch")
            who.devicetype = 2;
        else if (word == "--op")
            who.permission = number(value());
        else
            throw std::runtime_error(fmt::format("join does not know \"{}\"", word));
    }
    if (who.xuid.empty()) who.xuid = defaultxuid(server_, who.name);
    clients_.join(who);
    server_.run([&] { told_[who.name].own = true; });
    server_.settle();
    print(fmt::format("{} joined (xuid {}, {}, {})", who.name, who.xuid, who.language,
                      who.devicetype == 7 ? "desktop" : "touch"));
}

void Console::leave(const std::vector<std::string>&, const std::string& rest) {
    clients_.leave(rest);
    server_.settle();
    print(fmt::format("{} left", rest));
}

void Console::players(const std::vector<std::string>&, const std::string&) {
    std::vector<PlayerSummary> all;
    server_.run([&] { all = server_.world().players(); });
    for (const PlayerSummary& player : all)
        print(fmt::format("{} (xuid {}, {}, level {}){}{}", player.name, player.xuid, player.language,
                          player.permission, player.online ? " online" : "", player.alive ? "" : " dead"));
    if (all.empty()) print("nobody yet: join Alice");
}

void Console::give(const std::vector<std::string>& words, const std::string&) {
    const std::string& name = words.at(1);
    const int count = words.size() > 3 ? number(words[3]) : 1;
    const platform::ItemStack one = platform::ItemStack::create(words.at(2), 1);
    if (one.isNull()) throw std::runtime_error(fmt::format("there is no item \"{}\"", words[2]));
    const int most = one.getMaxStackSize();
    if (count < 1 || count > most)
        throw std::runtime_error(fmt::format("a stack of {} has a count of 1 to {}, not {}; nothing was given",
                                             one.getTypeName(), most, count));
    int slot = words.size() > 4 ? number(words[4]) : -1;
    if (words.size() > 4 && slot < 0) throw std::runtime_error(fmt::format("\"{}\" is no slot", words[4]));
    platform::ItemStack former;
    server_.run([&] {
        for (int i = 0; slot < 0 && i < 36; ++i)
            if (server_.world().item(name, i).isNull()) slot = i;
        if (slot < 0) throw std::runtime_error(fmt::format("{} has no free slot", name));
        former = server_.world().item(name, slot);
        server_.world().setitem(name, slot, platform::ItemStack::create(words[2], count));
    });
    server_.settle();
    print(fmt::format(
        "{} has {} \u00d7{} in slot {}{}", name, one.getTypeName(), count, slot,
        former.isNull() ? "" : fmt::format(", instead of {} \u00d7{}", former.getTypeName(), former.getCount())));
}

void Console::money(const std::vector<std::string>& words, const std::string&) {
    Money money(*server_.services().libraries);
    server_.run([&] {
        const std::string xuid = server_.services().knownplayers->getXuid(words.at(1));
        if (xuid.empty()) throw std::runtime_error(fmt::format("nobody here knows a player \"{}\"", words[1]));
        if (words.size() > 2) money.set(xuid, number(words[2]));
        print(fmt::format("{} has {}", words[1], money.get(xuid)));
    });
}

void Console::score(const std::vector<std::string>& words, const std::string&) {
    server_.run([&] {
        World& world = server_.world();
        if (words.size() > 3) world.setscore(words[1], words[2], number(words[3]));
        print(fmt::format("{} has {} in {}", words.at(1), world.score(words[1], words.at(2)), words[2]));
    });
}

void Console::setalive(const std::string& name, bool alive) {
    bool already = false;
    server_.run([&] {
        for (const PlayerSummary& player : server_.world().players())
            already = already || (player.name == name && player.alive == alive);
        server_.world().setalive(name, alive);
    });
    print(fmt::format("{} {}{}", name, alive ? "lives" : "is dead", already ? ", as before" : ""));
}

void Console::kill(const std::vector<std::string>&, const std::string& rest) { setalive(rest, false); }

void Console::revive(const std::vector<std::string>&, const std::string& rest) { setalive(rest, true); }

void Console::tick(const std::vector<std::string>& words, const std::string&) {
    if (!server_.options().manual) throw std::runtime_error("the server ticks by itself; start it with --manual");
    server_.ticks(words.size() > 1 ? number(words[1]) : 1);
}

void Console::backup(const std::vector<std::string>&, const std::string& rest) {
    // The log has told the rest.
    print(fmt::format("The backup is complete: {}", server_.backup(rest).file));
}

void Console::commands(const std::vector<std::string>&, const std::string&) {
    std::vector<std::string> usage;
    server_.run([&] { usage = server_.commands().usage(); });
    for (const std::string& line : usage) print(line);
}

void Console::bustle(const std::vector<std::string>& words, const std::string&) {
    if (words.size() > 1 && words[1] == "off")
        bustle_.stop();
    else if (words.size() > 1)
        bustle_.start(number(words[1]));
    const Bustle::State state = bustle_.state();
    if (state.players > 0)
        print(
            fmt::format("{} of {} players of the bustle are here; {} trades", state.here, state.players, state.trades));
    else
        print(state.refusal.empty() ? "no bustle: bustle 12" : state.refusal);
}

void Console::screen(const std::vector<std::string>& words, const std::string&) {
    std::string text;
    clients_.with(words.at(0), [&](client::ModelClient& c) { text = drawscreen(c); });
    print(text);
}

void Console::form(const std::vector<std::string>& words, const std::string&) {
    std::string text = "no form is open";
    clients_.with(words.at(0), [&](client::ModelClient& c) {
        if (!c.forms().empty()) text = drawform(nlohmann::json::parse(c.forms().front().json));
    });
    print(text);
}

void Console::answer(const std::vector<std::string>& words, const std::string& rest) {
    // Pasted lines are faster than the list that the form in question shows.
    for (int wait = 0; wait < 40 && !server_.options().manual; ++wait) {
        bool waiting = false;
        clients_.with(words.at(0), [&](client::ModelClient& c) { waiting = c.forms().empty(); });
        if (!waiting) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    clients_.with(words.at(0), [&](client::ModelClient& c) {
        if (c.forms().empty()) throw std::runtime_error(fmt::format("{} has no form to answer", words[0]));
        c.answer(typedanswer(nlohmann::json::parse(c.forms().front().json), rest).dump());
    });
    server_.settle();
    // What waited behind it is in front now, though the server has sent nothing.
    server_.run([&] { tell(words[0]); });
}

void Console::click(const std::vector<std::string>& words, const std::string&) {
    const platform::ContainerName container = containername(words.at(2));
    const int slot = number(words.at(3));
    clients_.with(words[0], [&](client::ModelClient& c) {
        if (words[1] == "click") c.click(container, slot);
        if (words[1] == "rightclick") c.rightclick(container, slot);
        if (words[1] == "drop") c.drop(container, slot);
        if (words[1] == "swap") c.swapwithcursor(container, slot);
    });
    server_.settle();
}

void Console::close(const std::vector<std::string>& words, const std::string&) {
    clients_.with(words.at(0), [](client::ModelClient& c) { c.close(); });
    server_.settle();
}

void Console::command(const std::string& name, const std::string& text) {
    clients_.with(name, [&](client::ModelClient& c) { c.command(text); });
    server_.settle();
}

// A form in front is told once: drawn for whoever was joined here, named for players of the page. One that comes behind
// another would not be seen before that is answered: it is named.
std::string Console::toldforms(const std::string& name, const client::ModelClient& c, Told& told) {
    if (c.forms().empty()) return {};
    const client::PendingForm &front = c.forms().front(), &last = c.forms().back();
    const bool fresh = std::exchange(told.front, front.id) != front.id;
    const bool waits = std::exchange(told.last, last.id) != last.id && last.id != front.id;
    const auto parsed = [](const client::PendingForm& form) { return nlohmann::json::parse(form.json); };
    std::string text;
    if (fresh && told.own)
        text += fmt::format("\u00a77{} is asked:\u00a7r\n{}\n", name, drawform(parsed(front)));
    else if (fresh)
        text +=
            fmt::format("\u00a77{} is asked:\u00a7r {}; \"{} form\" shows it\n", name, formline(parsed(front)), name);
    if (waits)
        text += fmt::format(
            "\u00a77{}:\u00a7r a form waits behind {}: {}; answer the first, or close it: \"{} answer close\"\n", name,
            formline(parsed(front)), formline(parsed(last)), name);
    return text;
}

void Console::tell(const std::string& name) {
    if (clients_.isextra(name)) return;
    std::string text;
    const bool joined = clients_.look(name, [&](client::ModelClient& c) {
        Told& told = told_[name];
        const auto fresh = [](std::uint64_t& seen, const auto& list) {
            return list.from(std::exchange(seen, list.total()));
        };
        for (const auto& reply : fresh(told.replies, c.replies))
            text += fmt::format("\u00a77{} >\u00a7r {}{}\u00a7r\n", name, reply.success ? "" : "\u00a7c", reply.text);
        for (const auto& line : fresh(told.chat, c.chat))
            text += fmt::format("\u00a77{} |\u00a7r {}\u00a7r\n", name, line);
        for (const auto& toast : fresh(told.toasts, c.toasts))
            text +=
                fmt::format("\u00a77{} \u2691\u00a7r \u00a7l{}\u00a7r {}\u00a7r\n", name, toast.title, toast.content);
        for (const auto& sound : fresh(told.sounds, c.sounds))
            text += fmt::format("\u00a78{} \u266a {}\u00a7r\n", name, sound.name);
        text += toldforms(name, c, told);
    });
    if (!joined) told_.erase(name);
    if (!text.empty()) print(text);
}

}  // namespace host
