#include "tests/stage/stage.h"

#include <fmt/format.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "platform/host.h"
#include "platform/item.h"
#include "platform/player.h"

namespace stage {

namespace fs = std::filesystem;

Stage::Stage(Setting setting) : setting_(std::move(setting)) {
    static int count = 0;
    directory_ = setting_.directory;
    if (directory_.empty()) {
        directory_ = fs::temp_directory_path() / fmt::format("ordomart-stage-{}-{}", ::getpid(), ++count);
        fs::remove_all(directory_);
        fs::create_directories(directory_);
    }
    if (!setting_.config.is_null()) write("plugins/Ordomart/config.json", setting_.config.dump(4));
    for (const auto& [path, content] : setting_.files) write(path, content);
    try {
        start();
    } catch (...) {
        if (setting_.directory.empty()) fs::remove_all(directory_);
        throw;
    }
}

Stage::~Stage() {
    try {
        stop();
    } catch (const std::exception& e) {
        ADD_FAILURE() << "the stage did not stop: " << e.what();
    }
    std::error_code ignored;
    if (setting_.directory.empty()) fs::remove_all(directory_, ignored);
}

void Stage::start() {
    host::ServerOptions options;
    options.directory = directory_.string();
    options.module = setting_.module;
    options.moneylibrary = setting_.llmoney ? LLMONEY_PATH : "none";
    options.language = setting_.language;
    options.manual = true;
    options.manualclock = setting_.clock;
    options.quiet = true;
    options.adjust = setting_.adjust;
    options.certificates = setting_.certificates;
    server_ = std::make_unique<host::Server>(options);
    server_->start();
    server_->world().showschanges = setting_.slotupdates;
    clients_ = std::make_unique<host::Clients>(*server_);
    server_->settle();
}

void Stage::stop() {
    if (!server_) return;
    clients_.reset();
    server_->stop();
    server_.reset();
}

void Stage::restart() {
    actors_.clear();
    stop();
    start();
}

Actor& Stage::join(const std::string& name, const std::string& xuid, const std::string& language, int devicetype,
                   int permission) {
    clients_->join({name, xuid, language, devicetype, permission});
    server_->settle();
    std::erase_if(actors_, [&](const auto& actor) { return actor->who().name == name; });
    actors_.push_back(std::make_unique<Actor>(*this, host::JoinRequest{name, xuid, language, devicetype, permission}));
    return *actors_.back();
}

void Stage::ticks(int n) { server_->ticks(n); }

void Stage::advance(std::int64_t milliseconds) {
    server_->advanceclock(milliseconds);
    server_->settle();
}

std::string Stage::file(const std::string& path) const {
    std::ifstream in(directory_ / path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

bool Stage::exists(const std::string& path) const { return fs::exists(directory_ / path); }

void Stage::write(const std::string& path, const std::string& content) const {
    fs::create_directories((directory_ / path).parent_path());
    std::ofstream(directory_ / path, std::ios::binary) << content;
}

json Stage::shopfile(const std::string& xuid) {
    // A change is seen by one pass of the market's tick, queued by the next and marked as written by a third.
    seconds(4);
    return json::parse(file("plugins/Ordomart/data/" + xuid + ".json"));
}

void Stage::writeshop(const std::string& xuid, const json& items, const json& recycleitems, const json& sellextra,
                      const json& recycleextra) const {
    write("plugins/Ordomart/data/" + xuid + ".json",
          shopfileof(xuid, items, recycleitems, sellextra, recycleextra).dump(4));
}

std::string Stage::log() const {
    static const char* const levels[] = {"debug", "info", "warn", "error", "fatal"};
    std::string all;
    for (const host::LogLine& line : server_->log().lines())
        all += fmt::format("[{}][{}] {}\n", line.title, levels[static_cast<int>(line.level)], line.message);
    if (!all.empty()) all.pop_back();
    return all;
}

int Stage::score(const std::string& player, const std::string& objective) const {
    int value = 0;
    server_->run([&] {
        // A fake player, which is only a name on the scoreboard, or one who was here.
        platform::Scoreboard& scores = *server_->services().scoreboard;
        value = scores.getScoreboardId(player).isValid() ? scores.getScore(objective, player)
                                                         : server_->world().score(player, objective);
    });
    return value;
}

void Stage::onserver(const std::function<void()>& work) {
    server_->run(work);
    server_->settle();
}

std::int64_t Stage::money(const std::string& xuid) const {
    return host::Money(*server_->services().libraries).get(xuid);
}

// ---- records

json shopfileof(const std::string& xuid, const json& items, const json& recycleitems, const json& sellextra,
                const json& recycleextra) {
    // A braced list of one record reads as the record itself.
    const auto rows = [](const json& given) { return given.is_object() ? json::array({given}) : given; };
    json sell = {{"biditems", nullptr},
                 {"describe", ""},
                 {"isopshop", false},
                 {"items", rows(items)},
                 {"ownerlang", ""},
                 {"ownername", ""},
                 {"salesvolume", 0},
                 {"sellcount", 0},
                 {"shopdiscount", nullptr},
                 {"shopitemicon", ""},
                 {"shopname", xuid + "'s shop"},
                 {"shopstate", 0}};
    json recycles = {{"describe", ""},
                     {"isopshop", false},
                     {"ownerlang", ""},
                     {"ownername", ""},
                     {"recycleamount", 0},
                     {"recyclecost", 0},
                     {"recycleitems", rows(recycleitems)},
                     {"shopitemicon", ""},
                     {"shopname", xuid + "'s recycleshop"},
                     {"shopstate", 0}};
    sell.update(sellextra);
    recycles.update(recycleextra);
    return {{"sell", sell}, {"recycles", recycles}};
}

std::string snbt(const std::string& item, int count) {
    const auto stack = platform::ItemStack::create(item, count);
    return stack.save().toSNBT();
}

json good(const std::string& item, int price, int count, const std::string& title) {
    return {{"shopitemname", title.empty() ? item : title},
            {"shopitemdescribe", ""},
            {"shopitemtag", item},
            {"price", price},
            {"shopitemleftnum", count},
            {"itemnbt",
             item.starts_with("{") ? item : "{Count:1b,Damage:0s,Name:\"minecraft:" + item + "\",WasPickedUp:0b}"},
            {"allowbesearched", true}};
}

json commission(const std::string& item, int offer, int wanted, const std::string& title) {
    return {{"recycleitemname", title.empty() ? item : title},
            {"recycleitemdescribe", ""},
            {"recycleitemtag", item},
            {"recycleitemleftwanna", wanted},
            {"nowhasrecyclenum", 0},
            {"offer", offer},
            {"itemnbt", "{Count:1b,Damage:0s,Name:\"minecraft:" + item + "\",WasPickedUp:0b}"},
            {"allowbesearched", true},
            {"filterauxordamage", false},
            {"filterench", false},
            {"filteritemnbt", false},
            {"recycleditemnbtlist", json::array()}};
}

}  // namespace stage
