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
using client::ModelClient;

namespace {

template <class List, class F>
std::string joined(const List& list, F text) {
    std::string all;
    for (const auto& entry : list) all += text(entry) + "\n";
    if (!all.empty()) all.pop_back();
    return all;
}

std::string told(const platform::ItemStack& stack) {
    return stack.isNull() ? "" : fmt::format("{}*{}", stack.getTypeName(), stack.getCount());
}

// Everything a person can read in a form.
void collect(const json& value, std::string& out) {
    if (value.is_string()) out += value.get<std::string>() + "\n";
    if (value.is_structured())
        for (const auto& inner : value) collect(inner, out);
}

}  // namespace

// ---- Actor

Actor& Actor::types(const std::string& line) {
    look([&](ModelClient& c) { c.command(line); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::clicks(ContainerName container, int slot) {
    look([&](ModelClient& c) { c.click(container, slot); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::drops(ContainerName container, int slot) {
    look([&](ModelClient& c) { c.drop(container, slot); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::closes() {
    look([&](ModelClient& c) { c.close(); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::answers(const json& answer) {
    if (form().is_null()) throw std::runtime_error(who_.name + " has no form to answer");
    look([&](ModelClient& c) { c.answer(answer.dump()); });
    stage_.server().settle();
    return *this;
}

Actor& Actor::presses(const std::string& buttontext) {
    const json shown = form();
    if (shown.is_null()) throw std::runtime_error(who_.name + " has no form to press \"" + buttontext + "\" in");
    if (shown["type"] == "modal") {
        for (const bool first : {true, false})
            if (shown[first ? "button1" : "button2"].get<std::string>().find(buttontext) != std::string::npos)
                return answers(first);
    } else {
        int number = 0;
        for (const json& button : shown["buttons"]) {
            if (button["text"].get<std::string>().find(buttontext) != std::string::npos) return answers(number);
            ++number;
        }
    }
    throw std::runtime_error("no button \"" + buttontext + "\" in " + shown.dump());
}

Actor& Actor::fills(const std::vector<std::pair<std::string, json>>& values) {
    const json shown = form();
    if (shown.is_null() || shown["type"] != "custom_form") throw std::runtime_error(who_.name + " has no form to fill");
    json answer = json::array();
    std::size_t used = 0;
    for (const json& element : shown["content"]) {
        json value = element.contains("default") ? element["default"] : json(nullptr);
        for (const auto& [title, given] : values)
            if (element["type"] != "label" && element["text"].get<std::string>().find(title) != std::string::npos) {
                value = given;
                ++used;
            }
        answer.push_back(value);
    }
    if (used < values.size()) throw std::runtime_error("not every element was found in " + shown.dump());
    return answers(answer);
}

Actor& Actor::dismisses() {
    for (int i = 0; i < 10 && !form().is_null(); ++i) answers(nullptr);
    return *this;
}

Actor& Actor::leaves() {
    stage_.clients().leave(who_.name);
    stage_.server().settle();
    return *this;
}

Actor& Actor::forgets() {
    look([](ModelClient& c) {
        c.chat.clear();
        c.toasts.clear();
        c.sounds.clear();
        c.replies.clear();
        c.packets.clear();
    });
    return *this;
}

void Actor::look(const std::function<void(ModelClient&)>& at) const { stage_.clients().with(who_.name, at); }

std::string Actor::chat() const {
    std::string all;
    look([&](ModelClient& c) { all = joined(c.chat, [](const auto& line) { return line; }); });
    return all;
}

std::string Actor::toasts() const {
    std::string all;
    look([&](ModelClient& c) { all = joined(c.toasts, [](const auto& t) { return t.title + ": " + t.content; }); });
    return all;
}

std::string Actor::replies() const {
    std::string all;
    look([&](ModelClient& c) { all = joined(c.replies, [](const auto& r) { return r.text; }); });
    return all;
}

std::vector<std::string> Actor::sounds() const {
    std::vector<std::string> all;
    look([&](ModelClient& c) {
        for (const auto& sound : c.sounds) all.push_back(sound.name);
    });
    return all;
}

json Actor::form() const {
    json front;
    look([&](ModelClient& c) {
        if (!c.forms().empty()) front = json::parse(c.forms().front().json);
    });
    return front;
}

std::string Actor::formtext() const {
    std::string all;
    collect(form(), all);
    return all;
}

bool Actor::menuopen() const {
    bool open = false;
    look([&](ModelClient& c) { open = c.container().has_value(); });
    return open;
}

std::string Actor::shown(std::uint32_t container, int slot) const {
    std::string text;
    look([&](ModelClient& c) {
        const auto& item = c.slot(container, slot);
        if (item.networkid != 0) text = fmt::format("{}*{}", c.itemname(item), item.count);
    });
    return text;
}

std::int64_t Actor::money() const {
    return stage_.llmoney() ? stage_.money(who_.xuid) : stage_.score(who_.name, "money");
}

Actor& Actor::setmoney(std::int64_t amount) {
    stage_.onserver([&] {
        if (stage_.llmoney())
            host::Money(*stage_.server().services().libraries).set(who_.xuid, amount);
        else
            stage_.server().world().setscore(who_.name, "money", static_cast<int>(amount));
    });
    return *this;
}

Actor& Actor::gives(int slot, const std::string& name, int count, const std::string& text) {
    stage_.onserver([&] {
        platform::ItemStack stack = platform::ItemStack::create(name, count);
        if (!text.empty()) {
            const auto tag = platform::CompoundTag::fromSNBT(text);
            if (!tag) throw std::runtime_error("no SNBT: " + text);
            stack = platform::ItemStack::fromTag(*tag);
        }
        if (stack.isNull()) throw std::runtime_error("no item: " + name);
        stage_.server().world().setitem(who_.name, slot, stack);
    });
    return *this;
}

std::string Actor::has(int slot) const {
    std::string text;
    stage_.onserver([&] { text = told(stage_.server().world().item(who_.name, slot)); });
    return text;
}

int Actor::counts(const std::string& name) const {
    int pieces = 0;
    stage_.onserver([&] {
        for (int slot = 0; slot <= 40; ++slot) {
            const auto stack = stage_.server().world().item(who_.name, slot);
            if (!stack.isNull() && stack.getTypeName() == name) pieces += stack.getCount();
        }
    });
    return pieces;
}

Actor& Actor::dies() {
    stage_.onserver([&] { stage_.server().world().setalive(who_.name, false); });
    return *this;
}

Actor& Actor::revives() {
    stage_.onserver([&] { stage_.server().world().setalive(who_.name, true); });
    return *this;
}

// ---- Stage

Stage::Stage(Setting setting) : setting_(std::move(setting)) {
    static int count = 0;
    directory_ = fs::temp_directory_path() / fmt::format("ordomart-stage-{}-{}", ::getpid(), ++count);
    fs::remove_all(directory_);
    fs::create_directories(directory_);
    if (!setting_.config.is_null()) write("plugins/Ordomart/config.json", setting_.config.dump(4));
    for (const auto& [path, content] : setting_.files) write(path, content);
    start();
}

Stage::~Stage() {
    try {
        stop();
    } catch (const std::exception& e) {
        ADD_FAILURE() << "the stage did not stop: " << e.what();
    }
    std::error_code ignored;
    fs::remove_all(directory_, ignored);
}

void Stage::start() {
    host::ServerOptions options;
    options.directory = directory_.string();
    options.module = MODULE_PATH;
    options.moneylibrary = setting_.llmoney ? LLMONEY_PATH : "none";
    options.language = setting_.language;
    options.manual = true;
    options.quiet = true;
    options.adjust = setting_.adjust;
    server_ = std::make_unique<host::Server>(options);
    server_->start();
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
    write("plugins/Ordomart/data/" + xuid + ".json", json({{"sell", sell}, {"recycles", recycles}}).dump(4));
}

std::string Stage::log() const {
    static const char* const levels[] = {"debug", "info", "warn", "error", "fatal"};
    return joined(server_->log().lines(), [](const host::LogLine& line) {
        return fmt::format("[{}][{}] {}", line.title, levels[static_cast<int>(line.level)], line.message);
    });
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
