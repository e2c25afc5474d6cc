// A record is described once, as its keys and fields, and both read and written from that description, so that the two
// directions cannot drift apart. A description is a function template that calls `visit(key, field)` for each pair.
#pragma once

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>

namespace shopsystem {

// Takes what is there. A missing key, or a value that is no object, leaves the field as it is; a wrong type throws the
// library's type error.
struct fieldreader {
    const nlohmann::json& from;
    template <class Field>
    void operator()(const char* key, Field& field) const {
        if (const auto found = from.find(key); found != from.end()) found->get_to(field);
    }
};

struct fieldwriter {
    nlohmann::json& to;
    template <class Field>
    void operator()(const char* key, const Field& field) const {
        to[key] = field;
    }
};

// Arrays of records are null until the first one comes.
[[nodiscard]] inline bool holdsplace(const nlohmann::json& records, std::int64_t index) {
    return records.is_array() && index >= 0 && index < static_cast<std::int64_t>(records.size());
}

// Whether no record has anything left under the key; so it is without records too.
[[nodiscard]] inline bool nothingleft(const nlohmann::json& records, const char* key) {
    if (!records.is_array()) return true;
    return std::all_of(records.begin(), records.end(), [key](const nlohmann::json& record) {
        std::int32_t left = -1;
        fieldreader{record}(key, left);
        return left == 0;
    });
}

}  // namespace shopsystem
