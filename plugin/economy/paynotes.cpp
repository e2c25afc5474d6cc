// The trade logger serves the shops' files as well, and is pointed at the common file before each line.
#include "plugin/economy/paynotes.h"

#include "plugin/base/guards.h"
#include "plugin/economy/economymanager.h"

namespace ordomart {

void writepayline(const std::string& from, std::int64_t amount, const std::string& to, const std::string& note) {
    whenwritten([line = fmt::format("{0} pay {1}{2} to {3},note:{4}", from, amount, getmoneyname(), to, note)] {
        tradelogger.setFile(paths::simpletrade, true);
        tradelogger.put(LogLevel::info, line);
    });
}

void moneytoast(ServerPlayer* player, const std::string& shopname, char sign, std::int64_t amount) {
    const char* colour = sign == '+' ? "§a" : "§b";
    player->sendToastPacket(shopname, fmt::format("{} {}{} §r{}", sign, colour, amount, getmoneyname()));
}

}  // namespace ordomart
