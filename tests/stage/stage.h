// A stage for stories: the real module in a manual server in a fresh directory, and as many model clients as the story
// needs. Each step settles the server, so that a test reads like what a person does and sees.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/clients.h"
#include "host/core/log.h"
#include "host/money.h"
#include "host/server.h"
#include "host/world/world.h"

namespace stage {

using nlohmann::json;
using platform::ContainerName;

class Stage;
using Answers = std::vector<std::pair<std::string, json>>;  // element titles, or parts of them, and what is put there

// A player behind a model client.
class Actor {
public:
    Actor(Stage& stage, host::JoinRequest who) : stage_(stage), who_(std::move(who)) {}

    // ---- what he does; each returns himself, so that steps can be strung together
    Actor& types(const std::string& line);
    Actor& clicks(ContainerName container, int slot);
    Actor& drops(ContainerName container, int slot);
    Actor& holds(int slot);                         // of the hotbar, in his hand
    Actor& closes();                                // the open container
    Actor& answers(const json& answer);             // the form in front; null closes it
    Actor& presses(const std::string& buttontext);  // a button of a simple or modal form, by a part of its text
    Actor& fills(const Answers& values);            // a custom form, the rest of it by its defaults, and submits it
    // Past the client's own book of forms: also for a form that was answered already, or never sent.
    Actor& answersraw(std::uint32_t formid, const std::string& text);
    Actor& dismisses();  // closes forms until none is left
    Actor& leaves();
    Actor& forgets();  // chat, toasts, sounds and replies heard so far

    // ---- what he sees
    void look(const std::function<void(client::ModelClient&)>& at) const;
    [[nodiscard]] std::string chat() const;     // all lines, joined by newlines
    [[nodiscard]] std::string toasts() const;   // "title: content", likewise
    [[nodiscard]] std::string replies() const;  // command output, likewise
    // Names, with volume and pitch behind them unless both are 1.
    [[nodiscard]] std::vector<std::string> sounds() const;
    [[nodiscard]] json form() const;  // in front; null when there is none
    [[nodiscard]] std::uint32_t formid() const;
    [[nodiscard]] std::string formtext() const;  // every text of it, joined by newlines
    [[nodiscard]] bool menuopen() const;
    [[nodiscard]] std::string shown(std::uint32_t container, int slot) const;  // "minecraft:apple*3", "" when empty

    // ---- what is true of him on the server
    [[nodiscard]] const host::JoinRequest& who() const { return who_; }
    [[nodiscard]] const std::string& xuid() const { return who_.xuid; }
    [[nodiscard]] std::int64_t money() const;  // LLMoney, or the score in scoreboard mode
    Actor& setmoney(std::int64_t amount);
    Actor& gives(int slot, const std::string& name, int count = 1, const std::string& snbt = {});  // puts it there
    Actor& loses(int slot);                                                                        // empties it
    [[nodiscard]] std::string has(int slot) const;            // "minecraft:apple*3", "" when empty
    [[nodiscard]] int counts(const std::string& name) const;  // pieces over all slots, armour and offhand
    Actor& dies();
    Actor& revives();
    Actor& may(int permission);  // from now on

private:
    Stage& stage_;
    host::JoinRequest who_;
};

struct Setting {
    json config;  // written as config.json when not null
    bool llmoney = true;
    std::function<void(platform::Host&)> adjust;
    std::vector<std::pair<std::string, std::string>> files;  // path, content: there before the start
    std::string language = "en_US";
    bool slotupdates = true;  // off: a client sees what has changed in his slots only when the market shows it
    std::string module = MODULE_PATH;
    std::string certificates;         // what calls to web services trust
    std::filesystem::path directory;  // one that is there already, and stays; otherwise a fresh one
    std::int64_t clock = host::ServerOptions().manualclock;
};

class Stage {
public:
    explicit Stage(Setting setting = {});
    ~Stage();

    Actor& join(const std::string& name, const std::string& xuid, const std::string& language = "en_US",
                int devicetype = 7, int permission = 0);
    void restart();  // orderly stop and start in the same directory; everybody has left
    void ticks(int n);
    void seconds(int n) { ticks(20 * n); }
    void advance(std::int64_t milliseconds);

    // ---- files below the server directory
    [[nodiscard]] std::string file(const std::string& path) const;  // "" when missing
    [[nodiscard]] bool exists(const std::string& path) const;
    void write(const std::string& path, const std::string& content) const;
    [[nodiscard]] json shopfile(const std::string& xuid);  // saved first: two seconds pass
    // A shop file with goods, ready before the server asks for it. Rows as in the file; missing keys get usual values.
    void writeshop(const std::string& xuid, const json& items, const json& recycleitems = nullptr,
                   const json& sellextra = json::object(), const json& recycleextra = json::object()) const;
    [[nodiscard]] std::string log() const;  // every line so far: "[title][level] message"
    [[nodiscard]] int score(const std::string& player, const std::string& objective) const;
    void onserver(const std::function<void()>& work);

    [[nodiscard]] host::Server& server() { return *server_; }
    [[nodiscard]] host::Clients& clients() { return *clients_; }
    [[nodiscard]] bool llmoney() const { return setting_.llmoney; }
    [[nodiscard]] std::int64_t money(const std::string& xuid) const;

private:
    void start();
    void stop();
    Setting setting_;
    std::filesystem::path directory_;
    std::unique_ptr<host::Server> server_;
    std::unique_ptr<host::Clients> clients_;
    std::vector<std::unique_ptr<Actor>> actors_;
};

// A shop file with rows as in the file; missing keys get usual values.
[[nodiscard]] json shopfileof(const std::string& xuid, const json& items, const json& recycleitems = nullptr,
                              const json& sellextra = json::object(), const json& recycleextra = json::object());
// One good and one commission, as records of a shop file.
[[nodiscard]] json good(const std::string& item, int price, int count, const std::string& title = {});
[[nodiscard]] json commission(const std::string& item, int offer, int wanted, const std::string& title = {});
[[nodiscard]] std::string snbt(const std::string& item, int count = 1);

}  // namespace stage
