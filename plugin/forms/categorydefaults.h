// What the category menus hold before an operator edits their files: the first object explains the format and gives no
// button, the others are the buttons.
#pragma once

#include <nlohmann/json.hpp>

namespace ordomart {

[[nodiscard]] nlohmann::json defaultsellcategories();
[[nodiscard]] nlohmann::json defaultrecyclecategories();

}  // namespace ordomart
