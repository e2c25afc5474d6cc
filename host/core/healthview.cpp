// How the server itself is, as one more view, so that an operator sees it beside what the plug-in shows.
#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <numeric>

#include "host/core/parts.h"
#include "host/world/worldparts.h"

namespace host {

using nlohmann::json;

namespace {

constexpr double slow = 0.05;  // a tick's length

json said(const char* english, const char* chinese) { return {{"en_US", english}, {"zh_CN", chinese}}; }

// The upper end of the range below which so much of it lies, in seconds.
double quantile(const PassTimes::Seen& seen, double share) {
    const auto all = std::accumulate(seen.counts.begin(), seen.counts.end(), std::uint64_t{0});
    const auto wanted = static_cast<double>(all) * share;
    std::uint64_t sum = 0;
    for (std::size_t range = 0; range + 1 < PassTimes::ranges; ++range) {
        sum += seen.counts[range];
        if (static_cast<double>(sum) >= wanted) return static_cast<double>(1ULL << range) / 1e6;
    }
    return seen.longest;
}

}  // namespace

void Server::Parts::offerhealth() {
    const json description = {{"title", said("The server", "服务器状态")},
                              {"about", said("How the server itself is since its start.", "服务器启动以来的状态。")},
                              {"kind", "figures"},
                              {"group", said("Health", "运行状况")},
                              {"refresh", 5}};
    views.offer({"server", description.dump(), [this](const std::string& query) {
                     if (json::parse(query) != json::object())
                         throw std::invalid_argument("the query of this view has no fields");
                     return health();
                 }});
}

std::string Server::Parts::health() {
    json rows = json::array();
    const auto add = [&](const char* name, const char* kind, json title, json value, bool bad = false) {
        json row = {{"name", name}, {"kind", kind}, {"title", std::move(title)}, {"value", std::move(value)}};
        if (bad) row["bad"] = true;
        rows.push_back(std::move(row));
    };
    const auto passes = passtimes.seen(), waits = turn.serverwaits().seen(), others = turn.guestwaits().seen();
    const auto pass = quantile(passes, 0.99), wait = quantile(waits, 0.99);
    const auto& state = world->parts().state;
    const auto work = background.underway();
    add("ticks", "number", said("Ticks", "游戏刻"), tickcount.load());
    add("players", "number", said("Players online", "在线玩家"), playersonline.load());
    add("pass", "seconds", said("99 of 100 passes take at most", "99%的处理不超过"), pass, pass > slow);
    add("longestpass", "seconds", said("Longest pass", "最长的一次处理"), passes.longest);
    add("wait", "seconds", said("99 of 100 waits of the server thread", "服务器线程99%的等待不超过"), wait,
        wait > slow);
    add("otherwait", "seconds", said("99 of 100 waits of other threads", "其他线程99%的等待不超过"),
        quantile(others, 0.99));
    add("tasks", "number", said("Tasks that wait", "等待中的任务"), scheduler.waiting());
    add("work", "number", said("Work beside the server thread", "后台工作"), work.all());
    add("writes", "number", said("Passes written", "已写入次数"), state.writes());
    add("failures", "number", said("Passes that could not be written", "写入失败次数"), state.failures(),
        state.failures() > 0);
    return json{{"rows", std::move(rows)}}.dump();
}

}  // namespace host
