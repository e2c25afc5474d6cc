#include "host/api/handlers.h"

#include <fmt/format.h>

#include <charconv>

#include "host/api/bodyfields.h"
#include "host/api/bustlecalls.h"
#include "host/api/clientstate.h"
#include "host/api/eventstream.h"
#include "host/api/viewcalls.h"
#include "host/core/commands.h"
#include "host/core/log.h"
#include "host/money.h"
#include "host/server.h"
#include "host/world/items.h"
#include "host/world/world.h"
#include "platform/level.h"

namespace host {

using nlohmann::json;

namespace {

const json done = {{"ok", true}};
// Lines that a look shows of what he heard, unless it says after which number.
constexpr std::size_t usuallyheard = 300;

void demandjoined(ApiCall& call) {
    if (!call.clients.has(call.player))
        throw ApiError(404, fmt::format("no player \"{}\" is joined here", call.player));
}

json act(ApiCall& call, const std::function<void(client::ModelClient&)>& step) {
    demandjoined(call);
    call.clients.with(call.player, step);
    call.server.settle();
    // What he does himself, closing a form for one, may bring no packet.
    call.streams.changed(call.player);
    return done;
}

std::string xuidof(ApiCall& call) {
    std::string xuid = call.server.services().knownplayers->getXuid(call.player);
    if (xuid.empty()) throw ApiError(404, fmt::format("nobody here knows a player \"{}\"", call.player));
    return xuid;
}

json stackstate(const platform::ItemStack& stack) {
    if (stack.isNull()) return nullptr;
    return {{"item", stack.getTypeName()}, {"count", stack.getCount()}, {"snbt", stack.save().toSNBT()}};
}

platform::ItemStack stackof(const json& body) {
    platform::ItemStack stack;
    if (body.contains("snbt")) {
        const auto tag = platform::CompoundTag::fromSNBT(field<std::string>(body, "snbt"));
        if (!tag) throw ApiError(400, "\"snbt\" is no SNBT of an item");
        stack = platform::ItemStack::fromTag(*tag);
        if (stack.isNull()) throw ApiError(400, fmt::format("there is no item \"{}\"", tag->getString("Name")));
    } else if (body.contains("item") && !body["item"].is_null()) {
        stack = platform::ItemStack::create(field<std::string>(body, "item"), field(body, "count", 1),
                                            field(body, "aux", std::int16_t{0}));
        if (stack.isNull()) throw ApiError(400, fmt::format("there is no item {}", body["item"].dump()));
    }
    return stack;
}

json getserver(ApiCall& call) {
    return {{"run", call.streams.serverrun()},
            {"manual", call.server.options().manual},
            {"tick", call.server.tickcount()},
            {"speed", call.server.speed()},
            {"paused", call.server.paused()}};
}

json getplayers(ApiCall& call) {
    json all = json::array();
    call.server.run([&] {
        Money money(*call.server.services().libraries);
        for (const PlayerSummary& player : call.server.world().players()) {
            json told = whostate(player);
            told["online"] = player.online;
            told["alive"] = player.alive;
            told["money"] = money.there() ? json(money.get(player.xuid)) : json(nullptr);
            all.push_back(std::move(told));
        }
    });
    for (json& player : all) player["joined"] = call.clients.has(player["name"]);
    return {{"players", all}};
}

json join(ApiCall& call) {
    JoinRequest who;
    who.name = field<std::string>(call.body, "name");
    who.xuid = call.body.contains("xuid") ? field<std::string>(call.body, "xuid") : defaultxuid(call.server, who.name);
    who.language = field(call.body, "language", who.language);
    who.permission = field(call.body, "permission", 0);
    const auto device = field(call.body, "device", std::string("desktop"));
    if (device != "desktop" && device != "touch") throw ApiError(400, "\"device\" is desktop or touch");
    who.devicetype = device == "touch" ? 2 : 7;
    call.clients.join(who);
    call.server.settle();
    call.streams.changed(who.name);
    return {{"name", who.name}, {"xuid", who.xuid}};
}

json leave(ApiCall& call) {
    demandjoined(call);
    call.clients.leave(call.player);
    call.server.settle();
    call.streams.changed(call.player);
    return done;
}

json look(ApiCall& call) {
    demandjoined(call);
    json state;
    call.clients.with(call.player, [&](client::ModelClient& c) { state = clientstate(c); });
    json& heard = state["heard"] = json::array();
    const std::string after = call.query("heard");
    const std::size_t most = after.empty() ? usuallyheard : HeardLines::mostkept;
    for (const SharedHeard& one : call.streams.heard().after(numberof(after), call.player, most)) {
        heard.push_back(one->what);
        heard.back()["number"] = one->number;
    }
    return state;
}

json command(ApiCall& call) {
    const auto line = field<std::string>(call.body, "line");
    return act(call, [&](client::ModelClient& c) { c.command(line); });
}

json click(ApiCall& call) {
    const platform::ContainerName container = containerof(field(call.body, "container"));
    const auto slot = field<int>(call.body, "slot");
    const auto how = field(call.body, "how", std::string("click"));
    using Step = void (client::ModelClient::*)(platform::ContainerName, int);
    static const std::map<std::string, Step> steps{{"click", &client::ModelClient::click},
                                                   {"rightclick", &client::ModelClient::rightclick},
                                                   {"drop", &client::ModelClient::drop},
                                                   {"swap", &client::ModelClient::swapwithcursor}};
    const auto step = steps.find(how);
    if (step == steps.end()) throw ApiError(400, "\"how\" is click, rightclick, drop or swap");
    return act(call, [&](client::ModelClient& c) { (c.*step->second)(container, slot); });
}

json getcreative(ApiCall& call) {
    demandjoined(call);
    json entries = json::array();
    call.clients.with(call.player, [&](client::ModelClient& c) {
        for (const auto& [entry, item] : c.creative())
            entries.push_back(
                {{"entry", entry}, {"item", c.itemname(item)}, {"aux", item.aux}, {"name", c.displayname(item)}});
    });
    return {{"entries", entries}};
}

json pick(ApiCall& call) {
    const auto entry = field<std::uint32_t>(call.body, "entry");
    return act(call, [&](client::ModelClient& c) { c.pickcreative(entry); });
}

json request(ApiCall& call) {
    const auto requests = requestsof(field(call.body, "requests"));
    json ids;
    act(call, [&](client::ModelClient& c) { ids = c.request(requests); });
    return {{"ids", ids}};
}

json close(ApiCall& call) {
    return act(call, [](client::ModelClient& c) { c.close(); });
}

json answer(ApiCall& call) {
    const std::string text = field(call.body, "answer").dump();
    return act(call, [&](client::ModelClient& c) {
        if (c.forms().empty()) throw ApiError(409, fmt::format("{} has no form to answer", call.player));
        c.answer(field(call.body, "form", c.forms().front().id), text);
    });
}

json getinventory(ApiCall& call) {
    json slots = json::array();
    call.server.run([&] {
        for (int i = 0; i <= 40; ++i) slots.push_back(stackstate(call.server.world().item(call.player, i)));
    });
    return {{"slots", slots}};
}

json putinventory(ApiCall& call) {
    const platform::ItemStack stack = stackof(call.body);
    const auto slot = field<int>(call.body, "slot");
    if (slot < 0 || slot > 40) throw ApiError(400, "\"slot\" is 0 to 40: inventory 0-35, armour 36-39, offhand 40");
    call.server.run([&] { call.server.world().setitem(call.player, slot, stack); });
    call.server.settle();
    return done;
}

json getmoney(ApiCall& call) {
    json result;
    call.server.run([&] {
        Money money(*call.server.services().libraries);
        result = {{"llmoney", money.there()}, {"amount", money.get(xuidof(call))}};
    });
    return result;
}

json putmoney(ApiCall& call) {
    const auto amount = field<std::int64_t>(call.body, "amount");
    call.server.run([&] { Money(*call.server.services().libraries).set(xuidof(call), amount); });
    return done;
}

json getscore(ApiCall& call) {
    json result;
    call.server.run([&] { result = {{"value", call.server.world().score(call.player, call.query("objective"))}}; });
    return result;
}

json putscore(ApiCall& call) {
    const auto objective = field<std::string>(call.body, "objective");
    const auto value = field<int>(call.body, "value");
    call.server.run([&] { call.server.world().setscore(call.player, objective, value); });
    return done;
}

template <bool Alive>
json setalive(ApiCall& call) {
    call.server.run([&] { call.server.world().setalive(call.player, Alive); });
    return done;
}

json putpermission(ApiCall& call) {
    const auto level = field<int>(call.body, "level");
    call.server.run([&] { call.server.world().setpermission(call.player, level); });
    return done;
}

json putgametype(ApiCall& call) {
    const auto gametype = field<int>(call.body, "gametype");
    call.server.run([&] { call.server.world().setgametype(call.player, gametype); });
    return done;
}

json dropped(ApiCall& call) {
    json all = json::array();
    call.server.run([&] {
        for (const DroppedItem& item : call.server.world().droppeditems()) {
            json told = stackstate(item.stack);
            told["position"] = {item.position.x, item.position.y, item.position.z};
            all.push_back(std::move(told));
        }
    });
    return {{"items", all}};
}

void manualonly(ApiCall& call) {
    if (!call.server.options().manual) throw ApiError(409, "the server ticks by itself; start it with --manual");
}

json ticks(ApiCall& call) {
    manualonly(call);
    const auto count = field(call.body, "count", 1);
    if (count < 1 || count > 100000) throw ApiError(400, "\"count\" is 1 to 100000");
    call.server.ticks(count);
    return {{"tick", call.server.tickcount()}};
}

json clock(ApiCall& call) {
    manualonly(call);
    call.server.advanceclock(field<std::int64_t>(call.body, "milliseconds"));
    call.server.settle();
    return done;
}

json speed(ApiCall& call) {
    if (call.body.contains("ticks")) {
        const auto asked = field<double>(call.body, "ticks");
        if (!(asked >= 0.1 && asked <= 1000)) throw ApiError(400, "\"ticks\" is 0.1 to 1000 a second");
        call.server.setspeed(asked);
    }
    if (call.body.contains("paused")) call.server.setpaused(field<bool>(call.body, "paused"));
    call.streams.changed();
    return getserver(call);
}

json readlog(ApiCall& call) {
    json lines = json::array();
    for (const LogLine& line : call.server.log().lines(numberof(call.query("after")))) lines.push_back(linestate(line));
    return {{"lines", lines}};
}

json backup(ApiCall& call) {
    const auto file = field<std::string>(call.body, "file");
    if (file.empty()) throw ApiError(400, "\"file\" is the path of the archive");
    const BackupReport report = call.server.backup(file);
    return {{"file", report.file},
            {"files", report.files},
            {"bytes", report.bytes},
            {"stoppedmicroseconds", report.stopped.count()}};
}

json items(ApiCall&) {
    json all = json::array();
    for (const ItemRow& row : itemtable().rows()) {
        json variants = json::array();
        for (const ItemVariant& one : row.variants)
            variants.push_back({{"aux", one.aux}, {"en", one.english}, {"zh", one.chinese}, {"color", one.color}});
        all.push_back({{"item", row.info.name},
                       {"en", row.english},
                       {"zh", row.chinese},
                       {"kind", row.kind},
                       {"color", row.color},
                       {"stack", row.info.maxstack},
                       {"durability", row.info.maxdamage},
                       {"variants", std::move(variants)}});
    }
    return {{"items", all}};
}

json complete(ApiCall& call) {
    const std::string line = call.query("line"), name = call.query("player");
    int level = 0;
    for (const JoinRequest& who : call.clients.joined())
        if (who.name == name) level = who.permission;
    json words = json::array(), usage;
    call.server.run([&] {
        for (const Completion& word :
             call.server.commands().complete(line, static_cast<platform::CommandPermissionLevel>(level)))
            words.push_back({{"text", word.text}, {"hint", word.hint}});
        usage = call.server.commands().usage();
    });
    return {{"completions", words}, {"usage", usage}};
}

constexpr ApiRoute routes[] = {
    {"GET", "/api/server", getserver},
    {"GET", "/api/players", getplayers},
    {"POST", "/api/players", join},
    {"DELETE", "/api/players/{}", leave},
    {"GET", "/api/players/{}", look},
    {"POST", "/api/players/{}/command", command},
    {"POST", "/api/players/{}/click", click},
    {"GET", "/api/players/{}/creative", getcreative},
    {"POST", "/api/players/{}/creative", pick},
    {"POST", "/api/players/{}/request", request},
    {"POST", "/api/players/{}/close", close},
    {"POST", "/api/players/{}/answer", answer},
    {"GET", "/api/players/{}/inventory", getinventory},
    {"PUT", "/api/players/{}/inventory", putinventory},
    {"GET", "/api/players/{}/money", getmoney},
    {"PUT", "/api/players/{}/money", putmoney},
    {"GET", "/api/players/{}/score", getscore},
    {"PUT", "/api/players/{}/score", putscore},
    {"POST", "/api/players/{}/kill", setalive<false>},
    {"POST", "/api/players/{}/revive", setalive<true>},
    {"PUT", "/api/players/{}/permission", putpermission},
    {"PUT", "/api/players/{}/gametype", putgametype},
    {"GET", "/api/dropped", dropped},
    {"POST", "/api/ticks", ticks},
    {"POST", "/api/clock", clock},
    {"POST", "/api/speed", speed},
    {"GET", "/api/log", readlog},
    {"POST", "/api/backup", backup},
    {"GET", "/api/items", items},
    {"GET", "/api/views", listviews},
    {"GET", "/api/views/{}", askview},
    {"GET", "/api/complete", complete},
    {"GET", "/api/bustle", showbustle},
    {"POST", "/api/bustle", startbustle},
    {"DELETE", "/api/bustle", stopbustle},
};

}  // namespace

std::uint64_t numberof(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (!text.empty() && (error != std::errc{} || end != text.data() + text.size()))
        throw ApiError(400, fmt::format("\"{}\" is no number", text));
    return number;
}

std::span<const ApiRoute> apiroutes() { return routes; }

}  // namespace host
