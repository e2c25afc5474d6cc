// A record is described once, as its keys and fields, and both read and written from that description, so that the two
// directions cannot drift apart. A description is a function template that calls `visit(key, field)` for each pair.
#pragma once

#include <concepts>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace shopsystem {

// A value that does not fit where it stands, and where that is: "items[3].price". One of the library's exceptions, so
// that whoever catches those catches it too.
class fielderror : public nlohmann::detail::exception {
public:
    fielderror(const std::string& where, const std::string& what)
        : exception(0, (where.empty() ? what : where + ": " + what).c_str()), place(where), fault(what) {}
    std::string place, fault;
};

[[nodiscard]] inline std::string nameplace(const char* key) { return key; }
struct recordplace {
    const char* list;
    std::int64_t index;
};
[[nodiscard]] inline std::string nameplace(const recordplace& at) {
    return at.list + ("[" + std::to_string(at.index) + "]");
}

// The library's exceptions leave the body as fielderror, with the place in front of those that it went through already.
template <class Place, class Body>
decltype(auto) namingplace(const Place& place, Body&& body) {
    try {
        return std::forward<Body>(body)();
    } catch (const fielderror& e) {
        throw fielderror(e.place.empty() ? nameplace(place) : nameplace(place) + "." + e.place, e.fault);
    } catch (const nlohmann::detail::exception& e) {
        throw fielderror(nameplace(place), e.what());
    }
}

template <std::integral Number>
[[nodiscard]] bool iswhole(const nlohmann::json& value) {
    if (value.is_number_unsigned()) return std::in_range<Number>(value.get<std::uint64_t>());
    return value.is_number_integer() && std::in_range<Number>(value.get<std::int64_t>());
}

// The one way in which a record's value is read. A number is taken as it stands or not at all: rounded, cut or wrapped
// it would be another price.
template <class Field>
void takefield(const char* key, const nlohmann::json& value, Field& field) {
    if constexpr (std::integral<Field> && !std::same_as<Field, bool>) {
        if (!iswhole<Field>(value))
            throw fielderror(key, "must be a whole number of " + std::to_string(8 * sizeof(Field)) + " bits, but is " +
                                      (value.is_number() ? value.dump() : value.type_name()));
        field = value.get<Field>();
    } else {
        namingplace(key, [&] { value.get_to(field); });
    }
}

// Takes what is there. A missing key, or a value that is no object, leaves the field as it is; a wrong type throws
// fielderror.
struct fieldreader {
    const nlohmann::json& from;
    template <class Field>
    void operator()(const char* key, Field& field) const {
        if (const auto found = from.find(key); found != from.end()) takefield(key, *found, field);
    }
};

struct fieldwriter {
    nlohmann::json& to;
    template <class Field>
    void operator()(const char* key, const Field& field) const {
        to[key] = field;
    }
};

// A record of a list, which is null until the first one comes.
[[nodiscard]] inline bool holdsplace(const nlohmann::json& records, std::int64_t index) {
    return records.is_array() && index >= 0 && index < static_cast<std::int64_t>(records.size());
}

}  // namespace shopsystem
