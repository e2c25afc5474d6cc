#include "plugin/errands/updatecheck.h"

#include <nlohmann/json.hpp>
#include <string>

#include "platform/background.h"
#include "platform/http.h"
#include "plugin/base/guards.h"
#include "plugin/errands/addresses.h"

namespace ordomart {

namespace {

constexpr int lookpatience = 10;  // seconds
constexpr int found = 200;

// What is no release says nothing; a release that lacks something is an error of the parser.
void compare(const nlohmann::json& release) {
    if (!release.is_object() || !release.contains("name")) return;
    const auto download = release.at("assets").at(0).at("browser_download_url").get<std::string>();
    const auto version = LL::Version::parse(release.at("tag_name").get<std::string>());
    if (pluginversion >= version) return logger.info("Latest version.");
    logger.info("New version available: {}\n-->{}", version.toString(true), download);
    logger.info("Title:{}", release.at("body").get<std::string>());
}

}  // namespace

void checkforupdate() {
    const auto check = [] {
        int status = -1;
        std::string text;
        if (!HttpGetSync(latestreleaseaddress(), status, text, lookpatience) || status != found)
            return logger.info("Unable to check for updates. Error Code: {}", status);
        compare(nlohmann::json::parse(text));
    };
    envelope(check, nullptr, updateenvelope);
}

void startupdatecheck() {
    if (!latestreleaseaddress().empty()) Background::start(&checkforupdate);
}

}  // namespace ordomart
