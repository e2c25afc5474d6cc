#include "host/demo/demo.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "host/backup/restore.h"
#include "host/demo/goods.h"
#include "host/money.h"
#include "host/server.h"
#include "host/world/world.h"
#include "platform/event.h"
#include "platform/files.h"
#include "platform/item.h"
#include "platform/level.h"
#include "platform/logger.h"
#include "platform/player.h"
#include "platform/scoreboard.h"

namespace host {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

const std::string markpath = "demo.json";

struct Gift {
    const char* item;
    int count;
};

constexpr Gift gifts[] = {{"iron_ingot", 32}, {"cobblestone", 64}, {"wheat", 40}, {"bread", 5}, {"leather", 12}};

void write(const fs::path& path, const json& content) {
    std::ofstream out(path, std::ios::binary);
    out << content.dump(4);
    if (!out) throw StartError(fmt::format("cannot write {}", path.string()));
}

bool ismark(const json& mark) { return mark.is_object() && mark.contains("welcomed") && mark["welcomed"].is_array(); }

void welcome(platform::ServerPlayer& player, Money& money) {
    for (const Gift& gift : gifts) player.getSupplies().add(platform::ItemStack::create(gift.item, gift.count));
    player.refreshInventory();
    // An owner may have been paid before he comes for the first time.
    const auto& xuid = player.getXuid();
    if (money.there()) money.set(xuid, money.get(xuid) + demopurse);
    constexpr const char *english = "§eThis is a demo market: {} coins are yours. Type §f/ordomart§e.",
                         *chinese = "§e这是演示集市，送你{}枚金币。输入§f/ordomart§e开始。";
    player.sendText(
        fmt::format(fmt::runtime(player.getLanguageCode().starts_with("zh") ? chinese : english), demopurse));
}

}  // namespace

bool makedemo(const std::string& directory) {
    const fs::path data = fs::path(directory) / "plugins/Ordomart/data";
    if (fs::exists(data) || halfrestored(directory)) return false;
    for (const char* folder : {"plugins/Ordomart/data", "plugins/Ordomart/log"}) {
        std::error_code error;
        fs::create_directories(fs::path(directory) / folder, error);
        if (error) throw StartError(fmt::format("{}: the directory cannot be made: {}", directory, error.message()));
    }
    for (const DemoOwner& owner : demoowners()) write(data / (std::string(owner.xuid) + ".json"), demoshop(owner));
    write(fs::path(directory) / markpath, {{"welcomed", json::array()}});
    return true;
}

bool isdemo(Server& server) {
    const auto text = server.services().files->read(markpath);
    return text && ismark(json::parse(*text, nullptr, false));
}

void playdemo(Server& server) {
    platform::Host& services = server.services();
    const auto text = services.files->read(markpath);
    if (!text) return;
    const auto mark = std::make_shared<json>(json::parse(*text, nullptr, false));
    if (!ismark(*mark)) {
        platform::Logger("Server").error("{} is no mark of a demo; nobody is welcomed", markpath);
        return;
    }
    server.run([&] {
        for (const DemoOwner& owner : demoowners()) server.world().introduce(owner.name, owner.xuid, owner.language);
    });
    services.events->listen([&server, mark](const platform::Event::PlayerJoinEvent& event) {
        const std::string& xuid = event.player->getXuid();
        json& welcomed = (*mark)["welcomed"];
        if (xuid.empty() || std::ranges::find(welcomed, json(xuid)) != welcomed.end()) return true;
        welcomed.push_back(xuid);
        server.services().files->replace(markpath, mark->dump(4));
        Money money(*server.services().libraries);
        welcome(*event.player, money);
        // Without LLMoney the money is a score, in the objective that the market made.
        if (!money.there()) server.services().scoreboard->addScore(*event.player, demoobjective, demopurse);
        return true;
    });
}

}  // namespace host
