// The last things that players heard, numbered over the server's run. A line never changes, so that it is shared and
// not copied. Any thread.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace host {

struct Heard {
    std::uint64_t number = 0;
    std::string player;
    nlohmann::json what;  // {"kind": "chat" | "toast" | "sound" | "reply", ...}
};
using SharedHeard = std::shared_ptr<const Heard>;

class HeardLines {
public:
    static constexpr std::size_t mostkept = 5000;  // of all players together

    void add(const std::string& player, std::vector<nlohmann::json> lines);
    // Everybody's with a number above `number`, oldest first.
    [[nodiscard]] std::vector<SharedHeard> after(std::uint64_t number) const;
    // One player's, of these the last `most`.
    [[nodiscard]] std::vector<SharedHeard> after(std::uint64_t number, const std::string& player,
                                                 std::size_t most = mostkept) const;

private:
    using Lines = std::deque<SharedHeard>;

    mutable std::mutex lock_;
    Lines all_;
    std::map<std::string, Lines> byplayer_;
    std::uint64_t last_ = 0;
};

}  // namespace host
