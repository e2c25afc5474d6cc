// Forms on the wire: the question and its answer.
#pragma once

#include "platform/packets/codec.h"

namespace platform {

struct ModalFormRequestPacket {
    static constexpr PacketId number = PacketId::ModalFormRequest;
    std::uint32_t formid = 0;
    std::string json;
    template <class IO>
    void fields(IO& io) {
        io.varint(formid);
        io.text(json);
    }
};

struct ModalFormResponsePacket {
    static constexpr PacketId number = PacketId::ModalFormResponse;
    static constexpr std::uint8_t closed = 0, busy = 1;
    std::uint32_t formid = 0;
    std::optional<std::string> json;
    std::optional<std::uint8_t> reason;  // why there is no answer; one of the two is there, and not both
    template <class IO>
    void fields(IO& io) {
        io.varint(formid);
        io.optional(json, textelement);
        io.optional(reason, [](auto& inner, std::uint8_t& why) {
            inner.u8(why);
            inner.demand(why <= busy, "a form is closed for an unknown reason");
        });
        io.demand(json.has_value() != reason.has_value(),
                  json ? "a form is answered and closed at once" : "a form is neither answered nor closed");
    }
};

}  // namespace platform
