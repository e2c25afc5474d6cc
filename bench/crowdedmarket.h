// A server in real time with shops in it, and players who know of the wire what they need to open lists and to see when
// their page was complete.
#pragma once

#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "host/network/network.h"
#include "host/server.h"
#include "platform/packets/codec.h"
#include "platform/packets/containers.h"
#include "platform/packets/forms.h"
#include "platform/packets/itemstackrequest.h"
#include "platform/packets/messages.h"

namespace crowded {

using platform::ActionType;
using platform::CommandRequestPacket;
using platform::ContainerClosePacket;
using platform::ContainerName;
using platform::ContainerOpenPacket;
using platform::InventorySlotPacket;
using platform::ItemStackRequestAction;
using platform::ItemStackRequestPacket;
using platform::ModalFormRequestPacket;
using platform::ModalFormResponsePacket;
using platform::openpacket;
using platform::PacketId;
using platform::readpacket;
using platform::sealpacket;
using platform::topacket;
using namespace std::chrono_literals;
using nlohmann::json;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

inline double seconds(Clock::duration time) { return std::chrono::duration<double>(time).count(); }

inline int threads() {
    int count = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/task")) count += entry.is_directory() ? 1 : 0;
    return count;
}
inline double residentmb() {
    long all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return static_cast<double>(resident * ::sysconf(_SC_PAGESIZE)) / 1e6;
}
inline double inusemb() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}
inline std::string xuidof(int number) { return fmt::format("25354{:011}", number); }

inline void writeshops(const fs::path& directory, int shops, int goods) {
    constexpr const char* items[] = {"apple", "bread", "diamond", "iron_ingot", "coal", "emerald"};
    fs::create_directories(directory);
    for (int shop = 0; shop < shops; ++shop) {
        json all = json::array();
        for (int place = 0; place < goods; ++place) {
            const std::string item = items[static_cast<std::size_t>(shop + place) % std::size(items)];
            all.push_back({{"shopitemname", fmt::format("{} no. {} of shop {}", item, place, shop)},
                           {"shopitemdescribe", "a fine piece of work"},
                           {"shopitemtag", item},
                           {"price", 1 + (shop * 31 + place * 17) % 5000},
                           {"shopitemleftnum", 64},
                           {"itemnbt", "{Count:1b,Damage:0s,Name:\"minecraft:" + item + "\",WasPickedUp:0b}"},
                           {"allowbesearched", true}});
        }
        std::ofstream(directory / (xuidof(shop) + ".json"))
            << json{{"sell", {{"items", all}, {"shopname", fmt::format("Shop {}", shop)}}}, {"recycles", nullptr}};
    }
}

// ---- a client that knows of the wire what it needs, and when its page was complete

inline constexpr std::uint32_t ownslots = 0, lastbutton = 6;  // the compass is drawn last

class Player {
public:
    Player(host::Server& server, int number) : server_(server) {
        const host::JoinRequest who{fmt::format("Player{}", number), xuidof(number)};
        server_.run([&] { id_ = server_.network().join(who, [this](const std::string& packet) { hear(packet); }); });
    }
    void leaves() {
        server_.run([&] { server_.network().leave(id_); });
    }
    void types(const std::string& line) { sends(CommandRequestPacket{"/" + line}); }
    void presses(int button) { answers(std::to_string(button)); }
    void closesforms() {
        while (answers("null")) {
        }
    }
    void closesmenu() {
        if (const auto menu = menu_.exchange(-1); menu >= 0)
            sends(ContainerClosePacket{static_cast<std::uint8_t>(menu), false});
    }
    void clicks(ContainerName from, int slot) {
        ItemStackRequestAction action;
        action.type = static_cast<std::uint8_t>(ActionType::take);
        action.amount = 1;
        action.source = {static_cast<std::uint8_t>(from), static_cast<std::uint8_t>(slot)};
        action.destination = {static_cast<std::uint8_t>(ContainerName::cursor), 0};
        sends(ItemStackRequestPacket{0, {{-1, {action}}}});
    }

    void waits() {
        asked_ = Clock::now();
        served_ = false;
    }
    [[nodiscard]] bool served() const { return served_; }
    [[nodiscard]] double took() const { return seconds(at_.load() - asked_); }
    [[nodiscard]] std::size_t forms() const {
        const std::lock_guard lock(mutex_);
        return forms_.size();
    }

private:
    template <class P>
    void sends(const P& packet) {
        server_.network().receive(id_, sealpacket(topacket(packet)));
    }
    bool answers(const std::string& text) {
        std::uint32_t form = 0;
        {
            const std::lock_guard lock(mutex_);
            if (forms_.empty()) return false;
            form = forms_.back();
            forms_.pop_back();
        }
        sends(ModalFormResponsePacket{.formid = form, .json = text});
        return true;
    }
    void hear(const std::string& bytes) {
        const auto packet = openpacket(bytes);
        if (packet.number == static_cast<int>(PacketId::ModalFormRequest)) {
            const auto form = readpacket<ModalFormRequestPacket>(packet.body);
            const std::lock_guard lock(mutex_);
            forms_.push_back(form.formid);
            if (form.json.find("Selling shops (form)") == std::string::npos) done();
        } else if (packet.number == static_cast<int>(PacketId::ContainerOpen)) {
            menu_ = readpacket<ContainerOpenPacket>(packet.body).containerid;
        } else if (packet.number == static_cast<int>(PacketId::ContainerClose)) {
            closesmenu();
        } else if (packet.number == static_cast<int>(PacketId::InventorySlot)) {
            const auto slot = readpacket<InventorySlotPacket>(packet.body);
            if (slot.containerid == ownslots && slot.slot == lastbutton && slot.item.networkid != 0) done();
        }
    }
    void done() {
        if (served_) return;
        at_ = Clock::now();
        served_ = true;
    }

    host::Server& server_;
    host::ConnectionId id_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::uint32_t> forms_;
    std::atomic<int> menu_ = -1;
    Clock::time_point asked_;
    std::atomic<Clock::time_point> at_;
    std::atomic<bool> served_ = true;
};

// ---- a server with shops in it, and somebody who counts its threads

class Market {
public:
    Market(const std::string& module, int shops, int goods) {
        fs::remove_all(directory_);
        writeshops(directory_ / "plugins/Ordomart/data", shops, goods);
        host::ServerOptions options;
        options.directory = directory_.string();
        options.module = module;
        options.moneylibrary = "none";
        options.quiet = true;
        server_ = std::make_unique<host::Server>(options);
        server_->start();
        idle_ = threads();
        counter_ = std::thread([this] {
            for (; !ended_; std::this_thread::sleep_for(5ms)) most_ = std::max<int>(most_, threads());
        });
        idle_ = threads();
    }
    ~Market() {
        if (counter_.joinable()) stops();
        fs::remove_all(directory_);
    }
    // Seconds.
    double stops() {
        ended_ = true;
        counter_.join();
        const auto start = Clock::now();
        server_->stop();
        return seconds(Clock::now() - start);
    }
    void joins(int count) {
        while (static_cast<int>(players_.size()) < count)
            players_.push_back(std::make_unique<Player>(*server_, static_cast<int>(players_.size())));
    }
    // Until everybody is served, or the time is up. How many are not.
    int waits(Clock::duration most) {
        const auto end = Clock::now() + most;
        const auto left = [&] { return std::ranges::count_if(players_, [](const auto& p) { return !p->served(); }); };
        while (left() > 0 && Clock::now() < end) std::this_thread::sleep_for(2ms);
        return static_cast<int>(left());
    }
    [[nodiscard]] int morethreads() const { return most_ - idle_; }
    [[nodiscard]] int nowmore() const { return threads() - idle_; }
    [[nodiscard]] host::Server& server() { return *server_; }
    [[nodiscard]] std::deque<std::unique_ptr<Player>>& players() { return players_; }

private:
    fs::path directory_ = fs::temp_directory_path() / fmt::format("ordomart-bench-{}", ::getpid());
    std::unique_ptr<host::Server> server_;
    std::deque<std::unique_ptr<Player>> players_;
    std::thread counter_;
    std::atomic<bool> ended_ = false;
    std::atomic<int> most_ = 0;
    int idle_ = 0;
};

}  // namespace crowded
