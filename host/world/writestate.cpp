#include "host/world/writestate.h"

#include <fmt/chrono.h>

#include <algorithm>
#include <utility>

#include "host/core/guarded.h"
#include "platform/clock.h"
#include "platform/host.h"
#include "platform/logger.h"

namespace host {

namespace {

constexpr std::int64_t firstpause = 250, longestpause = 4000;

std::int64_t now() { return platform::host().clock->unixmilliseconds(); }

}  // namespace

bool WriteState::istime() const {
    const auto passed = now() - tried_;
    return !isfailing() || passed >= pause_ || passed < 0;  // the clock may be set back
}

void WriteState::failed(const std::string& why) {
    ++failures_;
    tried_ = now();
    why_ = why;
    const bool isnew = !isfailing();
    pause_ = isnew ? firstpause : std::min(pause_ * 2, longestpause);
    if (!isnew) return;
    since_ = tried_;
    platform::Logger("Server").put(platform::LogLevel::error, unwritable() + "; it is tried again");
}

void WriteState::worked() {
    ++writes_;
    if (!isfailing()) return;
    platform::Logger("Server").info("{} is written again, after {} s", file_, (now() - since_) / 1000);
    pause_ = 0;
}

void WriteState::runwaiting() {
    const auto complain = [](const std::string& text) {
        platform::Logger("Server").put(platform::LogLevel::error, text);
    };
    for (const auto& work : std::exchange(waiting_, {}))
        guarded(complain, "What waited for a pass to be on the disk failed", work);
}

std::string WriteState::unwritable() const {
    if (!isfailing()) return {};
    return fmt::format("{} cannot be written since {:%Y-%m-%d %H:%M:%S}: {}", file_, fmt::localtime(since_ / 1000),
                       why_);
}

}  // namespace host
