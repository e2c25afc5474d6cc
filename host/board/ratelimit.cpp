#include "host/board/ratelimit.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace host {

namespace {

// The same for all addresses of one side; of a text that is no address, the text.
std::string sideof(std::string_view address) {
    const std::string text(address.substr(0, address.find('%')));
    std::array<char, 16> bytes{};
    if (::inet_pton(AF_INET6, text.c_str(), bytes.data()) != 1) return text;
    constexpr std::string_view mapped("\0\0\0\0\0\0\0\0\0\0\xff\xff", 12);
    const std::string_view all(bytes.data(), bytes.size());
    if (!all.starts_with(mapped)) return "6" + std::string(all.substr(0, 8));
    std::array<char, INET_ADDRSTRLEN> four{};
    return ::inet_ntop(AF_INET, bytes.data() + mapped.size(), four.data(), four.size());
}

}  // namespace

int RateLimit::refusedfor(std::string_view address, Time now) {
    auto who = sideof(address);
    const auto known = places_.find(who);
    if (known == places_.end()) {
        if (callers_.size() >= most) {
            places_.erase(callers_.back().who);
            callers_.pop_back();
        }
        callers_.push_front({who, rate_.atonce, now});
        places_.emplace(std::move(who), callers_.begin());
    } else {
        callers_.splice(callers_.begin(), callers_, known->second);
    }
    Caller& caller = callers_.front();
    const std::chrono::duration<double> passed = now - caller.at;
    caller.left = std::min(rate_.atonce, caller.left + std::max(0.0, passed.count()) * rate_.asecond);
    caller.at = now;
    if (caller.left < 1) return static_cast<int>(std::ceil((1 - caller.left) / rate_.asecond));
    caller.left -= 1;
    return 0;
}

}  // namespace host
