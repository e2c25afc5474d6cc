// Who has asked for something that is done beside the server, and is told of it by and by: in his language if he is
// here, and in the log in any case. Any thread; what is told comes in order.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/host.h"
#include "platform/level.h"
#include "platform/schedule.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/formparts/formtools.h"

namespace ordomart {

class asker {
public:
    explicit asker(std::string xuid) : xuid_(std::move(xuid)) {}
    [[nodiscard]] const std::string& xuid() const { return xuid_; }

    template <class... A>
    void tell(LogLevel level, const char* key, const A&... values) const {
        logger.put(level, filled(tr(std::string(), key), values...));
        const auto send = [xuid = xuid_, key, ... kept = owned(values)] {
            auto* const level_ = host().level;
            auto* const to = level_ != nullptr ? level_->getPlayerByXuid(xuid) : nullptr;
            if (to != nullptr) to->sendText(filled(tr(to, key), kept...));
        };
        Schedule::delay([send] { envelope(send); }, 0);
    }

private:
    // A text is kept, since what() of an exception is gone by the time that it is told.
    template <class T>
    [[nodiscard]] static auto owned(const T& value) {
        if constexpr (std::is_convertible_v<const T&, std::string_view>)
            return std::string(value);
        else
            return value;
    }

    std::string xuid_;
};

}  // namespace ordomart
