// A small market for a first start in an empty directory: three owners with goods of many kinds and a few commissions,
// and a purse for every player who comes for the first time, so that a newcomer has something to buy and to sell.
#pragma once

#include <string>

namespace host {

class Server;

// What a newcomer is given, and the score that is money without LLMoney.
inline constexpr int demopurse = 5000;
inline constexpr const char* demoobjective = "money";

// Writes the shop files and the mark that this directory is a demo. True when the directory had no market yet.
bool makedemo(const std::string& directory);
// In a demo directory: makes the owners known, and welcomes newcomers with money and goods. Elsewhere nothing.
void playdemo(Server& server);
// Whether the directory was made as a demo.
[[nodiscard]] bool isdemo(Server& server);

}  // namespace host
