#include "plugin/frame/handoverwords.h"

#include <fmt/chrono.h>

#include "platform/clock.h"
#include "platform/host.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/formparts/formtools.h"
#include "plugin/frame/ledgerwords.h"
#include "plugin/handover/handover.h"
#include "plugin/handover/linefile.h"

namespace ordomart {

namespace {

// What is said when it begins, and when the file is there or is not, against what is needed.
struct direction {
    const char *begins, *refusal;
    bool needsfile;
    bool (*start)(const std::string& path, const std::string& xuid);
};
constexpr direction outward{owntext::exportbegins, owntext::exportthere, false, &handover::startexport},
    inward{owntext::importbegins, owntext::importmissing, true, &handover::startimport};

void begin(ServerPlayer* player, const std::string& name, CommandOutput& output, const direction& way) {
    const auto path = handover::pathof(name);
    if (path.empty()) return output.error(filled(tr(player, owntext::handovername), name));
    if (platform::host().files->exists(path) != way.needsfile)
        return output.error(filled(tr(player, way.refusal), path));
    // An audit would meet shops and ledger on their way.
    if (isauditing() || !way.start(path, player->getXuid())) return output.error(tr(player, owntext::handoverruns));
    output.success(filled(tr(player, way.begins), path));
}

}  // namespace

void askexport(ServerPlayer* player, const std::optional<std::string>& name, CommandOutput& output) {
    const auto bytime = [] { return fmt::format("market-{:%Y-%m-%d-%H%M%S}", fmt::gmtime(unixseconds())); };
    begin(player, name ? *name : bytime(), output, outward);
}

void askimport(ServerPlayer* player, const std::string& name, CommandOutput& output) {
    if (!hasledger(player, output)) return;
    begin(player, name, output, inward);
}

}  // namespace ordomart
