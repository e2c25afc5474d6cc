// What a trade costs the server thread, from the answer of the form to the end of the pass that has it on the disk:
// with records and the money in the world's file, and as it would be with shop files alone and money in a file of its
// own, where a kill leaves half a trade. Then a start that finds many records.
//   bench_trade [trades] [records left]      (default: 200 10000)
#include <dlfcn.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "host/clients.h"
#include "host/server.h"
#include "host/world/world.h"
#include "platform/level.h"
#include "platform/library.h"
#include "platform/llmoney.h"
#include "platform/records.h"

namespace {

using nlohmann::json;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char *seller = "25354000000001", *buyer = "25354000000002";

double milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

json good(int place) {
    return {{"shopitemname", fmt::format("apple no. {}", place)},
            {"shopitemdescribe", "a fine piece of work"},
            {"shopitemtag", "apple"},
            {"price", 1},
            {"shopitemleftnum", 1000000},
            {"itemnbt", R"({Count:1b,Damage:0s,Name:"minecraft:apple",WasPickedUp:0b})"},
            {"allowbesearched", true}};
}
json section(int goods) {
    json items = json::array();
    for (int place = 0; place < goods; ++place) items.push_back(good(place));
    return {{"items", items}, {"shopname", "Shop"}};
}

struct Directory {
    fs::path path = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    Directory() {
        fs::remove_all(path);
        fs::create_directories(path / "plugins/Ordomart/data");
    }
    ~Directory() { fs::remove_all(path); }
    void put(const std::string& xuid, const json& sell) const {
        std::ofstream(path / "plugins/Ordomart/data" / (xuid + ".json")) << json{{"sell", sell}, {"recycles", nullptr}};
    }
};

// The money library with a file of its own, of which every movement is a transaction.
class OwnFile : public platform::Libraries {
public:
    explicit OwnFile(std::string path) : path_(std::move(path)) {}
    void* load(const std::string&) override {
        void* const library = ::dlopen(LLMONEY_PATH, RTLD_NOW | RTLD_LOCAL);
        reinterpret_cast<platform::llmoney::Open*>(::dlsym(library, "LLMoneyOpen"))(path_.c_str());
        return library;
    }
    void* symbol(void* library, const char* name) override { return ::dlsym(library, name); }

private:
    std::string path_;
};

enum class way { files, records, durable };
constexpr const char* namesofways[] = {"files alone", "records", "records, durable"};

struct Times {
    double median, most;  // nine of ten take less
};
Times timesof(std::vector<double> all) {
    std::ranges::sort(all);
    return {all[all.size() / 2], all[all.size() * 9 / 10]};
}

void type(host::Clients& clients, host::Server& server, const std::string& line) {
    clients.with("Bob", [&](client::ModelClient& c) { c.command(line); });
    server.settle();
}
void answer(host::Clients& clients, host::Server& server, const json& value) {
    clients.with("Bob", [&](client::ModelClient& c) { c.answer(value.dump()); });
    server.settle();
}
json form(host::Clients& clients) {
    json seen;
    clients.with("Bob", [&](client::ModelClient& c) {
        if (!c.forms().empty()) seen = json::parse(c.forms().front().json);
    });
    return seen;
}

Times trades(way how, bool llmoney, int goods, int number) {
    const Directory directory;
    directory.put(seller, section(goods));
    OwnFile own((directory.path / "money.sqlite").string());
    host::ServerOptions options;
    options.directory = directory.path.string();
    options.module = MODULE_PATH;
    options.moneylibrary = llmoney ? LLMONEY_PATH : "none";
    options.manual = options.quiet = true;
    options.durable = how == way::durable;
    if (how == way::files)
        options.adjust = [&](platform::Host& services) {
            services.records = nullptr;
            if (llmoney) services.libraries = &own;
        };
    host::Server server(options);
    server.start();
    host::Clients clients(server);
    clients.join({.name = "Bob", .xuid = buyer});
    server.settle();
    server.run([&] {
        if (!llmoney) return server.world().setscore("Bob", "money", 1000000);
        auto& libraries = *server.services().libraries;
        reinterpret_cast<platform::llmoney::Set*>(libraries.symbol(libraries.load("LLmoney.dll"), "LLMoneySet"))(
            buyer, 1000000);
    });
    std::vector<double> times;
    for (int i = 0; i < number; ++i) {
        type(clients, server, "ordomart formmenu");
        answer(clients, server, 0);
        answer(clients, server, 1);  // behind the button of the next page
        json filled = json::array();
        const json asked = form(clients);
        for (const auto& element : asked["content"]) filled.push_back(element["type"] == "input" ? json("1") : json());
        const auto begin = Clock::now();
        answer(clients, server, filled);
        times.push_back(milliseconds(Clock::now() - begin));
        while (!form(clients).is_null()) answer(clients, server, nullptr);
        server.run([&] {
            for (int slot = 0; slot < 36; ++slot) server.world().setitem("Bob", slot, {});
        });
        server.settle();
        if (i % 20 == 0) server.ticks(60);
    }
    server.run([&] {
        const int has = llmoney ? 0 : server.world().score("Bob", "money");
        if (!llmoney && has != 1000000 - number) throw std::runtime_error(fmt::format("{} are left", has));
    });
    if (how == way::records && goods == 50) {
        constexpr int passes = 100000;
        Clock::duration all{};
        server.run([&] {
            const auto begin = Clock::now();
            for (int i = 0; i < passes; ++i) server.world().flush();
            all = Clock::now() - begin;
        });
        fmt::print("the end of a pass without a change: {:.0f} ns\n", milliseconds(all) * 1e6 / passes);
    }
    clients.leaveall();
    server.stop();
    return timesof(times);
}

void starts(int left) {
    const Directory directory;
    const json sell = section(50);
    for (int shop = 0; shop < left; ++shop) directory.put(fmt::format("25354{:09}", shop), sell);
    host::ServerOptions options;
    options.directory = directory.path.string();
    options.module = MODULE_PATH;
    options.quiet = true;
    {
        host::Server server(options);
        server.start();
        std::string bytes;
        json::to_msgpack(sell, bytes);
        server.run([&] {
            for (int shop = 0; shop < left; ++shop)
                server.services().records->put("shops", fmt::format("25354{:09}.sell", shop),
                                               [bytes] { return bytes; });
        });
        server.stop();
    }
    host::Server server(options);
    const auto begin = Clock::now();
    server.start();
    fmt::print("\nA start with {} records of 50 goods left: {:.0f} ms\n", left, milliseconds(Clock::now() - begin));
    const auto isleft = [&] {
        bool any = false;
        server.run([&] { any = !server.services().records->keys("shops", "", 1).empty(); });
        return any;
    };
    while (isleft()) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    fmt::print("until every file has it: {:.1f} s\n", milliseconds(Clock::now() - begin) / 1000);
    server.stop();
}

}  // namespace

int main(int count, char** values) {
    const int number = count > 1 ? std::atoi(values[1]) : 200, left = count > 2 ? std::atoi(values[2]) : 10000;
    fmt::print("{:12}{:>8}{:>20}{:>12}{:>12}{:>8}\n", "money", "goods", "", "median ms", "9 of 10", "ratio");
    for (const bool llmoney : {true, false})
        for (const int goods : {50, 1000}) {
            double base = 0;
            for (const way how : {way::files, way::records, way::durable}) {
                const auto [median, most] = trades(how, llmoney, goods, number);
                if (how == way::files) base = median;
                fmt::print("{:12}{:>8}{:>20}{:>12.3f}{:>12.3f}{:>8.2f}\n", llmoney ? "LLMoney" : "scores", goods,
                           namesofways[static_cast<int>(how)], median, most, median / base);
            }
        }
    if (left > 0) starts(left);
}
