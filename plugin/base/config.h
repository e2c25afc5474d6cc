// The settings file. Read once at start, written straight back, so that a file that lacks keys comes out complete.
// A file that cannot be read or is malformed, and a key of the wrong type, throw, with the file untouched.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>

namespace ordomart {

// Settings that cannot be used: names file and key, with the JSON library's own text behind them.
class configerror : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

void loadconfig(const std::string& path);
void loadextras(const std::string& path);  // the other file, by the same rules
// Copies the keys that are present into the settings.
void readconfig(const nlohmann::json& json);
void writeconfig(const std::string& path);

}  // namespace ordomart
