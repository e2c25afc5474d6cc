// The order in which the plug-in comes to life. moneymode has its final value only once the economy is bound.
#include "platform/event.h"
#include "platform/schedule.h"
#include "plugin/base/config.h"
#include "plugin/base/guards.h"
#include "plugin/economy/economymanager.h"
#include "plugin/errands/updatecheck.h"
#include "plugin/frame/command.h"
#include "plugin/frame/events.h"
#include "plugin/handover/handover.h"
#include "plugin/ledger/ledger.h"
#include "plugin/shopsystem/runtimeshopmanager.h"
#include "plugin/shopsystem/shoprecords.h"
#include "plugin/views/views.h"

namespace ordomart {

namespace {
constexpr std::uint64_t tickperiod = 20;
}

void RegisterCommands() {
    Event::EventManager<Event::RegCmdEvent>::addEventListener([](const Event::RegCmdEvent& event) {
        registerordomart(*event.registry);
        return true;
    });
}

void PluginInit() {
    logger.info("欢迎使用 Ordomart 商店系统！");
    logger.info("Welcome to the Ordomart shop system!");
    logger.info("Plugin Version: {}", pluginversion.toString());
    startupdatecheck();
    RegisterCommands();
    loadconfig(paths::config);
    loadextras(paths::extras);
    applydebugmode();
    Logger::setDefaultFile(paths::simpletrade, true);
    bindeconomy();
    envelope(&offerviews);  // before anybody counts
    bringinrecords();
    envelope(&ledger::start);
    envelope(&handover::resume);
    Schedule::repeat([] { globalruntimeshopmanager.tick(); }, tickperiod);
    Schedule::repeat(&ledger::thin, tickperiod);
    Event::EventManager<Event::PlayerLeftEvent>::addEventListener(&onplayerleft);
    Event::EventManager<Event::PlayerJoinEvent>::addEventListener(&onplayerjoin);
    Event::EventManager<Event::ServerStoppingEvent>::addEventListener(&onserverstopping);
    Event::EventManager<Event::ServerStoppedEvent>::addEventListener(&onserverstopped);
}

}  // namespace ordomart
