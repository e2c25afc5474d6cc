// How often somebody may call: so many calls at once, and so many a second from then on. Somebody is an address; of
// IPv6 its first half, which is one household's. It remembers a bounded number of them, those that have called least
// lately are forgotten first.
#pragma once

#include <chrono>
#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

struct Rate {
    double atonce = 60, asecond = 20;
};

// Of one thread.
class RateLimit {
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr std::size_t most = 8192;

    explicit RateLimit(Rate rate) : rate_(rate) {}
    // Counts the call. 0 when it may be done, or after how many seconds it may.
    [[nodiscard]] int refusedfor(std::string_view address, Time now);
    [[nodiscard]] std::size_t size() const { return callers_.size(); }

private:
    struct Caller {
        std::string who;
        double left;
        Time at;
    };
    const Rate rate_;
    std::list<Caller> callers_;  // the latest first
    std::unordered_map<std::string, std::list<Caller>::iterator> places_;
};

}  // namespace host
