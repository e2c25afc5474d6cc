// What views are described and answered with. The form is told in docs/adapter.md.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>

#include "plugin/ledger/entry.h"

namespace ordomart::views {

using nlohmann::json;

// A text for people in both languages.
[[nodiscard]] json said(const char* english, const char* chinese);

// A column, or a field of a query. One without a title is not shown.
[[nodiscard]] json column(const char* name, const char* kind, json title = {}, json others = json::object());

// The query of a view, read strictly. Every member throws std::invalid_argument with a text for a person.
class question {
public:
    // Only these fields may be in it.
    question(const std::string& text, std::initializer_list<const char*> fields);
    [[nodiscard]] std::string text(const char* field) const;  // empty when it is not asked for
    [[nodiscard]] std::int64_t number(const char* field, std::int64_t lowest, std::int64_t highest,
                                      std::int64_t otherwise) const;
    // The first second of a day, given as "2026-01-31" or in Unix seconds.
    [[nodiscard]] std::int64_t day(const char* field, std::int64_t otherwise) const;
    // A player's xuid, by xuid or name.
    [[nodiscard]] std::string player(const char* field) const;
    [[nodiscard]] std::string item(const char* field) const;  // its full name

private:
    json fields_;
};

[[nodiscard]] json playervalue(const std::string& xuid, const std::string& name);
[[nodiscard]] json itemvalue(const ledger::variant& what);

// Asked between the turns of a long answer: false once the server is stopping.
[[nodiscard]] bool goeson();

void offertradeviews();
void offersumviews();
void offershopviews();
void offerboardviews();

}  // namespace ordomart::views
