#include "plugin/views/viewparts.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <stdexcept>

#include "platform/background.h"
#include "platform/foreignjson.h"
#include "platform/level.h"
#include "plugin/ledger/pricetext.h"

namespace ordomart::views {

namespace {

[[noreturn]] void refuse(const std::string& why) { throw std::invalid_argument(why); }

std::optional<std::int64_t> numberof(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> dateof(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    const auto year = numberof(text.substr(0, 4)), month = numberof(text.substr(5, 2)), day = numberof(text.substr(8));
    if (!year || !month || !day || *month < 1 || *day < 1) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) return std::nullopt;
    return std::chrono::sys_days(date).time_since_epoch().count() * std::int64_t{86400};
}

}  // namespace

json said(const char* english, const char* chinese) { return {{"en_US", english}, {"zh_CN", chinese}}; }

json column(const char* name, const char* kind, json title, json others) {
    json made = std::move(others);
    made["name"] = name;
    made["kind"] = kind;
    if (!title.is_null()) made["title"] = std::move(title);
    return made;
}

question::question(const std::string& text, std::initializer_list<const char*> fields) {
    try {
        fields_ = text.empty() ? json::object() : platform::readforeignjson(text);
    } catch (const platform::ForeignJsonError& e) {
        refuse(fmt::format("the query {}", e.what()));
    }
    if (!fields_.is_object()) refuse("the query must be a JSON object");
    for (const auto& [key, value] : fields_.items()) {
        if (std::ranges::find(fields, key) == fields.end()) refuse(fmt::format("the query has no field \"{}\"", key));
        if (!value.is_string() && !value.is_number_integer())
            refuse(fmt::format("\"{}\" must be a text or a whole number", key));
    }
}

std::string question::text(const char* field) const {
    const auto found = fields_.find(field);
    if (found == fields_.end()) return {};
    return found->is_string() ? found->get<std::string>() : found->dump();
}

std::int64_t question::number(const char* field, std::int64_t lowest, std::int64_t highest,
                              std::int64_t otherwise) const {
    const auto given = text(field);
    if (given.empty()) return otherwise;
    const auto number = numberof(given);
    if (!number || *number < lowest || *number > highest)
        refuse(fmt::format("\"{}\" must be a number from {} to {}, and is \"{}\"", field, lowest, highest, given));
    return *number;
}

std::int64_t question::day(const char* field, std::int64_t otherwise) const {
    const auto given = text(field);
    if (given.empty()) return otherwise;
    constexpr std::int64_t farthest = std::int64_t{1} << 40;
    auto time = dateof(given);
    if (!time) time = numberof(given);
    if (!time || *time < 0 || *time > farthest)
        refuse(fmt::format("\"{}\" must be a day as 2026-01-31, and is \"{}\"", field, given));
    return *time;
}

std::string question::player(const char* field) const {
    const auto given = text(field);
    if (given.empty() || given == "systemshop" || !platform::PlayerInfo::fromXuid(given).empty()) return given;
    auto xuid = platform::PlayerInfo::getXuid(given);
    if (xuid.empty()) refuse(fmt::format("nobody here knows a player \"{}\"", given));
    return xuid;
}

std::string question::item(const char* field) const {
    auto given = text(field);
    if (given.empty()) return given;
    for (const char* const language : {"en_US", "zh_CN"})
        if (auto name = ledger::itemnamed(given, language)) return *std::move(name);
    refuse(fmt::format("there is no item \"{}\"", given));
}

bool goeson() { return !platform::Background::stopping(); }

json playervalue(const std::string& xuid, const std::string& name) {
    return {{"id", xuid}, {"name", name.empty() ? xuid : name}};
}

json itemvalue(const ledger::variant& what) {
    return {{"id", what.name}, {"aux", what.aux}, {"enchanted", what.enchanted}};
}

}  // namespace ordomart::views
