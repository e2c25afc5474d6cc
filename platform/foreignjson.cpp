#include "platform/foreignjson.h"

#include <nlohmann/json.hpp>
#include <string>

namespace platform {

using nlohmann::json;

json readforeignjson(std::string_view text) {
    // The levels around the value that has just begun.
    const auto shallow = [](int depth, json::parse_event_t, json&) {
        if (depth >= maxjsondepth)
            throw ForeignJsonError("is nested more than " + std::to_string(maxjsondepth) + " levels deep");
        return true;
    };
    try {
        return json::parse(text, shallow);
    } catch (const json::exception& e) {
        throw ForeignJsonError(std::string("is no JSON: ") + e.what());
    }
}

}  // namespace platform
