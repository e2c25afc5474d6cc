// Packets of what a player reads, hears and types: texts, toasts, sounds, game type, commands.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/packets/codec.h"

namespace platform {

enum class TextType : std::uint8_t {
    raw = 0,
    chat = 1,
    translation = 2,
    popup = 3,
    jukebox = 4,
    tip = 5,
    system = 6,
    whisper = 7,
    announcement = 8,
    jsonwhisper = 9,
    json = 10,
    jsonannouncement = 11,
};

struct TextPacket {
    static constexpr PacketId number = PacketId::Text;
    TextType type = TextType::raw;
    bool needstranslation = false;
    std::string source;  // of chat, whisper and announcement
    std::string message;
    std::vector<std::string> parameters;  // of translation, popup and jukebox
    std::string xuid, platformchatid;
    template <class IO>
    void fields(IO& io) {
        auto kind = static_cast<std::uint8_t>(type);
        io.u8(kind);
        io.demand(kind <= static_cast<std::uint8_t>(TextType::jsonannouncement), "a text of unknown type");
        type = static_cast<TextType>(kind);
        io.boolean(needstranslation);
        if (type == TextType::chat || type == TextType::whisper || type == TextType::announcement) io.text(source);
        io.text(message);
        if (type == TextType::translation || type == TextType::popup || type == TextType::jukebox) {
            io.list(parameters, 1, textelement);
        }
        io.text(xuid);
        io.text(platformchatid);
    }
};

struct ToastRequestPacket {
    static constexpr PacketId number = PacketId::ToastRequest;
    std::string title, content;
    template <class IO>
    void fields(IO& io) {
        io.text(title);
        io.text(content);
    }
};

struct PlaySoundPacket {
    static constexpr PacketId number = PacketId::PlaySound;
    std::string name;
    Vec3 position;  // the wire knows eighths of a block
    float volume = 1, pitch = 1;
    template <class IO>
    void fields(IO& io) {
        io.text(name);
        BlockPos at{eighths(position.x), eighths(position.y), eighths(position.z)};
        blockposition(io, at);
        if constexpr (IO::reads) {
            const auto part = [](std::int32_t v) { return static_cast<float>(v) / steps; };
            position = {part(at.x), part(at.y), part(at.z)};
        }
        io.f32(volume);
        io.f32(pitch);
    }

private:
    static constexpr float steps = 8;
    // A position beyond the wire's numbers is told as their end.
    static std::int32_t eighths(float v) {
        using limits = std::numeric_limits<std::int32_t>;
        if (std::isnan(v)) return 0;
        return static_cast<std::int32_t>(
            std::clamp<double>(std::floor(double{v} * steps), limits::min(), limits::max()));
    }
};

struct SetPlayerGameTypePacket {
    static constexpr PacketId number = PacketId::SetPlayerGameType;
    static constexpr std::int32_t lasttype = 6;
    std::int32_t gametype = 0;
    template <class IO>
    void fields(IO& io) {
        io.zigzag32(gametype);
        io.demand(gametype >= 0 && gametype <= lasttype, "an unknown game type");
    }
};

struct CommandOriginData {
    static constexpr std::uint32_t player = 0, dedicatedserver = 7, lastkind = 15;
    std::uint32_t kind = player;
    std::array<std::uint8_t, 16> uuid{};
    std::string requestid;
    std::int64_t actor = 0;  // of the kinds 3 and 4
    template <class IO>
    void fields(IO& io) {
        io.varint(kind);
        io.demand(kind <= lastkind, "a command of unknown origin");
        io.bytes(uuid);
        io.text(requestid);
        if (kind == 3 || kind == 4) io.zigzag64(actor);
    }
};

struct CommandRequestPacket {
    static constexpr PacketId number = PacketId::CommandRequest;
    std::string line;  // with the leading slash
    CommandOriginData origin;
    bool internal = false;
    template <class IO>
    void fields(IO& io) {
        io.text(line);
        origin.fields(io);
        io.boolean(internal);
    }
};

struct CommandOutputPacket {
    static constexpr PacketId number = PacketId::CommandOutput;
    static constexpr std::uint8_t alloutput = 3, dataset = 4;
    struct Message {
        bool success = false;
        std::string id;  // a text key, or the text itself
        std::vector<std::string> parameters;
    };
    CommandOriginData origin;
    std::uint8_t type = alloutput;
    std::uint32_t successcount = 0;
    std::vector<Message> messages;
    std::string data;  // of the type `dataset`
    template <class IO>
    void fields(IO& io) {
        origin.fields(io);
        io.u8(type);
        io.demand(type <= dataset, "a command's output of unknown type");
        io.varint(successcount);
        io.list(messages, 3, [](auto& inner, Message& message) {
            inner.boolean(message.success);
            inner.text(message.id);
            inner.list(message.parameters, 1, textelement);
        });
        if (type == dataset) io.text(data);
    }
};

}  // namespace platform
