// Packets to bytes and back. A packet describes its body once, as `template <class IO> void fields(IO& io)`, a row of
// calls in wire order; run over a PacketWriter it appends, run over a PacketReader it fills. Reading refuses with
// ReadError what is truncated, has bytes left over, or holds a value that its kind does not allow: a number that the
// wire does not know, a text that is not UTF-8. Writing takes what it is given.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/binarystream.h"
#include "platform/packets/networkitem.h"
#include "platform/packets/packet.h"
#include "platform/position.h"
#include "platform/utf8.h"

namespace platform {

struct AnyCount {
    void operator()(std::size_t) const {}
};

class PacketWriter {
public:
    static constexpr bool reads = false;

    void u8(std::uint8_t v) { out_.writeByte(v); }
    void i8(std::int8_t v) { out_.writeByte(static_cast<std::uint8_t>(v)); }
    void boolean(bool v) { out_.writeBool(v); }
    void u16(std::uint16_t v) { out_.writeUnsignedShort(v); }
    void i32(std::int32_t v) { out_.writeSignedInt(v); }
    void i64(std::int64_t v) { out_.writeSignedInt64(v); }
    void f32(float v) { out_.writeFloat(v); }
    void varint(std::uint32_t v) { out_.writeUnsignedVarInt(v); }
    void varint64(std::uint64_t v) { out_.writeUnsignedVarInt64(v); }
    void zigzag32(std::int32_t v) { out_.writeVarInt(v); }
    void zigzag64(std::int64_t v) { out_.writeVarInt64(v); }
    void text(const std::string& v) { out_.writeString(v); }
    void bytes(const std::array<std::uint8_t, 16>& v) {
        for (const auto b : v) u8(b);
    }
    void networktag(const CompoundTag& v) { out_.writeCompoundTag(v); }
    void fixedtag(const CompoundTag& v) { out_.writeFixedTag(v); }
    void shorttext(const std::string& v);

    // What must hold of the value before it; looked at by a reader only.
    void demand(bool, const char*) {}

    // A varint count and the elements. `least`: the fewest bytes that one element can have. `allow`: throws for a count
    // that is too high, before anything is made of it.
    template <class T, class Each, class Allow = AnyCount>
    void list(std::vector<T>& items, std::size_t, Each each, Allow = {}) {
        varint(static_cast<std::uint32_t>(items.size()));
        for (auto& item : items) each(*this, item);
    }
    // The same with an i32 count.
    template <class T, class Each>
    void fixedlist(std::vector<T>& items, std::size_t, Each each) {
        i32(static_cast<std::int32_t>(items.size()));
        for (auto& item : items) each(*this, item);
    }
    // A bool, and the value if it is true.
    template <class T, class Each>
    void optional(std::optional<T>& value, Each each) {
        boolean(value.has_value());
        if (value) each(*this, *value);
    }
    // A varint length, and exactly that many bytes for the inner fields.
    template <class Inner>
    void sized(Inner inner) {
        PacketWriter io;
        inner(io);
        out_.writeString(io.out_.bytes());
    }

    [[nodiscard]] BinaryStream& stream() { return out_; }

private:
    BinaryStream out_;
};

class PacketReader {
public:
    static constexpr bool reads = true;
    explicit PacketReader(std::string bytes) : in_(std::move(bytes)) {}

    void u8(std::uint8_t& v) { v = in_.getByte(); }
    void i8(std::int8_t& v) { v = static_cast<std::int8_t>(in_.getByte()); }
    void boolean(bool& v) { v = in_.getBool(); }
    void u16(std::uint16_t& v) { v = in_.getUnsignedShort(); }
    void i32(std::int32_t& v) { v = in_.getSignedInt(); }
    void i64(std::int64_t& v) { v = in_.getSignedInt64(); }
    void f32(float& v) { v = in_.getFloat(); }
    void varint(std::uint32_t& v) { v = in_.getUnsignedVarInt(); }
    void varint64(std::uint64_t& v) { v = in_.getUnsignedVarInt64(); }
    void zigzag32(std::int32_t& v) { v = in_.getVarInt(); }
    void zigzag64(std::int64_t& v) { v = in_.getVarInt64(); }
    void text(std::string& v) {
        v = in_.getString();
        demand(isutf8(v), "a text that is not UTF-8");
    }
    void bytes(std::array<std::uint8_t, 16>& v) {
        for (auto& b : v) u8(b);
    }
    void networktag(CompoundTag& v) { v = in_.getCompoundTag(); }
    void fixedtag(CompoundTag& v) { v = in_.getFixedTag(); }
    void shorttext(std::string& v) { v = in_.getRaw(in_.getUnsignedShort()); }
    void demand(bool holds, const char* complaint) {
        if (!holds) throw ReadError(complaint);
    }

    template <class T, class Each, class Allow = AnyCount>
    void list(std::vector<T>& items, std::size_t least, Each each, Allow allow = {}) {
        const auto n = in_.getCount(least);
        allow(n);
        elements(items, n, each);
    }
    template <class T, class Each>
    void fixedlist(std::vector<T>& items, std::size_t least, Each each) {
        const auto n = in_.getSignedInt();
        if (n < 0 || static_cast<std::size_t>(n) > in_.unread() / least) {
            throw ReadError("a count does not fit into the bytes that are left");
        }
        elements(items, static_cast<std::uint32_t>(n), each);
    }
    template <class T, class Each>
    void optional(std::optional<T>& value, Each each) {
        value.reset();
        if (in_.getBool()) each(*this, value.emplace());
    }
    template <class Inner>
    void sized(Inner inner) {
        PacketReader io(in_.getString());
        inner(io);
        io.in_.expectEnd();
    }

    [[nodiscard]] BinaryStream& stream() { return in_; }

private:
    template <class T, class Each>
    void elements(std::vector<T>& items, std::uint32_t n, Each each) {
        items.clear();
        while (n-- > 0) each(*this, items.emplace_back());
    }
    BinaryStream in_;
};

// ---- pieces that several packets share

template <class IO>
void blockposition(IO& io, BlockPos& pos) {
    io.zigzag32(pos.x);
    auto y = static_cast<std::uint32_t>(pos.y);
    io.varint(y);
    pos.y = static_cast<std::int32_t>(y);
    io.zigzag32(pos.z);
}

// An open container's number, in one byte or as a varint. The wire knows numbers below zero, for screens that nobody
// here has.
template <class IO>
void containernumber(IO& io, std::uint8_t& id) {
    io.u8(id);
    io.demand(id <= 127, "a container id above 127");
}
template <class IO>
void containernumber(IO& io, std::uint32_t& id) {
    io.varint(id);
    io.demand(id <= 127, "a container id above 127");
}

inline constexpr auto textelement = [](auto& io, std::string& text) { io.text(text); };
inline constexpr auto itemelement = [](auto& io, NetworkItem& item) { itemfields(io, item, true); };
inline constexpr auto creativeitemelement = [](auto& io, NetworkItem& item) { itemfields(io, item, false); };

extern template void itemfields(PacketWriter&, NetworkItem&, bool);
extern template void itemfields(PacketReader&, NetworkItem&, bool);

// ---- whole packets

template <class P>
[[nodiscard]] Packet topacket(const P& packet) {
    PacketWriter io;
    // A description works in both directions and so takes its packet as changeable; the writer only looks.
    const_cast<P&>(packet).fields(io);
    return {P::number, io.stream().bytes()};
}

template <class P>
[[nodiscard]] P readpacket(std::string_view body, std::uint8_t subclient = 0) {
    P packet;
    PacketReader io{std::string(body)};
    packet.fields(io);
    io.stream().expectEnd();
    if constexpr (requires { packet.subclient; }) packet.subclient = subclient;
    return packet;
}

// ---- the header, one varint: number in the low 10 bits, then 2 bits of sender and 2 of target sub-client

struct Envelope {
    int number = 0;  // a PacketId, or any other number below 1024
    std::uint8_t sender = 0, target = 0;
    std::string_view body;  // within the bytes that were read
};

[[nodiscard]] std::string sealpacket(const Packet& packet, std::uint8_t sender = 0, std::uint8_t target = 0);
[[nodiscard]] Envelope openpacket(std::string_view bytes);

}  // namespace platform
