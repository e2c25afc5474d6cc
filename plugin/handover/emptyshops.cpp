#include "plugin/handover/emptyshops.h"

#include <fmt/format.h>

#include "platform/background.h"
#include "platform/files.h"
#include "platform/host.h"
#include "platform/level.h"
#include "platform/schedule.h"
#include "platform/turn.h"
#include "plugin/base/guards.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shoprecords.h"

namespace handover {

using namespace shopsystem;

namespace {

constexpr std::size_t mostshopsnamed = 10, savedatatime = 200;
constexpr std::uint64_t aftersome = 20;  // ticks

bool hasrecords(const json& list) { return list.is_array() && !list.empty(); }

// A name, a text or an icon alone is nothing that would be lost.
bool holdssomething(baseshop& shop) {
    if (hasrecords(shop.goods().list) || shop.isbanned()) return true;
    if (const auto* const sells = dynamic_cast<const sellshop*>(&shop))
        return hasrecords(sells->shopdiscount) || hasrecords(sells->biditems) || sells->sellcount != 0 ||
               sells->salesvolume != 0 || sells->isopshop;
    const auto& recycles = dynamic_cast<const recycleshop&>(shop);
    return recycles.recycleamount != 0 || recycles.recyclecost != 0 || recycles.isopshop;
}

bool isempty(const std::string& xuid, int kind) {
    {
        const Turn turn;
        if (ledger::openingof(xuid, kind)) return false;
        if (auto* const shop = globalruntimeshopmanager.cached(xuid, kind)) return !holdssomething(*shop);
    }
    // No file is made by the look.
    if (!hasleftrecord(xuid, kind) && !host().files->exists(shopfile(xuid))) return true;
    bool holds = false;
    globalruntimeshopmanager.glance(xuid, kind, [&](baseshop& shop) { holds = holdssomething(shop); });
    return !holds;
}

}  // namespace

std::string notempty(const std::vector<std::string>& owners, const std::function<bool()>& goeson) {
    std::string named;
    std::size_t found = 0;
    for (const auto& owner : owners) {
        if (!goeson()) break;
        if (isempty(owner, sell) && isempty(owner, recycle)) continue;
        const auto name = PlayerInfo::fromXuid(owner);
        const auto told = name.empty() ? owner : fmt::format("{} ({})", name, owner);
        ordomart::logger.warn("The shop of {} is not empty here", told);
        if (found++ < mostshopsnamed) named += (named.empty() ? "" : ", ") + told;
    }
    if (found == 0) return {};
    if (found > mostshopsnamed) named += fmt::format(" and {} more", found - mostshopsnamed);
    return "shops that are here and not empty: " + named;
}

void savetakenin() {
    for (const auto& [xuid, kind] : leftrecords(savedatatime)) {
        if (Background::stopping()) return;
        ordomart::envelope([&, &owner = xuid, of = kind] {
            globalruntimeshopmanager.bringin(owner, of);
            const Turn turn;
            // It is saved as one that nobody has asked for in a long time.
            if (auto* const shop = globalruntimeshopmanager.cached(owner, of)) shop->idleticks = maxidleticks;
        });
    }
    if (leftrecords(1).empty()) return;
    Schedule::delay([] { Background::start([] { ordomart::envelope(&savetakenin); }); }, aftersome);
}

}  // namespace handover
