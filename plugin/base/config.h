// The settings files. Read at start and written straight back, so that a file that lacks keys comes out complete.
// A file that cannot be read or is malformed, and a key of the wrong type, throw, with the file untouched. Read again
// while the server runs, they are left as they are, and taken over whole or not at all.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

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

// Both files as they are now, checked and not in force. Any thread.
struct settingsdraft {
    std::map<std::string, nlohmann::json> values;  // by key, all of them when there is no fault
    std::vector<std::string> faults;               // file, key and why
};
[[nodiscard]] settingsdraft draftsettings();

struct settingchange {
    std::string key, before, after;  // as JSON
    bool waits = false;              // for the next start, and has changed nothing now
};
// Puts a draft without faults in force, on the server thread, and says what is new in it.
std::vector<settingchange> takeover(const settingsdraft& draft);
// Whether the console shows debug lines goes by the setting.
void applydebugmode();

}  // namespace ordomart
