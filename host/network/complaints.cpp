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
    platform::Logger("Server").warn("{}: {}: {}", player_, packet, what);
}

void Complaints::end() {
    if (omitted_ == 0) return;
    platform::Logger("Server").warn("{}: {} more bad packets", player_, omitted_);
    omitted_ = 0;
}

}  // namespace host
