// What the module for the network's tests does beside the market: the command `ordoblocks` opens the main menu on a
// double chest that its player alone sees. No menu of the market stands on blocks.
#include "platform/command.h"
#include "platform/event.h"
#include "platform/host.h"
#include "plugin/chestmenu/opening.h"
#include "plugin/chestmenu/templates.h"

namespace {

using namespace ordomart;

std::unique_ptr<CompoundTag> data(std::string_view bytes) {
    return std::make_unique<CompoundTag>(readtoleranttag(bytes));
}

struct OnBlocks : platform::Command {
    void execute(const platform::CommandOrigin& origin, platform::CommandOutput& output) override {
        containermenuguihelper::blockcontainerblockconfig blocks;
        blocks.placefirst = blocks.placesecond = blocks.usesecond = true;
        blocks.firstblocktag = data(templates::pairleader);
        blocks.secondblocktag = data(templates::pairfollower);
        auto* const player = origin.getPlayer();
        if (openchestmenu(player, screen::ordomenu, {}, blocks) != opresult::opened) return output.error("refused");
        ChestInvontorymenuguihelper::listenermanager().infront(player)->restorepending = true;
        output.success("opened");
    }
};

const struct AtLoad {
    AtLoad() {
        platform::Event::EventManager<platform::Event::RegCmdEvent>::addEventListener(
            [](const platform::Event::RegCmdEvent& event) {
                event.registry->registerCommand("ordoblocks", "opens the main menu on blocks",
                                                platform::CommandPermissionLevel::Any, 0, 128);
                event.registry->registerOverload("ordoblocks", [] { return std::make_unique<OnBlocks>(); }, {});
                return true;
            });
    }
} atload;

}  // namespace
