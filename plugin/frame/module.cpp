// What makes a loadable module of the market: the work while it is loaded, and the one function that it exports.
#include <ios>

#include "platform/host.h"
#include "plugin/base/globals.h"
#include "plugin/base/language.h"
#include "plugin/chestmenu/hooks.h"
#include "plugin/frame/events.h"
#include "plugin/frame/exported.h"

namespace {

struct atload {
    atload() {
        ordomart::hookchooselanguage();
        ordomart::installpackethooks();
        platform::RegisterPlugin("Ordomart", "Implement the Ordomart of BDS version", ordomart::pluginversion,
                                 {{"Git", ""}, {"License", ""}, {"Website", ""}});
    }
} const loaded;

}  // namespace

extern "C" ORDOMART_EXPORTED void onPostInit() {
    std::ios::sync_with_stdio(false);
    ordomart::PluginInit();
}
