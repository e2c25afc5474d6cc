// The LLMoney library, bound by name. An entry point that the library turns out to lack, or a call while nothing is
// bound, gives no balance or a refusal, and an error line that names it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/llmoney.h"
#include "plugin/economy/moneyrefusal.h"

namespace ordomart::moneylibrary {

[[nodiscard]] bool bind();  // false when the library cannot be loaded
// Nothing, with an error line, for a balance that cannot be read.
[[nodiscard]] std::optional<std::int64_t> get(const std::string& xuid);
// What an account has paid and received since a moment, oldest first; nothing where the library cannot tell.
[[nodiscard]] std::optional<std::vector<platform::llmoney::Record>> history(const std::string& xuid,
                                                                            std::int64_t since);
[[nodiscard]] moneyrefusal trans(const std::string& from, const std::string& to, std::int64_t value,
                                 const std::string& note);
[[nodiscard]] moneyrefusal reduce(const std::string& xuid, std::int64_t value);
[[nodiscard]] moneyrefusal add(const std::string& xuid, std::int64_t value);

}  // namespace ordomart::moneylibrary
