#include "host/llmoney/unwritten.h"

#include <algorithm>

namespace llmoney {

namespace {

using platform::llmoney::Value;

Value valueof(const std::string& text) { return {text.data(), text.size(), 0}; }
Value valueof(Money number) { return {nullptr, 0, number}; }

}  // namespace

std::optional<Money> Unwritten::balance(const std::string& xuid) const {
    const auto found = balances_.find(xuid);
    return found == balances_.end() ? std::nullopt : std::optional(found->second.value);
}

void Unwritten::addhistory(const std::string& xuid, Money since, std::vector<Record>& found) const {
    for (const Record& movement : history_)
        if ((movement.from == xuid || movement.to == xuid) && movement.time >= since) found.push_back(movement);
}

void Unwritten::put(const std::string& xuid, Money balance) { balances_[xuid] = {balance, ++lastchange_}; }

void Unwritten::forget(Money before) {
    forgotten_ = std::max(forgotten_, before);
    forgetting_ = ++lastchange_;
    const auto isold = [&](const Record& each) { return each.time < before; };
    // What is handed over comes into the file, and goes from there at the next time.
    const auto handed = history_.begin() + static_cast<std::ptrdiff_t>(handed_.history);
    handed_.history -= static_cast<std::size_t>(std::count_if(history_.begin(), handed, isold));
    std::erase_if(history_, isold);
}

bool Unwritten::isempty() const { return balances_.empty() && history_.empty() && forgotten_ == never; }

bool Unwritten::handover(platform::llmoney::RunStatement* run, void* context) {
    handed_ = {lastchange_, history_.size()};
    const auto tell = [&](const char* sql, const auto&... arguments) {
        const Value values[] = {valueof(arguments)...};
        return run(context, sql, values, sizeof...(arguments));
    };
    if (forgotten_ != never && !tell("DELETE FROM llmoney_history WHERE time < ?", forgotten_)) return false;
    for (const auto& [xuid, balance] : balances_)
        if (!tell("INSERT OR REPLACE INTO llmoney_account VALUES (?, ?)", xuid, balance.value)) return false;
    return std::ranges::all_of(history_, [&](const Record& each) {
        return tell("INSERT INTO llmoney_history (payer, payee, value, time, note) VALUES (?, ?, ?, ?, ?)", each.from,
                    each.to, Money{each.value}, Money{each.time}, each.note);
    });
}

void Unwritten::written() {
    std::erase_if(balances_, [&](const auto& each) { return each.second.change <= handed_.change; });
    history_.erase(history_.begin(), history_.begin() + static_cast<std::ptrdiff_t>(handed_.history));
    if (forgetting_ <= handed_.change) forgotten_ = never;
    handed_ = {};
}

}  // namespace llmoney
