// What the demo market sells and wants, as the documents of its shop files.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace host {

struct DemoOwner {
    const char* name;
    const char* xuid;
    const char* shopname;
    const char* describe;
    const char* icon;
    const char* language;
};

[[nodiscard]] const std::vector<DemoOwner>& demoowners();
[[nodiscard]] nlohmann::json demoshop(const DemoOwner& owner);

}  // namespace host
