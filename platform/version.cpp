// Reading and ordering of release numbers.
#include "platform/version.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <tuple>

namespace platform::LL {

namespace {

constexpr std::string_view statusnames[] = {"Release", "Beta", "Dev"};

bool samewithoutcase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return (x | 0x20) == (y | 0x20); });
}

}  // namespace

Version Version::parse(std::string_view text) {
    const auto wrong = [&] { return std::invalid_argument("\"" + std::string(text) + "\" is no version"); };
    auto rest = text;
    if (!rest.empty() && (rest[0] == 'v' || rest[0] == 'V')) rest.remove_prefix(1);
    Version version;
    for (int* number : {&version.major, &version.minor, &version.revision}) {
        // from_chars would take a sign too
        if (rest.empty() || rest[0] < '0' || rest[0] > '9') throw wrong();
        const auto result = std::from_chars(rest.data(), rest.data() + rest.size(), *number);
        if (result.ec != std::errc()) throw wrong();
        rest.remove_prefix(static_cast<std::size_t>(result.ptr - rest.data()));
        if (rest.empty() || rest[0] != '.' || number == &version.revision) break;
        rest.remove_prefix(1);
    }
    if (rest.empty()) return version;
    const auto name = std::find_if(std::begin(statusnames), std::end(statusnames),
                                   [&](std::string_view n) { return samewithoutcase(n, rest.substr(1)); });
    if ((rest[0] != '-' && rest[0] != ' ') || name == std::end(statusnames)) throw wrong();
    version.status = static_cast<Status>(name - std::begin(statusnames));
    return version;
}

std::string Version::toString(bool withstatus) const {
    auto text = std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(revision);
    if (withstatus && status != Release) text.append(" ").append(statusnames[status]);
    return text;
}

std::strong_ordering Version::operator<=>(const Version& other) const {
    // A lower status value is the riper one.
    return std::tuple(major, minor, revision, -status) <=>
           std::tuple(other.major, other.minor, other.revision, -other.status);
}

}  // namespace platform::LL
