// Fields of a call's body, or of an object in it. What is missing, of another type, or a number that does not go into
// what it is for, is named to the caller.
#pragma once

#include <fmt/format.h>

#include <concepts>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "host/api/handlers.h"

namespace host {

template <class Value>
Value valueof(const nlohmann::json& given, const char* name) {
    if constexpr (std::integral<Value> && !std::same_as<Value, bool>) {
        const bool fits = given.is_number_unsigned() ? std::in_range<Value>(given.get<std::uint64_t>())
                                                     : std::in_range<Value>(given.get<std::int64_t>());
        if (given.is_number_integer() && fits) return given.get<Value>();
        if (given.is_number()) throw ApiError(400, fmt::format("\"{}\" cannot be {}", name, given.dump()));
    } else {
        try {
            return given.get<Value>();
        } catch (const nlohmann::json::exception&) {
        }
    }
    throw ApiError(400, fmt::format("\"{}\" cannot be of the type {}", name, given.type_name()));
}

inline const nlohmann::json& field(const nlohmann::json& of, const char* name) {
    if (!of.is_object()) throw ApiError(400, fmt::format("{} is no object with \"{}\"", of.type_name(), name));
    const auto found = of.find(name);
    if (found == of.end()) throw ApiError(400, fmt::format("\"{}\" is missing", name));
    return *found;
}

template <class Value>
Value field(const nlohmann::json& of, const char* name) {
    return valueof<Value>(field(of, name), name);
}

template <class Value>
Value field(const nlohmann::json& of, const char* name, Value otherwise) {
    return of.contains(name) ? valueof<Value>(of[name], name) : otherwise;
}

}  // namespace host
