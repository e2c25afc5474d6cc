#include "host/api/clientstate.h"

#include <fmt/format.h>

#include <map>
#include <stdexcept>

#include "host/api/bodyfields.h"

namespace host {

using nlohmann::json;
using platform::NetworkItem;

namespace {

struct Area {
    const char* name;
    std::uint32_t container;
    int count;
};

constexpr Area areas[] = {{"inventory", client::inventoryid, 36},
                          {"armor", client::armorid, 4},
                          {"offhand", client::offhandid, 1},
                          {"cursor", client::uiid, 1}};

int actiontype(const json& type) {
    static const std::map<std::string, int> names{{"take", 0},          {"place", 1},       {"swap", 2},
                                                  {"drop", 3},          {"destroy", 4},     {"consume", 5},
                                                  {"creativepick", 14}, {"craftresult", 19}};
    if (type.is_number_integer()) return valueof<int>(type, "type");
    const auto found = names.find(valueof<std::string>(type, "type"));
    if (found == names.end()) throw std::runtime_error(fmt::format("unknown action type {}", type.dump()));
    return found->second;
}

platform::ItemStackRequestSlotInfo slotof(const json& slot) {
    return {static_cast<std::uint8_t>(containerof(field(slot, "container"))), field<std::uint8_t>(slot, "slot"),
            field(slot, "stackid", 0)};
}

NetworkItem resultof(const json& given) {
    const auto stack = platform::ItemStack::create(field<std::string>(given, "item"), field(given, "count", 1),
                                                   field(given, "aux", std::int16_t{0}));
    if (stack.isNull()) throw std::runtime_error(fmt::format("there is no item {}", given["item"].dump()));
    return platform::tonetwork(stack);
}

}  // namespace

json itemstate(const client::ModelClient& c, const NetworkItem& item) {
    if (item.networkid == 0) return nullptr;
    return {{"item", c.itemname(item)},
            {"count", item.count},
            {"aux", item.aux},
            {"name", c.displayname(item)},
            {"lore", client::ModelClient::lore(item)},
            {"shines", client::ModelClient::shines(item)},
            {"locked", client::ModelClient::locked(item)},
            {"damage", item.userdata ? item.userdata->getInt("Damage") : 0},
            {"stackid", item.stackid.value_or(0)}};
}

json clientstate(const client::ModelClient& c) {
    json state{{"open", nullptr}, {"gametype", c.gametype()}, {"form", nullptr}, {"slots", json::object()}};
    if (const auto& open = c.container())
        state["open"] = {{"id", open->id}, {"type", open->type}, {"x", open->x}, {"y", open->y}, {"z", open->z}};
    if (!c.forms().empty())
        state["form"] = {{"id", c.forms().front().id}, {"json", json::parse(c.forms().front().json, nullptr, false)}};
    for (const Area& area : areas) {
        json& slots = state["slots"][area.name] = json::array();
        for (int i = 0; i < area.count; ++i) slots.push_back(itemstate(c, c.slot(area.container, i)));
    }
    return state;
}

json linestate(const LogLine& line) {
    return {{"number", line.number},
            {"time", line.time},
            {"title", line.title},
            {"level", static_cast<int>(line.level)},
            {"message", line.message}};
}

platform::ContainerName containerof(const json& name) {
    using enum platform::ContainerName;
    static const std::map<std::string, platform::ContainerName> names{
        {"armor", armor},     {"armour", armor},  {"hotbar", hotbar},     {"inventory", inventory},
        {"offhand", offhand}, {"cursor", cursor}, {"combined", combined}, {"createdoutput", createdoutput}};
    if (name.is_number_unsigned() && name.get<unsigned>() < 256)
        return static_cast<platform::ContainerName>(name.get<std::uint8_t>());
    if (name.is_string())
        if (const auto found = names.find(name.get<std::string>()); found != names.end()) return found->second;
    throw std::runtime_error(fmt::format("unknown container {}", name.dump()));
}

std::vector<platform::ItemStackRequest> requestsof(const json& requests) {
    std::vector<platform::ItemStackRequest> all;
    for (const json& given : requests) {
        platform::ItemStackRequest request;
        request.id = field(given, "id", 0);
        for (const json& step : field(given, "actions")) {
            platform::ItemStackRequestAction action;
            action.type = static_cast<std::uint8_t>(actiontype(field(step, "type")));
            action.amount = field(step, "count", std::int8_t{0});
            action.number = field(step, "entry", 0U);
            action.times = field(step, "times", std::uint8_t{1});
            for (const json& result : field(step, "results", json::array())) action.results.push_back(resultof(result));
            if (step.contains("source")) action.source = slotof(step["source"]);
            if (step.contains("destination")) action.destination = slotof(step["destination"]);
            request.actions.push_back(std::move(action));
        }
        all.push_back(std::move(request));
    }
    return all;
}

}  // namespace host
