// The wire's encodings, one by one. Those of tags stand in nbt/binary.cpp.
#include "platform/binarystream.h"

#include <bit>
#include <limits>

namespace platform {

namespace {

template <class Unsigned>
std::string fixed(Unsigned value) {
    std::string bytes(sizeof(Unsigned), '\0');
    for (auto& b : bytes) {
        b = static_cast<char>(value & 0xff);
        value = static_cast<Unsigned>(value >> 4 >> 4);
    }
    return bytes;
}

template <class Unsigned>
Unsigned fixed(std::string_view bytes) {
    Unsigned value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        value = static_cast<Unsigned>(value << 4 << 4 | static_cast<unsigned char>(bytes[i]));
    }
    return value;
}

template <class Unsigned>
void writevarint(BinaryStream& out, Unsigned value) {
    for (; value >= 0x80; value >>= 7) out.writeByte(static_cast<std::uint8_t>(value | 0x80));
    out.writeByte(static_cast<std::uint8_t>(value));
}

template <class Unsigned>
Unsigned readvarint(BinaryStream& in) {
    Unsigned value = 0;
    for (int shift = 0; shift < std::numeric_limits<Unsigned>::digits; shift += 7) {
        const auto byte = in.getByte();
        const auto part = static_cast<Unsigned>(byte & 0x7f);
        if ((part << shift) >> shift != part) break;
        value |= part << shift;
        if (byte < 0x80) return value;
    }
    throw ReadError("a varint is too long for its type");
}

}  // namespace

void BinaryStream::writeByte(std::uint8_t v) { bytes_ += static_cast<char>(v); }
void BinaryStream::writeUnsignedShort(std::uint16_t v) { bytes_ += fixed(v); }
void BinaryStream::writeSignedInt(std::int32_t v) { bytes_ += fixed(static_cast<std::uint32_t>(v)); }
void BinaryStream::writeSignedInt64(std::int64_t v) { bytes_ += fixed(static_cast<std::uint64_t>(v)); }
void BinaryStream::writeFloat(float v) { bytes_ += fixed(std::bit_cast<std::uint32_t>(v)); }
void BinaryStream::writeUnsignedVarInt(std::uint32_t v) { writevarint(*this, v); }
void BinaryStream::writeUnsignedVarInt64(std::uint64_t v) { writevarint(*this, v); }
void BinaryStream::writeVarInt(std::int32_t v) {
    writevarint(*this, (static_cast<std::uint32_t>(v) << 1) ^ static_cast<std::uint32_t>(v >> 31));
}
void BinaryStream::writeVarInt64(std::int64_t v) {
    writevarint(*this, (static_cast<std::uint64_t>(v) << 1) ^ static_cast<std::uint64_t>(v >> 63));
}
void BinaryStream::writeString(std::string_view v) {
    writeUnsignedVarInt(static_cast<std::uint32_t>(v.size()));
    bytes_ += v;
}
void BinaryStream::writeRaw(std::string_view v) { bytes_ += v; }

std::string_view BinaryStream::take(std::size_t n) {
    if (n > unread()) throw ReadError("the bytes end too early");
    position_ += n;
    return std::string_view(bytes_).substr(position_ - n, n);
}

std::uint8_t BinaryStream::getByte() { return static_cast<std::uint8_t>(take(1)[0]); }
bool BinaryStream::getBool() {
    const auto byte = getByte();
    if (byte > 1) throw ReadError("a bool is neither 0 nor 1");
    return byte == 1;
}
std::uint16_t BinaryStream::getUnsignedShort() { return fixed<std::uint16_t>(take(2)); }
std::int32_t BinaryStream::getSignedInt() { return static_cast<std::int32_t>(fixed<std::uint32_t>(take(4))); }
std::int64_t BinaryStream::getSignedInt64() { return static_cast<std::int64_t>(fixed<std::uint64_t>(take(8))); }
float BinaryStream::getFloat() { return std::bit_cast<float>(fixed<std::uint32_t>(take(4))); }
std::uint32_t BinaryStream::getUnsignedVarInt() { return readvarint<std::uint32_t>(*this); }
std::uint64_t BinaryStream::getUnsignedVarInt64() { return readvarint<std::uint64_t>(*this); }
std::int32_t BinaryStream::getVarInt() {
    const auto v = getUnsignedVarInt();
    return static_cast<std::int32_t>((v >> 1) ^ (0 - (v & 1)));
}
std::int64_t BinaryStream::getVarInt64() {
    const auto v = getUnsignedVarInt64();
    return static_cast<std::int64_t>((v >> 1) ^ (0 - (v & 1)));
}
std::string BinaryStream::getString() { return getRaw(getUnsignedVarInt()); }
std::string BinaryStream::getRaw(std::size_t n) { return std::string(take(n)); }

std::uint32_t BinaryStream::getCount(std::size_t least) {
    const auto n = getUnsignedVarInt();
    if (n > unread() / least) throw ReadError("a count does not fit into the bytes that are left");
    return n;
}

void BinaryStream::expectEnd() const {
    if (unread() != 0) throw ReadError("bytes are left over");
}

}  // namespace platform
