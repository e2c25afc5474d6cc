#include "plugin/frame/ledgerwords.h"

#include <algorithm>
#include <atomic>
#include <set>

#include "platform/background.h"
#include "platform/level.h"
#include "platform/turn.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/formparts/formtools.h"
#include "plugin/handover/handover.h"
#include "plugin/ledger/audit.h"
#include "plugin/ledger/ledger.h"
#include "plugin/ledger/pricetext.h"
#include "plugin/ledger/tradetext.h"
#include "plugin/ledger/undo.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

namespace ordomart {

namespace {

constexpr std::size_t mostlines = 10;  // on a player's screen

std::atomic<bool> audits = false;

std::size_t accept(const ledger::auditresult& result) {
    std::set<std::pair<std::string, int>> shops;
    std::size_t taken = 0;
    for (const auto& one : result.differences) shops.emplace(one.shop, one.section);
    for (const auto& [xuid, section] : shops) {
        if (xuid.empty()) continue;
        globalruntimeshopmanager.bringin(xuid, section);
        const Turn turn;
        ledger::openanew(globalruntimeshopmanager.getshop(xuid, section));
        logger.info("The ledger takes the shop {} ({}) as it is", xuid, sectionkey(section));
        ++taken;
    }
    return taken;
}

void tellresult(ServerPlayer* player, const ledger::auditresult& result, std::size_t taken) {
    const auto& all = result.differences;
    for (std::size_t i = 0; i < std::min(all.size(), mostlines); ++i) player->sendText(ledger::lineof(all[i]));
    if (all.size() > mostlines) player->sendText(filled(tr(player, owntext::auditmore), all.size() - mostlines));
    if (result.whole)
        player->sendText(filled(tr(player, owntext::auditends), result.entries, result.shops, all.size()));
    if (taken > 0) player->sendText(filled(tr(player, owntext::auditaccepted), taken));
}

}  // namespace

bool hasledger(const ServerPlayer* player, CommandOutput& output) {
    if (!ledger::isopen()) output.error(tr(player, owntext::noledger));
    return ledger::isopen();
}

bool isauditing() { return audits; }

void askprices(ServerPlayer* player, const std::optional<std::string>& item, CommandOutput& output) {
    if (!hasledger(player, output)) return;
    if (item) {
        const auto name = ledger::itemnamed(*item, player->getLanguageCode());
        if (!name) return output.error(filled(tr(player, owntext::pricesunknown), *item));
        return ledger::tellprices(*player, *name, std::nullopt);
    }
    const auto& held = player->getSupplies().getItem(player->getSelectedSlot());
    if (held.isNull()) return output.error(tr(player, owntext::pricesempty));
    const auto what = ledger::variantof(itemtosnbt(held));
    ledger::tellprices(*player, what.name, what);
}

void asktrades(ServerPlayer* player, const std::string& party, CommandOutput& output) {
    if (!hasledger(player, output)) return;
    const auto xuid = platform::PlayerInfo::getXuid(party);
    const bool isknown =
        party.empty() || party == "systemshop" || !xuid.empty() || !platform::PlayerInfo::fromXuid(party).empty();
    if (!isknown) return output.error("failed to find playerinfo:" + party);
    ledger::telltrades(*player, xuid.empty() ? party : xuid);
}

void askundo(ServerPlayer* player, std::int64_t number, CommandOutput& output) {
    if (!hasledger(player, output)) return;
    if (number < 1) return output.error(filled(tr(player, owntext::undonone), number));
    const auto result = ledger::undo(*player, static_cast<std::uint64_t>(number));
    for (const auto& missing : result.missing) output.error(missing);
    if (result.number != 0) output.success(result.done);
}

void askaudit(ServerPlayer* player, bool accepts, CommandOutput& output) {
    if (!hasledger(player, output)) return;
    if (handover::istakingin()) return output.error(tr(player, owntext::handoverruns));
    if (audits.exchange(true)) return output.error(tr(player, owntext::auditruns));
    const auto run = [xuid = player->getXuid(), accepts] {
        envelope([&] {
            auto result = ledger::audit([] { return !Background::stopping(); });
            for (const auto& one : result.differences) logger.warn("Audit: {}", ledger::lineof(one));
            const auto taken = accepts && result.whole ? accept(result) : 0;
            backtoplayer(xuid, "audit", [result, taken](ServerPlayer* who) { tellresult(who, result, taken); });
        });
        audits = false;
    };
    if (envelope([&] { Background::start(run); }))
        output.success(tr(player, owntext::auditbegins));
    else
        audits = false;
}

}  // namespace ordomart
