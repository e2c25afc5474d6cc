// What has changed in accounts and history since the host wrote them last: newer than the file, and answered from here.
// What is handed over stays until the host says that it is committed; what comes in between stays longer. Not locked.
#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/llmoney.h"

namespace llmoney {

using platform::llmoney::Record;
using Money = long long;

class Unwritten {
public:
    [[nodiscard]] std::optional<Money> balance(const std::string& xuid) const;
    // The movements of an account since a moment, behind those of the file.
    void addhistory(const std::string& xuid, Money since, std::vector<Record>& found) const;
    // Rows of the file that are older are not there any more.
    [[nodiscard]] Money forgottenbefore() const { return forgotten_; }

    void put(const std::string& xuid, Money balance);
    void remember(const Record& movement) { history_.push_back(movement); }
    void forget(Money before);

    [[nodiscard]] bool isempty() const;
    // False when the host broke off.
    bool handover(platform::llmoney::RunStatement* run, void* context);
    void written();

private:
    static constexpr Money never = std::numeric_limits<Money>::min();
    struct Balance {
        Money value;
        std::uint64_t change;
    };
    std::unordered_map<std::string, Balance> balances_;
    std::deque<Record> history_;
    Money forgotten_ = never;
    // Balances and the forgetting are numbered by their last change.
    std::uint64_t lastchange_ = 0, forgetting_ = 0;
    // How far the last handing over went.
    struct {
        std::uint64_t change = 0;
        std::size_t history = 0;
    } handed_;
};

}  // namespace llmoney
