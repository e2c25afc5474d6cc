// What the module for stories does beside the market: while it is loaded it hands the test program a look at a shop as
// it stands in the cache, written or not, and the market's own audit. Neither changes anything. The market itself is
// the same as everywhere.
#include "plugin/ledger/audit.h"
#include "plugin/shopsystem/runtimeshopmanager.h"

// The test program's.
extern "C" void takeshowshop(void (*)(const std::string& xuid, bool forget, nlohmann::json& seen),
                             std::string (*audit)());

namespace {

// With `forget` the shop leaves the cache at the next tick of the market, once it is saved.
void showshop(const std::string& xuid, bool forget, nlohmann::json& seen) {
    auto& sells = shopsystem::globalruntimeshopmanager.getsellshop(xuid);
    auto& recycles = shopsystem::globalruntimeshopmanager.getrecycleshop(xuid);
    sells.savetojson(seen["sell"]);
    recycles.savetojson(seen["recycles"]);
    seen["revisions"] = {sells.revision, recycles.revision};
    if (forget) sells.idleticks = recycles.idleticks = shopsystem::maxidleticks;
}

// A line for each difference.
std::string audit() {
    std::string lines;
    for (const auto& one : ledger::audit([] { return true; }).differences) lines += ledger::lineof(one) + "\n";
    return lines;
}

const struct handsover {
    handsover() { takeshowshop(&showshop, &audit); }
} atload;

}  // namespace
