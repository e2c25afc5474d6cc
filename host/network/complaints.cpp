#include "host/network/complaints.h"

#include <algorithm>

#include "platform/clock.h"
#include "platform/host.h"
#include "platform/logger.h"

namespace host {

void Complaints::add(std::string_view packet, std::string_view what) {
    const std::int64_t now = platform::host().clock->unixmilliseconds();
    const std::int64_t earned = std::max<std::int64_t>(0, (now - since_) / millisecondsperline);
    if (earned > 0 || now < since_) since_ = now;
    left_ = std::min<std::int64_t>(mostinarow, left_ + std::min<std::int64_t>(earned, mostinarow));
    if (left_ == 0) {
        ++omitted_;
        return;
    }
    --left_;
    end();
    // What went wrong may quote the client, who would else write lines of his own.
    std::string line = fmt::format("{}: {}: {}", player_, packet, what);
    std::ranges::replace_if(
        line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, ' ');
    platform::Logger("Server").put(platform::LogLevel::warn, line);
}

void Complaints::end() {
    if (omitted_ == 0) return;
    platform::Logger("Server").warn("{}: {} more bad packets", player_, omitted_);
    omitted_ = 0;
}

}  // namespace host
