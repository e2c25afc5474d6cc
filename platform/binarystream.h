// A byte buffer in the wire's encodings. Writing appends; reading never passes the end, never allocates by a claimed
// length alone, and throws ReadError on the first fault.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/nbt/tags.h"

namespace platform {

class ReadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct NetworkItem;

class BinaryStream {
public:
    BinaryStream() = default;
    explicit BinaryStream(std::string bytes) : bytes_(std::move(bytes)) {}

    [[nodiscard]] const std::string& bytes() const { return bytes_; }
    [[nodiscard]] std::size_t unread() const { return bytes_.size() - position_; }
    void reserve(std::size_t n) { bytes_.reserve(n); }

    void writeByte(std::uint8_t v);
    void writeBool(bool v) { writeByte(v ? 1 : 0); }
    void writeUnsignedShort(std::uint16_t v);  // little-endian, as all fixed-width forms here
    void writeSignedInt(std::int32_t v);
    void writeSignedInt64(std::int64_t v);
    void writeFloat(float v);
    void writeUnsignedVarInt(std::uint32_t v);  // LEB128
    void writeUnsignedVarInt64(std::uint64_t v);
    void writeVarInt(std::int32_t v);      // zigzag
    void writeVarInt64(std::int64_t v);    // zigzag
    void writeString(std::string_view v);  // varint length and the bytes
    void writeRaw(std::string_view v);
    void writeCompoundTag(const CompoundTag& v);  // network form
    void writeFixedTag(const CompoundTag& v);     // little-endian form
    void writeType(const NetworkItem& item);

    [[nodiscard]] std::uint8_t getByte();
    [[nodiscard]] bool getBool();  // a byte above 1 is a fault
    [[nodiscard]] std::uint16_t getUnsignedShort();
    [[nodiscard]] std::int32_t getSignedInt();
    [[nodiscard]] std::int64_t getSignedInt64();
    [[nodiscard]] float getFloat();
    [[nodiscard]] std::uint32_t getUnsignedVarInt();
    [[nodiscard]] std::uint64_t getUnsignedVarInt64();
    [[nodiscard]] std::int32_t getVarInt();
    [[nodiscard]] std::int64_t getVarInt64();
    [[nodiscard]] std::string getString();
    [[nodiscard]] std::string getRaw(std::size_t n);
    [[nodiscard]] CompoundTag getCompoundTag();
    [[nodiscard]] CompoundTag getFixedTag();
    // An element count, refused at once when fewer than `least` bytes per element are left.
    [[nodiscard]] std::uint32_t getCount(std::size_t least = 1);
    void expectEnd() const;  // throws when bytes are left

private:
    [[nodiscard]] std::string_view take(std::size_t n);
    std::string bytes_;
    std::size_t position_ = 0;
};

}  // namespace platform
