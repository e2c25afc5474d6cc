// The words of a typed line, and what they mean. What does not fit throws std::runtime_error that says so.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/packets/itemstackrequest.h"

namespace host {

[[nodiscard]] std::vector<std::string> split(const std::string& text);
// The text behind the first n words and the blanks after them.
[[nodiscard]] std::string behind(const std::string& text, std::size_t n);
[[nodiscard]] std::string trimmed(const std::string& text);  // without the blanks at its end
[[nodiscard]] int number(const std::string& word);
[[nodiscard]] std::vector<std::string> containerwords();
[[nodiscard]] platform::ContainerName containername(const std::string& word);

}  // namespace host
