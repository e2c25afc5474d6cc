#include "plugin/frame/handoverwords.h"

#include <fmt/chrono.h>

#include "platform/clock.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/formparts/formtools.h"
#include "plugin/frame/ledgerwords.h"
#include "plugin/handover/handover.h"
#include "plugin/handover/linefile.h"

namespace ordomart {

namespace {

void begin(ServerPlayer* player, const std::string& name, CommandOutput& output, const char* begins,
           bool (*start)(const std::string& path, const std::string& xuid)) {
    const auto path = handover::pathof(name);
    if (path.empty()) return output.error(filled(tr(player, owntext::handovername), name));
    // An audit would meet shops and ledger on their way.
    if (isauditing() || !start(path, player->getXuid())) return output.error(tr(player, owntext::handoverruns));
    output.success(filled(tr(player, begins), path));
}

}  // namespace

void askexport(ServerPlayer* player, const std::optional<std::string>& name, CommandOutput& output) {
    const auto bytime = [] { return fmt::format("market-{:%Y-%m-%d-%H%M%S}", fmt::gmtime(unixseconds())); };
    begin(player, name ? *name : bytime(), output, owntext::exportbegins, &handover::startexport);
}

void askimport(ServerPlayer* player, const std::string& name, CommandOutput& output) {
    if (!hasledger(player, output)) return;
    begin(player, name, output, owntext::importbegins, &handover::startimport);
}

}  // namespace ordomart
