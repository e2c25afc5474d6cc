// What goes over the door's connection, byte for byte (docs/network.md):
//   frame = u32 length of the rest, u8 operation, u64 session, payload; numbers little-endian
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace host {

enum class FromGateway : std::uint8_t { login = 1, open = 2, packet = 3, close = 4 };
enum class ToGateway : std::uint8_t {
    hello = 0x81,
    opened = 0x82,
    packet = 0x83,
    close = 0x84,
    refused = 0x85,
    pulse = 0x86,
    commands = 0x87,
    start = 0x88,
};

// What the gateway did wrong, for the reason that it is told at the end.
class BadFrame : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Frame {
    std::uint8_t operation = 0;
    std::uint64_t session = 0;
    std::string payload;
};

inline constexpr std::size_t longestpayload = 256 * 1024;

// Throws std::length_error for a payload that is too long.
[[nodiscard]] std::string frame(std::uint8_t operation, std::uint64_t session, std::string_view payload);
[[nodiscard]] inline std::string frame(ToGateway operation, std::uint64_t session, std::string_view payload) {
    return frame(static_cast<std::uint8_t>(operation), session, payload);
}

// Bytes as they come; frames as they are whole.
class FrameReader {
public:
    void add(std::string_view bytes) { bytes_.append(bytes); }
    // Throws BadFrame at a length that cannot be, before anything is kept for it.
    [[nodiscard]] std::optional<Frame> next();

private:
    std::string bytes_;
    std::size_t read_ = 0;
};

}  // namespace host
