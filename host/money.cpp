#include "host/money.h"

#include <fmt/format.h>

#include <stdexcept>

#include "platform/llmoney.h"

namespace host {

Money::Money(platform::Libraries& libraries) : libraries_(libraries), library_(libraries.load("LLmoney.dll")) {}

std::int64_t Money::get(const std::string& xuid) const {
    if (library_ == nullptr) return 0;
    const auto get = reinterpret_cast<platform::llmoney::Get*>(libraries_.symbol(library_, "LLMoneyGet"));
    return get != nullptr ? get(xuid) : 0;
}

void Money::set(const std::string& xuid, std::int64_t amount) {
    if (library_ == nullptr) throw std::runtime_error("this server runs without LLMoney; set a score instead");
    const auto set = reinterpret_cast<platform::llmoney::Set*>(libraries_.symbol(library_, "LLMoneySet"));
    if (set != nullptr && set(xuid, amount)) return;
    const auto lasterror =
        reinterpret_cast<platform::llmoney::LastError*>(libraries_.symbol(library_, "LLMoneyLastError"));
    throw std::runtime_error(fmt::format("LLMoney refused to set the account of {} to {}{}{}", xuid, amount,
                                         lasterror != nullptr ? ": " : "", lasterror != nullptr ? lasterror() : ""));
}

}  // namespace host
