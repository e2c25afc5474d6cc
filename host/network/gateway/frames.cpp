#include "host/network/gateway/frames.h"

#include <fmt/format.h>

#include <utility>

namespace host {

namespace {

constexpr std::size_t lengthsize = 4, sessionsize = 8, headsize = 1 + sessionsize;

void put(std::string& bytes, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> 8 * i & 0xff);
}

std::uint64_t number(std::string_view bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

}  // namespace

std::string frame(std::uint8_t operation, std::uint64_t session, std::string_view payload) {
    if (payload.size() > longestpayload)
        throw std::length_error(fmt::format("{} bytes are more than the door lets through", payload.size()));
    std::string bytes;
    bytes.reserve(lengthsize + headsize + payload.size());
    put(bytes, headsize + payload.size(), lengthsize);
    put(bytes, operation, 1);
    put(bytes, session, sessionsize);
    return bytes.append(payload);
}

std::optional<Frame> FrameReader::next() {
    const std::string_view rest = std::string_view(bytes_).substr(read_);
    const auto wait = [this] {
        bytes_.erase(0, std::exchange(read_, 0));
        return std::nullopt;
    };
    if (rest.size() < lengthsize) return wait();
    const std::uint64_t length = number(rest.substr(0, lengthsize));
    if (length < headsize || length > headsize + longestpayload)
        throw BadFrame(fmt::format("a frame of {} bytes", length));
    if (rest.size() < lengthsize + length) return wait();
    read_ += lengthsize + length;
    return Frame{static_cast<std::uint8_t>(rest[lengthsize]), number(rest.substr(lengthsize + 1, sessionsize)),
                 std::string(rest.substr(lengthsize + headsize, length - headsize))};
}

}  // namespace host
