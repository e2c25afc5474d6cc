// A file is replaced as a whole or not at all, and one that does not parse or cannot be read is left as it is.
#include "plugin/shopsystem/shopfiles.h"

#include <array>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/base/directories.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"

namespace shopsystem {

using ordomart::logger;

namespace {

constexpr const char* sectionkeys[] = {"sell", "recycles"};
constexpr std::string_view suffix = ".json";

// One thread at a time changes a file: a save, and a reader that found no file, would undo each other.
std::mutex& gate(const std::string& xuid) {
    static std::array<std::mutex, 16> gates;
    return gates[std::hash<std::string>{}(xuid) % gates.size()];
}

// What stands on the disk: nothing without a file, null in an empty one.
std::optional<json> readdocument(const std::string& xuid) {
    const Files& files = *host().files;
    const auto path = shopfile(xuid);
    auto text = files.read(path);
    // It may have been made just now. One that is there, but cannot be opened, must not be taken for a missing one and
    // replaced.
    if (!text && files.exists(path)) {
        text = files.read(path);
        if (!text) throw std::runtime_error("Can't read file " + path);
    }
    if (!text) return std::nullopt;
    json document;
    // As a stream, since text behind the first complete value is ignored.
    if (!text->empty()) namingfile(xuid, [&] { std::istringstream(*text) >> document; });
    return document;
}

bool writedocument(const std::string& xuid, const json& document) {
    host().files->makeDirectory(ordomart::paths::data);
    return host().files->replace(shopfile(xuid), document.dump(4, ' ', false, json::error_handler_t::ignore));
}

// What a shop without a past saves, but for the ban record, which is the number 0 in a new file.
json defaultdocument() {
    json document;
    sellshop().savetojson(document[sectionkeys[shoptype::sell]]);
    recycleshop().savetojson(document[sectionkeys[shoptype::recycle]]);
    for (const char* key : sectionkeys) document[key]["shopstate"] = 0;
    return document;
}

loadedsection loaddocument(const std::string& xuid) {
    if (xuid.empty() || xuid == "0") logger.error("use wrong nullxuid ");
    ordomart::ensuredirectory(ordomart::paths::data, LogLevel::warn);
    const auto isthere = [](const std::optional<json>& document) { return document && !document->is_null(); };
    auto document = readdocument(xuid);
    if (isthere(document)) return {std::move(*document), false};

    const std::lock_guard alone(gate(xuid));
    document = readdocument(xuid);
    if (isthere(document)) return {std::move(*document), false};
    if (document)
        logger.warn("The file {}.json is NULL,try load default json...", xuid);
    else
        logger.warn("Can't open file {}.json,try load default json...", xuid);
    writedefaultshopfile(xuid);
    return {document ? defaultdocument() : json(), true};
}

// Whether the disk has the section.
bool stands(const std::optional<json>& document, const char* key) {
    return document && document->is_object() && document->contains(key) && !document->at(key).is_null();
}

// The document with one section changed. `other` stands in for the other one where the disk has none.
json changed(const std::string& xuid, std::optional<json> document, int section, const json& value, json other) {
    const char* const key = sectionkey(section);
    if (key == nullptr) return value;
    const char* const otherkey = sectionkeys[1 - section];
    const bool isgone = !document || document->is_null();
    if (isgone) document = json::object();
    if (!document->is_object()) throw shopfileerror(shopfile(xuid), "the file holds no object");
    if (!stands(document, otherkey)) {
        if (isgone && other.is_null()) {
            logger.warn("The file {} had gone or was empty: its section {} begins anew", shopfile(xuid), otherkey);
            other = defaultdocument()[otherkey];
        }
        if (!other.is_null()) (*document)[otherkey] = std::move(other);
    }
    (*document)[key] = value;
    return std::move(*document);
}

}  // namespace

std::string shopfile(const std::string& xuid) { return ordomart::paths::data + xuid + std::string(suffix); }

const char* sectionkey(int section) {
    return section == shoptype::sell || section == shoptype::recycle ? sectionkeys[section] : nullptr;
}

json loadshopdata(const std::string& xuid, int section) { return loadsection(xuid, section).content; }

loadedsection loadsection(const std::string& xuid, int section) {
    auto loaded = loaddocument(xuid);
    const char* const key = sectionkey(section);
    if (key == nullptr || loaded.content.is_null()) return loaded;
    return namingfile(xuid, [&]() -> loadedsection {
        json member = std::move(loaded.content[key]);
        // Taken as an empty section, it would be overwritten by the next save.
        if (!member.is_null() && !member.is_object()) throw fielderror(key, "is no object");
        return {std::move(member), loaded.isnewfile};
    });
}

std::uint64_t filestamp(const std::string& xuid) {
    const Files& files = *host().files;
    std::uint64_t hash = 14695981039346656037ULL;
    const auto add = [&](std::uint64_t part) { hash = (hash ^ part) * 1099511628211ULL; };
    if (const auto stamp = files.stamp(shopfile(xuid))) {
        for (const auto part : {stamp->file, stamp->size, static_cast<std::uint64_t>(stamp->modified),
                                static_cast<std::uint64_t>(stamp->changed)}) {
            add(part & 0xFFFFFFFFU);
            add(part >> 32U);
        }
        return hash | 1U;
    }
    const auto text = files.read(shopfile(xuid));
    if (!text) return 0;
    for (const char c : *text) add(static_cast<unsigned char>(c));
    return hash | 1U;
}

void saveshopdata(const std::string& xuid, const json& value, int section, const std::function<json()>& other) {
    const char* const otherkey = sectionkey(1 - section);
    json known;
    for (bool isasked = !other || otherkey == nullptr;; isasked = true) {
        {
            const std::lock_guard alone(gate(xuid));
            auto document = readdocument(xuid);
            if (isasked || stands(document, otherkey)) {
                if (writedocument(xuid, changed(xuid, std::move(document), section, value, std::move(known)))) return;
                throw std::runtime_error("Can't write file " + shopfile(xuid));
            }
        }
        // Not at the gate: it takes a turn, and whoever has the turn may be waiting there.
        known = other();
    }
}

void writedefaultshopfile(const std::string& xuid) {
    if (!writedocument(xuid, defaultdocument())) logger.error("Can't open file {}", shopfile(xuid));
}

std::vector<std::string> shopfilekeys() {
    std::vector<std::string> keys;
    for (const std::string& name : GetFileNameList(ordomart::paths::data))
        if (name.ends_with(suffix)) keys.push_back(name.substr(0, name.size() - suffix.size()));
    return keys;
}

}  // namespace shopsystem
