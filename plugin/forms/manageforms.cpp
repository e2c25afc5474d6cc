// The operators' tools: bans, the list of shops to manage, the switch to the system shop. Shops are brought in beside
// the server thread, those of the list by a builder, that of a ban by the worker; what changes or shows something runs
// on the server thread.
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "platform/clock.h"
#include "platform/level.h"
#include "platform/schedule.h"
#include "platform/turn.h"
#include "plugin/base/effects.h"
#include "plugin/base/language.h"
#include "plugin/base/screens.h"
#include "plugin/formparts/formtools.h"
#include "plugin/forms/openers.h"
#include "plugin/shopsystem/brokenshops.h"
#include "plugin/shopsystem/listbuilders.h"
#include "plugin/shopsystem/playershopstate.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/taskpool.h"

namespace ordomart {

namespace {

struct banorder {
    int type;
    std::string xuid;
    bool banned;
    std::string reason;
    std::int64_t seconds;  // -1: no end
    [[nodiscard]] bool istypeknown() const { return type == sell || type == recycle; }
};

void carryout(const banorder& order) {
    if (!order.istypeknown()) {
        logger.error("unkownshoptype in setbanstate");
        return;
    }
    auto& shop = globalruntimeshopmanager.getshop(order.xuid, order.type);
    const auto timeend = order.seconds == -1 ? -1 : order.seconds + unixseconds();
    shop.setbanstate(order.banned, timeend, order.reason);
    // Twice, so that a ban moves the revision by 2.
    shop.markshopchanged();
    shop.markshopchanged();
}

struct managelist {
    std::vector<std::string> entries, xuids;
    int standard = 0;  // the caller's own shop, so that confirming the form as it stands ends the management
};

// Nothing for a shop that is broken: it cannot be managed. The own entry stands all the same, since it is the way out.
std::optional<std::string> managelistentry(const std::string& xuid, bool isown) {
    const auto owner = PlayerInfo::fromXuid(xuid);
    try {
        globalruntimeshopmanager.bringin(xuid, sell);
    } catch (const std::exception& e) {
        const Turn turn;
        reportbroken(xuid, sell, e.what());
        return isown ? std::optional("§a" + owner) : std::nullopt;
    }
    const Turn turn;
    const auto& shop = globalruntimeshopmanager.getsellshop(xuid);
    if (!owner.empty()) return "§a" + shop.ownername;
    return (shop.shopname.empty() ? shop.xuid : shop.shopname) + "§c(Fake)";
}

void managechosen(ServerPlayer* player, const std::string& xuid) {
    auto& state = getplayershopstate(player->getXuid());
    if (xuid == player->getXuid()) {
        state.manage(managesnobody);
        player->sendText("resetsuccessfully");
    } else if (xuid.empty()) {
        player->sendText("cant find player");
    } else if (!isoperator(*player)) {
        systemtoast(player, tr(player, "permission.deny"));
    } else {
        state.manage(xuid);
        openscreen(screen::myshop, player);
    }
}

void sendmanageform(ServerPlayer* player, const managelist& list) {
    Form::CustomForm form(tr(player, "managemenu"));
    form.addDropdown("playernamelistid", "Select one to manage(warn: the shop maynot be create)", list.entries,
                     list.standard);
    sendrawform(player, form, {"openmanagesetstateform", {}, &manageenvelope},
                [xuids = list.xuids](ServerPlayer* who, const nlohmann::json& answer) {
                    managechosen(who, xuids.at(answer.at(0).get<std::size_t>()));
                });
}

void gathermanagelist(const std::string& playerxuid, listwork& work) {
    managelist list;
    for (const auto& xuid : shopfilekeys()) {
        if (!work.goeson()) return;
        if (xuid.empty()) {
            logger.error("find null json in datajson! at openmanagesetstateform");
            return;
        }
        const bool isown = xuid == playerxuid;
        const auto entry = managelistentry(xuid, isown);
        if (!entry) continue;
        if (isown) list.standard = static_cast<int>(list.entries.size());
        list.entries.push_back(*entry);
        list.xuids.push_back(xuid);
    }
    backtoplayer(
        playerxuid, "openmanagesetstateform", [list](ServerPlayer* player) { sendmanageform(player, list); },
        manageenvelope);
}

}  // namespace

opresult setbanstate(ServerPlayer*, int type, const std::string& xuid, bool banned, const std::string& reason,
                     std::int64_t seconds) {
    taskpool.enqueue([order = banorder{type, xuid, banned, reason, seconds}] {
        envelope(
            [&] {
                if (order.istypeknown()) globalruntimeshopmanager.bringin(order.xuid, order.type);
                Schedule::delay([order] { envelope([&] { carryout(order); }, nullptr, banenvelope); }, 0);
            },
            nullptr, banenvelope);
    });
    return opresult::opened;
}

opresult openmanagesetstateform(ServerPlayer* player) {
    static constexpr char picture = 0;
    listbuilders.order({.session = player->sessionid(),
                        .xuid = player->getXuid(),
                        .picture = &picture,
                        .isslow = true,
                        .body = [xuid = player->getXuid()](listwork& work) {
                            envelope([&] { gathermanagelist(xuid, work); }, nullptr, manageenvelope);
                        }});
    return opresult::opened;
}

opresult openswitchsystemshop(ServerPlayer* player) {
    if (!isoperator(*player)) {
        systemtoast(player, tr(player, "permission.deny"));
        return opresult::refused;
    }
    const bool isswitchedon = effectiveshop(player) == systemshopid;
    getplayershopstate(player->getXuid()).manage(isswitchedon ? managesnobody : systemshopid);
    systemtoast(player, tr(player, isswitchedon ? "myshopformUI.switchmanagesystemshop.switchoff"
                                                : "myshopformUI.switchmanagesystemshop.switchon"));
    openmenubymode(player);
    return opresult::opened;
}

}  // namespace ordomart
