// Reading and writing go by one table of keys, so that a key that is read is also written back. What the file says is
// kept, also where the server later runs with another value.
#include "plugin/base/config.h"

#include <algorithm>
#include <cmath>
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

// Any number and a boolean, cut to the width of the setting. Anything else is the library's type error.
template <class Setting>
void takenumber(const json& value, Setting& setting) {
    std::int64_t whole = 0;
    if (value.is_boolean())
        whole = value.get<bool>() ? 1 : 0;
    else if (!value.is_number_float())
        whole = value.get<std::int64_t>();
    else if (const double number = value.get<double>(); std::abs(number) < 9.0e18)
        whole = static_cast<std::int64_t>(number);
    setting = static_cast<Setting>(whole);
}

template <class Setting>
void takeasis(const json& value, Setting& setting) {
    setting = value.get<Setting>();
}

// Both directions of one key.
struct settingrow {
    const char* key;
    void (*read)(const json&);
    json (*write)();
};

template <auto& Setting>
constexpr settingrow number(const char* key) {
    return {key, [](const json& value) { takenumber(value, Setting); }, [] { return json(Setting); }};
}

template <auto& Setting>
constexpr settingrow asis(const char* key) {
    return {key, [](const json& value) { takeasis(value, Setting); }, [] { return json(Setting); }};
}

// In the order in which they are read: what stands before a broken key has taken effect.
constexpr settingrow settings[] = {
    number<moneymode>("moneymode"),         number<tax>("tax"),
    number<extraslotcost>("extraslotcost"), number<maxfreeslot>("maxfreeslot"),
    asis<banshopitem>("banshopitem"),       asis<scoremoneyname>("scoremoneyname"),
    number<debugmode>("debugmode"),         asis<enablesystemshopinglobalshop>("enablesystemshopinglobalshop")};

constexpr settingrow extras[] = {number<ledgerdays>("ledgerdays"), asis<awaymessage>("awaymessage")};
constexpr std::int64_t leastdays = 1, mostdays = 36500;

void readrows(const json& document, std::span<const settingrow> rows) {
    if (!document.is_object())
        throw configerror(fmt::format("the settings must be an object, but they are {}", document.type_name()));
    for (const settingrow& row : rows) {
        const auto found = document.find(row.key);
        if (found == document.end()) continue;
        try {
            row.read(*found);
        } catch (const json::exception& e) {
            throw configerror(fmt::format("key \"{}\": {}", row.key, e.what()));
        }
    }
}

void writerows(const std::string& path, std::span<const settingrow> rows) {
    json document;
    for (const settingrow& row : rows) document[row.key] = row.write();
    if (!host().files->replace(path, document.dump(4))) logger.warn("Can't open file {}", path);
}

// `read` takes the document over; a file that is missing is made.
void loadrows(const std::string& path, std::span<const settingrow> rows, void (*read)(const json&)) {
    Files& files = *host().files;
    const auto text = files.read(path);
    if (!text) {
        // Somebody's settings that cannot be read just now; the defaults would take their place for good.
        if (files.exists(path)) throw configerror(path + ": the file is there, but cannot be read");
        if (rows.data() == settings) logger.warn("Can't open file {},try load default setting...", path);
        return writerows(path, rows);
    }
    try {
        // As a stream, so that text behind the object does not matter.
        std::istringstream in(*text);
        json document;
        in >> document;
        read(document);
    } catch (const std::exception& e) {
        throw configerror(fmt::format("{}: {}", path, e.what()));
    }
    writerows(path, rows);
}

void readextras(const json& document) {
    readrows(document, extras);
    if (ledgerdays < leastdays || ledgerdays > mostdays)
        throw configerror(
            fmt::format("key \"ledgerdays\": {} is not between {} and {}", ledgerdays, leastdays, mostdays));
}

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

}  // namespace ordomart
