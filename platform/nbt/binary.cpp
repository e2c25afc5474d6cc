// The two binary forms of a compound. One reader and one writer serve both; the encodings tell how lengths and whole
// numbers look.
//
//   root     = u8 10, text (empty), entries          entries = { u8 type, text key, payload } u8 0
//   payload  = the number | text | entries | u8 element type, count, payloads | count, numbers
//
// The reader looks at what is left before it believes a count.
#include <bit>
#include <limits>
#include <stdexcept>

#include "platform/binarystream.h"
#include "platform/nbt/tags.h"

namespace platform {

namespace {

struct LittleEndian {
    static constexpr std::size_t leastint = 4, leastlong = 8;
    static std::size_t length(BinaryStream& in) { return in.getUnsignedShort(); }
    static std::int32_t int32(BinaryStream& in) { return in.getSignedInt(); }
    static std::int64_t int64(BinaryStream& in) { return in.getSignedInt64(); }
    static void length(BinaryStream& out, std::size_t n) {
        if (n > std::numeric_limits<std::uint16_t>::max()) {
            throw std::length_error("a text of " + std::to_string(n) + " bytes is too long for a tag");
        }
        out.writeUnsignedShort(static_cast<std::uint16_t>(n));
    }
    static void int32(BinaryStream& out, std::int32_t v) { out.writeSignedInt(v); }
    static void int64(BinaryStream& out, std::int64_t v) { out.writeSignedInt64(v); }
};

struct Network {
    static constexpr std::size_t leastint = 1, leastlong = 1;
    static std::size_t length(BinaryStream& in) { return in.getUnsignedVarInt(); }
    static std::int32_t int32(BinaryStream& in) { return in.getVarInt(); }
    static std::int64_t int64(BinaryStream& in) { return in.getVarInt64(); }
    static void length(BinaryStream& out, std::size_t n) { out.writeUnsignedVarInt(static_cast<std::uint32_t>(n)); }
    static void int32(BinaryStream& out, std::int32_t v) { out.writeVarInt(v); }
    static void int64(BinaryStream& out, std::int64_t v) { out.writeVarInt64(v); }
};

constexpr auto roottype = static_cast<std::uint8_t>(TagType::Compound);

// Containers are filled where they lie, so that a fault leaves what came before it.
template <class Encoding>
class Reader {
public:
    explicit Reader(BinaryStream& in) : in_(in) {}

    [[nodiscard]] CompoundTag root() {
        if (in_.getByte() != roottype) throw ReadError("a tag does not begin with a compound");
        if (!text().empty()) throw ReadError("a tag's root bears a name");
        CompoundTag tag;
        entries(tag, 1);
        return tag;
    }

    void entries(CompoundTag& tag, int depth) {
        checkdepth(depth);
        CompoundTag::Filler filler(tag);
        for (auto type = tagtype(); type != TagType::End; type = tagtype()) {
            payload(type, depth + 1, {&filler, text(), nullptr});
        }
    }

private:
    // Where a tag goes: under a key of a compound, or to the end of a list.
    struct Place {
        CompoundTag::Filler* compound;
        std::string key;
        ListTag* list;

        Tag& operator()(Tag value) {
            if (compound != nullptr) return compound->add(std::move(key), std::move(value));
            list->add(std::move(value));
            return (*list)[list->size() - 1];
        }
    };

    void payload(TagType type, int depth, Place place) {
        switch (type) {
            case TagType::Byte:
                place(byte());
                break;
            case TagType::Short:
                place(static_cast<std::int16_t>(in_.getUnsignedShort()));
                break;
            case TagType::Int:
                place(Encoding::int32(in_));
                break;
            case TagType::Long:
                place(Encoding::int64(in_));
                break;
            case TagType::Float:
                place(in_.getFloat());
                break;
            case TagType::Double:
                place(std::bit_cast<double>(in_.getSignedInt64()));
                break;
            case TagType::ByteArray:
                place(array<std::int8_t>(1, [this] { return byte(); }));
                break;
            case TagType::String:
                place(text());
                break;
            case TagType::List:
                list(depth, place);
                break;
            case TagType::Compound:
                entries(*place(CompoundTag()).template as<CompoundTag>(), depth);
                break;
            case TagType::IntArray:
                place(array<std::int32_t>(Encoding::leastint, [this] { return Encoding::int32(in_); }));
                break;
            case TagType::LongArray:
                place(array<std::int64_t>(Encoding::leastlong, [this] { return Encoding::int64(in_); }));
                break;
            case TagType::End:
                throw ReadError("a list holds tags of no type");
        }
    }

    void list(int depth, Place& place) {
        checkdepth(depth);
        const auto element = tagtype();
        const auto n = count(1);
        auto& items = *place(ListTag(element)).template as<ListTag>();
        for (std::size_t i = 0; i < n; ++i) payload(element, depth + 1, {nullptr, {}, &items});
    }

    template <class Element, class Read>
    std::vector<Element> array(std::size_t least, const Read& read) {
        std::vector<Element> items(count(least));
        for (auto& item : items) item = read();
        return items;
    }

    TagType tagtype() {
        const auto type = in_.getByte();
        if (type > static_cast<std::uint8_t>(TagType::LongArray)) throw ReadError("a tag has an unknown type");
        return static_cast<TagType>(type);
    }
    std::size_t count(std::size_t least) {
        const auto n = Encoding::int32(in_);
        if (n < 0 || static_cast<std::size_t>(n) > in_.unread() / least) {
            throw ReadError("the count of a tag does not fit into the bytes that are left");
        }
        return static_cast<std::size_t>(n);
    }
    static void checkdepth(int depth) {
        if (depth > maxtagdepth) throw ReadError("a tag is nested too deep");
    }
    std::int8_t byte() { return static_cast<std::int8_t>(in_.getByte()); }
    std::string text() { return in_.getRaw(Encoding::length(in_)); }

    BinaryStream& in_;
};

template <class Encoding>
std::optional<CompoundTag> read(std::string_view bytes, std::size_t* used) {
    BinaryStream in{std::string(bytes)};
    try {
        auto tag = Reader<Encoding>(in).root();
        if (used == nullptr) in.expectEnd();
        if (used != nullptr) *used = bytes.size() - in.unread();
        return tag;
    } catch (const ReadError&) {
        return std::nullopt;
    }
}

template <class Encoding>
struct Writer {
    BinaryStream& out;

    void root(const CompoundTag& tag) const {
        out.writeByte(roottype);
        text({});
        (*this)(tag);
    }
    void operator()(std::int8_t v) const { out.writeByte(static_cast<std::uint8_t>(v)); }
    void operator()(std::int16_t v) const { out.writeUnsignedShort(static_cast<std::uint16_t>(v)); }
    void operator()(std::int32_t v) const { Encoding::int32(out, v); }
    void operator()(std::int64_t v) const { Encoding::int64(out, v); }
    void operator()(float v) const { out.writeFloat(v); }
    void operator()(double v) const { out.writeSignedInt64(std::bit_cast<std::int64_t>(v)); }
    void operator()(const std::string& v) const { text(v); }
    template <class Number>
    void operator()(const std::vector<Number>& v) const {
        Encoding::int32(out, static_cast<std::int32_t>(v.size()));
        for (const auto n : v) (*this)(n);
    }
    void operator()(const ListTag& v) const {
        type(v.elementtype());
        Encoding::int32(out, static_cast<std::int32_t>(v.size()));
        for (const auto& item : v.items()) std::visit(*this, item.value());
    }
    void operator()(const CompoundTag& v) const {
        for (const auto& entry : v.entries()) {
            type(entry.value.type());
            text(entry.key);
            std::visit(*this, entry.value.value());
        }
        type(TagType::End);
    }

private:
    void type(TagType t) const { out.writeByte(static_cast<std::uint8_t>(t)); }
    void text(std::string_view v) const {
        Encoding::length(out, v.size());
        out.writeRaw(v);
    }
};

template <class Encoding>
std::string written(const CompoundTag& tag) {
    BinaryStream out;
    Writer<Encoding>{out}.root(tag);
    return out.bytes();
}

}  // namespace

std::string CompoundTag::toBinary() const { return written<LittleEndian>(*this); }
std::string CompoundTag::toNetwork() const { return written<Network>(*this); }
std::optional<CompoundTag> CompoundTag::fromBinary(std::string_view bytes, std::size_t* used) {
    return read<LittleEndian>(bytes, used);
}
std::optional<CompoundTag> CompoundTag::fromNetwork(std::string_view bytes, std::size_t* used) {
    return read<Network>(bytes, used);
}

void BinaryStream::writeCompoundTag(const CompoundTag& v) { Writer<Network>{*this}.root(v); }
void BinaryStream::writeFixedTag(const CompoundTag& v) { Writer<LittleEndian>{*this}.root(v); }
CompoundTag BinaryStream::getCompoundTag() { return Reader<Network>(*this).root(); }
CompoundTag BinaryStream::getFixedTag() { return Reader<LittleEndian>(*this).root(); }

CompoundTag readtoleranttag(std::string_view bytes) {
    constexpr std::string_view rootheader("\x0a\0\0", 3);
    if (bytes.starts_with(rootheader)) bytes.remove_prefix(rootheader.size());
    BinaryStream in{std::string(bytes)};
    CompoundTag tag;
    try {
        Reader<LittleEndian>(in).entries(tag, 1);
    } catch (const ReadError&) {
        // what stands in `tag` came before the fault
    }
    return tag;
}

}  // namespace platform
