// The data files: one JSON object per owner with the members "sell" and "recycles". A file is replaced as a whole or
// not at all, and one that does not parse or cannot be read is left as it is.
#include <sstream>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/base/directories.h"
#include "plugin/shopsystem/baseshop.h"
#include "plugin/shopsystem/recycleshop.h"
#include "plugin/shopsystem/sellshop.h"

namespace shopsystem {

using ordomart::logger;

namespace {

constexpr const char* sectionkeys[] = {"sell", "recycles"};

const char* sectionkey(int section) {
    return section == shoptype::sell || section == shoptype::recycle ? sectionkeys[section] : nullptr;
}

std::string shopfile(const std::string& xuid) { return ordomart::paths::data + xuid + ".json"; }

bool writedocument(const std::string& xuid, const json& document) {
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

json readdocument(const std::string& xuid) {
    if (xuid.empty() || xuid == "0") logger.error("use wrong nullxuid ");
    ordomart::ensuredirectory(ordomart::paths::data, LogLevel::warn);
    const auto text = host().files->read(shopfile(xuid));
    if (!text) {
        // A file that is there, but cannot be opened just now, must not be taken for a missing one and replaced.
        if (host().files->exists(shopfile(xuid))) throw std::runtime_error("Can't read file " + shopfile(xuid));
        logger.warn("Can't open file {}.json,try load default json...", xuid);
        writedefaultshopfile(xuid);
        return nullptr;
    }
    json document;
    // As a stream, since text behind the first complete value is ignored.
    if (!text->empty()) std::istringstream(*text) >> document;
    if (document.is_null()) {
        logger.warn("The file {}.json is NULL,try load default json...", xuid);
        writedefaultshopfile(xuid);
        document = defaultdocument();
    }
    return document;
}

}  // namespace

shopfileerror::shopfileerror(const std::string& xuid, const std::string& what)
    : exception(0, (shopfile(xuid) + ": " + what).c_str()) {}

json loadshopdata(const std::string& xuid, int section) {
    return namingfile(xuid, [&]() -> json {
        json document = readdocument(xuid);
        const char* key = sectionkey(section);
        if (key == nullptr || document.is_null()) return document;
        json member = std::move(document[key]);
        // Taken as an empty section, it would be overwritten by the next save.
        if (!member.is_null() && !member.is_object())
            throw shopfileerror(xuid, std::string("the member ") + key + " is no object");
        return member;
    });
}

bool saveshopdata(const std::string& xuid, const json& value, int section) {
    constexpr int whole = -1;
    json document = loadshopdata(xuid, whole);
    if (document.is_null()) document = defaultdocument();  // the file had gone
    if (const char* key = sectionkey(section))
        namingfile(xuid, [&] { document[key] = value; });
    else
        document = value;
    const bool written = writedocument(xuid, document);
    if (!written) logger.error("Can't write file {}", shopfile(xuid));
    return written;
}

void writedefaultshopfile(const std::string& xuid) {
    if (!writedocument(xuid, defaultdocument())) logger.error("Can't open file {}", shopfile(xuid));
}

std::vector<std::string> shopfilekeys() {
    std::vector<std::string> keys;
    for (const std::string& name : GetFileNameList(ordomart::paths::data))
        if (const auto end = name.find(".json"); end != std::string::npos) keys.push_back(name.substr(0, end));
    return keys;
}

}  // namespace shopsystem
