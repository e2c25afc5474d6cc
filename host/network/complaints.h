// What the log says of a client's bad packets: one line each, but not more of them than a log can bear. What is left
// out is counted, and told in the next line that gets through and when the player goes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

class Complaints {
public:
    explicit Complaints(std::string player) : player_(std::move(player)) {}
    void add(std::string_view packet, std::string_view what);
    void end();

private:
    static constexpr int mostinarow = 20;
    static constexpr std::int64_t millisecondsperline = 500;

    std::string player_;
    std::int64_t left_ = mostinarow;
    std::int64_t since_ = 0;  // when the last line was earned
    std::uint64_t omitted_ = 0;
};

}  // namespace host
