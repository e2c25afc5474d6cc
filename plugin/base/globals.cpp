// The version, which the build names, and the values of a server that has no settings file yet.
#include "plugin/base/globals.h"

namespace ordomart {

// Read while the module loads.
constinit const LL::Version pluginversion{ORDOMART_VERSION_NUMBERS, LL::Version::Release};

Logger logger("Ordomart");
Logger tradelogger("Ordomartlogger");
Logger debuglogger("debuglogger");

std::int8_t moneymode = 1;
std::int8_t tax = 0;
std::int8_t debugmode = 0;
std::atomic<bool> enablesystemshopinglobalshop = false;
std::int32_t extraslotcost = 500;
std::int32_t maxfreeslot = 36;
std::string scoremoneyname = "money";
std::unordered_set<std::string> banshopitem = {"minecraft:clock"};
const std::string offlineobjective = "helpermoney";

}  // namespace ordomart
