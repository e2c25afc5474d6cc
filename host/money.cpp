#include "host/money.h"

#include <fmt/format.h>

#include <stdexcept>

namespace host {

Money::Money(platform::Libraries& libraries) : libraries_(libraries), library_(libraries.load("LLmoney.dll")) {}

std::int64_t Money::get(const std::string& xuid) const {
    if (library_ == nullptr) return 0;
    const auto get = reinterpret_cast<long long (*)(const std::string&)>(libraries_.symbol(library_, "LLMoneyGet"));
    return get != nullptr ? get(xuid) : 0;
}

void Money::set(const std::string& xuid, std::int64_t amount) {
    if (library_ == nullptr) throw std::runtime_error("this server runs without LLMoney; set a score instead");
    const auto set =
        reinterpret_cast<bool (*)(const std::string&, long long)>(libraries_.symbol(library_, "LLMoneySet"));
    if (set == nullptr || !set(xuid, amount))
        throw std::runtime_error(fmt::format("LLMoney refused to set the account of {} to {}", xuid, amount));
}

}  // namespace host
