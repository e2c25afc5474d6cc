// The file is removed before the shop may be read: one that stayed would be taken in once more by a later start and
// undo every trade since.
#include "plugin/shopsystem/unsaved.h"

#include <fmt/format.h>

#include <mutex>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "platform/files.h"
#include "platform/host.h"
#include "plugin/shopsystem/shopfiles.h"

namespace shopsystem {

using ordomart::logger;

namespace {

using section = std::pair<std::string, int>;  // owner and kind

struct {
    std::mutex mutex;  // held while a section is taken in, so that no other thread reads the shop meanwhile
    std::set<section> all;
} waiting;

std::string fileof(const section& of) {
    return fmt::format("{}{}.{}.json", ordomart::paths::unsaved, of.first, sectionkey(of.second));
}

std::optional<section> sectionoffile(const std::string& name) {
    for (const int kind : {shoptype::sell, shoptype::recycle}) {
        const auto suffix = fmt::format(".{}.json", sectionkey(kind));
        if (name.ends_with(suffix)) return section(name.substr(0, name.size() - suffix.size()), kind);
    }
    return std::nullopt;
}

json readaside(const std::string& path, const std::string& text) {
    try {
        json value = json::parse(text);
        if (!value.is_object()) throw fielderror({}, "holds no object");
        return value;
    } catch (const nlohmann::detail::exception& e) {
        throw shopfileerror(path, e.what());
    }
}

void takeinto(const section& of) {
    Files& files = *host().files;
    const std::string path = fileof(of);
    const auto text = files.read(path);
    if (!text) {
        if (files.exists(path)) throw std::runtime_error("Can't read file " + path);
        return;  // taken away by hand
    }
    saveshopdata(of.first, readaside(path, *text), of.second);
    if (!files.remove(path)) throw std::runtime_error("Can't remove file " + path + ", which is taken in");
    logger.info("What was not saved is taken in: {} is in {}", path, shopfile(of.first));
}

}  // namespace

std::string keepaside(const std::string& xuid, int kind, const json& value, const std::string& why) {
    const section of(xuid, kind);
    host().files->makeDirectory(ordomart::paths::unsaved);
    const bool kept = host().files->replace(fileof(of), value.dump(4, ' ', false, json::error_handler_t::ignore));
    return fmt::format("{} ({}): {}; {}", shopfile(xuid), sectionkey(kind), why,
                       kept ? "kept in " + fileof(of) + ", which the next start takes in"
                            : "lost, since " + fileof(of) + " cannot be written either");
}

void takeinunsaved() {
    for (const std::string& name : GetFileNameList(ordomart::paths::unsaved)) {
        const auto of = sectionoffile(name);
        if (!of) continue;
        {
            const std::lock_guard alone(waiting.mutex);
            waiting.all.insert(*of);
        }
        try {
            takein(of->first, of->second);
        } catch (const std::exception& e) {
            logger.error("What was not saved waits in {}, and its shop stays closed: {}", fileof(*of), e.what());
        }
    }
}

void takein(const std::string& xuid, int kind) {
    const std::lock_guard alone(waiting.mutex);
    const auto found = waiting.all.find({xuid, kind});
    if (found == waiting.all.end()) return;
    takeinto(*found);
    waiting.all.erase(found);
}

}  // namespace shopsystem
