// Reading and writing go by one table of keys, so that a key that is read is also written back. What the file says is
// kept, also where the server later runs with another value.
#include "plugin/base/config.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <sstream>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/base/directories.h"
#include "plugin/base/extras.h"
#include "plugin/base/globals.h"

namespace ordomart {

std::int64_t ledgerdays = 400;
bool awaymessage = true;

namespace {

using nlohmann::json;

// A setting's value, also of one that other threads read.
template <class Setting>
const Setting& valueof(const Setting& setting) {
    return setting;
}
bool valueof(const std::atomic<bool>& setting) { return setting; }
template <auto& Setting>
using typeof_setting = std::remove_cvref_t<decltype(valueof(Setting))>;

// Any number and a boolean, cut to the width of the setting. Anything else is the library's type error.
template <class Setting>
Setting readnumber(const json& value) {
    std::int64_t whole = 0;
    if (value.is_boolean())
        whole = value.get<bool>() ? 1 : 0;
    else if (!value.is_number_float())
        whole = value.get<std::int64_t>();
    else if (const double number = value.get<double>(); std::abs(number) < 9.0e18)
        whole = static_cast<std::int64_t>(number);
    return static_cast<Setting>(whole);
}

template <class Setting>
Setting readasis(const json& value) {
    return value.get<Setting>();
}

// Both directions of one key, and the value that a text of it gives, with nothing set.
struct settingrow {
    const char* key;
    void (*read)(const json&);
    json (*write)();
    json (*checked)(const json&);
    bool (*issame)(const json&);  // as what is in force
    bool waits = false;           // for the next start: open trades and deposits go by it
    // Empty, or why a value that has the right type is none.
    std::string (*fault)(const json&) = [](const json&) { return std::string(); };
};

template <auto& Setting, auto Read>
constexpr settingrow row(const char* key) {
    return {key, [](const json& value) { Setting = Read(value); }, [] { return json(valueof(Setting)); },
            [](const json& value) { return json(Read(value)); },
            [](const json& value) { return Read(value) == valueof(Setting); }};
}

template <auto& Setting>
constexpr settingrow number(const char* key) {
    return row<Setting, &readnumber<typeof_setting<Setting>>>(key);
}

template <auto& Setting>
constexpr settingrow asis(const char* key) {
    return row<Setting, &readasis<typeof_setting<Setting>>>(key);
}

constexpr settingrow fixed(settingrow of) {
    of.waits = true;
    return of;
}

constexpr std::int64_t leastdays = 1, mostdays = 36500;
std::string daysfault(const json& value) {
    if (const auto days = value.get<std::int64_t>(); days < leastdays || days > mostdays)
        return fmt::format("{} is not between {} and {}", days, leastdays, mostdays);
    return {};
}
constexpr settingrow within(settingrow of, std::string (*fault)(const json&)) {
    of.fault = fault;
    return of;
}

// In the order in which they are read: what stands before a broken key has taken effect.
constexpr settingrow settings[] = {
    fixed(number<moneymode>("moneymode")),  number<tax>("tax"),
    number<extraslotcost>("extraslotcost"), number<maxfreeslot>("maxfreeslot"),
    asis<banshopitem>("banshopitem"),       fixed(asis<scoremoneyname>("scoremoneyname")),
    number<debugmode>("debugmode"),         asis<enablesystemshopinglobalshop>("enablesystemshopinglobalshop")};

constexpr settingrow extras[] = {within(number<ledgerdays>("ledgerdays"), &daysfault),
                                 asis<awaymessage>("awaymessage")};

// By key: what a file that lacks it gives, and what the file has said at the start of what waits for the next one.
std::map<std::string, json> defaults, atstart;

void readrows(const json& document, std::span<const settingrow> rows) {
    if (!document.is_object())
        throw configerror(fmt::format("the settings must be an object, but they are {}", document.type_name()));
    for (const settingrow& row : rows) {
        const auto found = document.find(row.key);
        if (found == document.end()) continue;
        try {
            if (const auto fault = row.fault(row.checked(*found)); !fault.empty()) throw configerror(fault);
            row.read(*found);
        } catch (const std::exception& e) {
            throw configerror(fmt::format("key \"{}\": {}", row.key, e.what()));
        }
    }
}

json parsed(const std::string& text) {
    // As a stream, so that text behind the object does not matter.
    std::istringstream in(text);
    json document;
    in >> document;
    return document;
}

void writerows(const std::string& path, std::span<const settingrow> rows) {
    json document;
    for (const settingrow& row : rows) document[row.key] = row.write();
    if (!host().files->replace(path, document.dump(4))) logger.warn("Can't open file {}", path);
}

// `read` takes the document over; a file that is missing is made.
void loadrows(const std::string& path, std::span<const settingrow> rows, void (*read)(const json&)) {
    Files& files = *host().files;
    for (const settingrow& row : rows) defaults.try_emplace(row.key, row.write());
    const auto text = files.read(path);
    if (!text) {
        // Somebody's settings that cannot be read just now; the defaults would take their place for good.
        if (files.exists(path)) throw configerror(path + ": the file is there, but cannot be read");
        if (rows.data() == settings) logger.warn("Can't open file {},try load default setting...", path);
        return writerows(path, rows);
    }
    try {
        read(parsed(*text));
    } catch (const std::exception& e) {
        throw configerror(fmt::format("{}: {}", path, e.what()));
    }
    writerows(path, rows);
}

void readextras(const json& document) { readrows(document, extras); }

// A rough test: two bytes in a row beyond ASCII, up to the first zero byte.
bool looksmultibyte(const std::string& name) {
    const auto high = [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; };
    const std::size_t end = std::min(name.size(), name.find('\0'));
    for (std::size_t i = 1; i < end; ++i)
        if (high(name[i - 1]) && high(name[i])) return true;
    return false;
}

}  // namespace

void loadconfig(const std::string& path) {
    Files& files = *host().files;
    if (!files.exists(paths::base)) {
        ensuredirectory(paths::base, LogLevel::warn);
        files.makeDirectory(paths::data);
        files.makeDirectory(paths::log);
    }
    loadrows(path, settings, &readconfig);
    for (const settingrow& row : settings)
        if (row.waits) atstart[row.key] = row.write();
}

void loadextras(const std::string& path) { loadrows(path, extras, &readextras); }

void readconfig(const json& document) {
    readrows(document, settings);
    if (looksmultibyte(scoremoneyname)) {
        logger.warn("you should never set scoremoneyname to a Chinese name!");
        scoremoneyname = "money";
    }
}

void writeconfig(const std::string& path) { writerows(path, settings); }

settingsdraft draftsettings() {
    settingsdraft draft;
    const auto fault = [&](const std::string& path, const std::string& why) {
        draft.faults.push_back(fmt::format("{}: {}", path, why));
    };
    const auto readfile = [&](const std::string& path, std::span<const settingrow> rows) {
        const auto text = host().files->read(path);
        if (!text) return fault(path, host().files->exists(path) ? "cannot be read" : "is missing");
        json document;
        try {
            document = parsed(*text);
        } catch (const json::exception& e) {
            return fault(path, e.what());
        }
        if (!document.is_object())
            return fault(path, fmt::format("the settings must be an object, but they are {}", document.type_name()));
        for (const settingrow& row : rows) {
            const auto found = document.find(row.key);
            try {
                auto value = found == document.end() ? defaults.at(row.key) : row.checked(*found);
                if (const auto why = row.fault(value); !why.empty()) throw configerror(why);
                draft.values[row.key] = std::move(value);
            } catch (const std::exception& e) {
                fault(path, fmt::format("key \"{}\": {}", row.key, e.what()));
            }
        }
    };
    readfile(paths::config, settings);
    readfile(paths::extras, extras);
    if (const auto name = draft.values.find("scoremoneyname");
        name != draft.values.end() && looksmultibyte(name->second.get<std::string>()))
        fault(paths::config, "key \"scoremoneyname\": must be ASCII");
    return draft;
}

std::vector<settingchange> takeover(const settingsdraft& draft) {
    std::vector<settingchange> changes;
    for (const auto rows : {std::span<const settingrow>(settings), std::span<const settingrow>(extras)})
        for (const settingrow& row : rows) {
            const json& value = draft.values.at(row.key);
            if (row.waits ? value == atstart.at(row.key) : row.issame(value)) continue;
            changes.push_back(
                {row.key, (row.waits ? atstart.at(row.key) : row.write()).dump(), value.dump(), row.waits});
            if (!row.waits) row.read(value);
        }
    applydebugmode();
    return changes;
}

void applydebugmode() { debuglogger.consolelevel = debugmode == 0 ? 0 : 5; }

}  // namespace ordomart
