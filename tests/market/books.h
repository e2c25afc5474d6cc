// All that a refused step must leave as it was: money, every stack of the players and what lies on the ground, the shop
// files with the stamps by which a second writing shows, histories and the log of payments.
#pragma once

#include <sstream>
#include <vector>

#include "platform/files.h"
#include "platform/host.h"
#include "tests/stage/stage.h"

namespace stage {

// A picture of the books of a few players who are here, with all changes saved. A shop that has only moved its revision
// is written again, so its stamp has moved.
struct books {
    json pages;

    books(Stage& stage, const std::vector<const Actor*>& players) {
        stage.seconds(4);
        const auto text = [](const platform::ItemStack& stack) {
            return stack.isNull() ? std::string() : stack.save().toSNBT();
        };
        for (const auto* player : players) pages["money"][player->xuid()] = player->money();
        stage.onserver([&] {
            auto& world = stage.server().world();
            for (const auto* player : players)
                for (int slot = 0; slot <= offhand; ++slot)
                    pages["stacks"][player->xuid()].push_back(text(world.item(player->who().name, slot)));
            for (const auto& dropped : world.droppeditems()) pages["ground"].push_back(text(dropped.stack));
            for (const auto* player : players) addshop(stage, player->xuid());
            addshop(stage, "systemshop");
            addpayments(stage);
        });
    }
    // What has changed since, as a patch; "[]" when nothing has.
    [[nodiscard]] std::string since(const books& earlier) const { return json::diff(earlier.pages, pages).dump(); }
    // For a step that costs this much, and is noted.
    books& pays(const Actor& player, std::int64_t money) {
        auto& has = pages["money"][player.xuid()];
        has = has.get<std::int64_t>() - money;
        pages.erase("payments");
        return *this;
    }

private:
    static constexpr int offhand = 40;
    void addshop(Stage& stage, const std::string& xuid) {
        addfile(stage, "data/" + xuid + ".json");
        for (const char* history : {".log", ".relog"}) addfile(stage, "log/" + xuid + history);
    }
    // The server's other lines go to the same file.
    void addpayments(const Stage& stage) {
        std::istringstream lines(stage.file("plugins/Ordomart/simpletrade.log"));
        for (std::string line; std::getline(lines, line);)
            if (line.find("[Ordomartlogger]") != std::string::npos) pages["payments"].push_back(line);
    }
    void addfile(Stage& stage, const std::string& name) {
        const auto path = "plugins/Ordomart/" + name;
        const auto stamp = stage.server().services().files->stamp(path);
        if (!stamp) return;
        pages["files"][name] = {{"stamp", {stamp->file, stamp->modified}}, {"content", stage.file(path)}};
    }
};

}  // namespace stage
