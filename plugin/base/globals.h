// What the whole plug-in shares: its version, its three loggers, its settings. All exist from load time until process
// end; the settings are read at start and again when an operator says so, on the server thread, and what other threads
// read outside of a turn is atomic. moneymode changes once more when the economy is bound, and then never.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <unordered_set>

#include "platform/logger.h"
#include "platform/version.h"

namespace shopsystem {
using namespace platform;
}

namespace ordomart {

using namespace platform;
using namespace shopsystem;

extern const LL::Version pluginversion;

extern Logger logger;       // "Ordomart": general lines
extern Logger tradelogger;  // "Ordomartlogger": trade records, files only
extern Logger debuglogger;  // "debuglogger": timing and account notes, on the console in debug mode only

extern std::int8_t moneymode;  // 1 LLMoney, 0 scoreboard; before the economy is bound, what the file says
extern std::int8_t tax;        // percent of every transfer
extern std::int8_t debugmode;
extern std::atomic<bool> enablesystemshopinglobalshop;
extern std::int32_t extraslotcost;
extern std::int32_t maxfreeslot;
extern std::string scoremoneyname;
extern std::unordered_set<std::string> banshopitem;
extern const std::string offlineobjective;  // "helpermoney"

namespace paths {
inline const std::string base = "plugins/Ordomart/";
inline const std::string data = base + "data/";
inline const std::string log = base + "log/";
inline const std::string config = base + "config.json";
inline const std::string extras = base + "extras.json";
inline const std::string langs = base + "langs.json";
inline const std::string simpletrade = base + "simpletrade.log";
}  // namespace paths

inline const std::string systemshopid = "systemshop";
inline const std::string managesnobody = "114514";

}  // namespace ordomart
