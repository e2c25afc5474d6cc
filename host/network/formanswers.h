// The forms that a client was sent and has not answered. An answer counts once, and only when it fits the form; one
// that does not leaves the form open.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>

#include "platform/formanswer.h"
#include "platform/player.h"

namespace host {

// A packet that is readable and asks for what cannot be.
class BadPacket : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class FormAnswers {
public:
    using Answer = platform::ServerPlayer::FormAnswer;
    struct Taken {
        std::string json;
        Answer answer;
    };

    // The form's id. Throws std::invalid_argument when the text is no form. The oldest is forgotten when a client
    // leaves too many open.
    std::uint32_t add(const std::string& form, Answer answer);
    // Throws BadPacket when there is no such form or the answer does not fit; nothing is called.
    [[nodiscard]] Taken take(std::uint32_t id, const std::string& answer);

private:
    static constexpr std::size_t mostopen = 100;
    struct Pending {
        platform::Form::AnswerRule rule;
        Answer answer;
    };
    std::map<std::uint32_t, Pending> pending_;
    std::uint32_t lastid_ = 0;
};

}  // namespace host
