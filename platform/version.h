// A release number in the loader's form: major.minor.revision and a status.
#pragma once

#include <compare>
#include <string>
#include <string_view>

namespace platform::LL {

struct Version {
    enum Status { Release = 0, Beta = 1, Dev = 2 };

    int major = 0;
    int minor = 0;
    int revision = 0;
    Status status = Release;

    // "v1.2.3", "1.2.3", "1.2.3-beta", "1.2.3 Dev"; missing numbers are 0. Throws std::invalid_argument, naming the
    // text.
    [[nodiscard]] static Version parse(std::string_view text);
    // "1.2.3", and with the status "1.2.3 Beta" (nothing is added for a release).
    [[nodiscard]] std::string toString(bool withstatus = false) const;

    bool operator==(const Version&) const = default;
    // By the three numbers, then a release above a beta above a dev build.
    std::strong_ordering operator<=>(const Version& other) const;
};

}  // namespace platform::LL
