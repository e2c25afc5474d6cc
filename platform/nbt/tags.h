// The game's tag tree as plain values: CompoundTag, ListTag and the leaf types, with copy and comparison by content.
// Three forms are read and written: SNBT text, the fixed-width little-endian binary form, and the network form.
// Keys of a compound are kept in byte order, so that equal trees always give equal text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

class Tag;

enum class TagType : std::uint8_t {
    End,
    Byte,
    Short,
    Int,
    Long,
    Float,
    Double,
    ByteArray,
    String,
    List,
    Compound,
    IntArray,
    LongArray
};

// No tree is read deeper than this, in any of the three forms; a deeper one counts as malformed.
inline constexpr int maxtagdepth = 512;

// Elements of one type. An empty list has element type End, unless it was read with another one.
class ListTag {
public:
    ListTag();
    explicit ListTag(TagType element);
    ListTag(const ListTag&);
    ListTag(ListTag&&) noexcept;
    ListTag& operator=(const ListTag&);
    ListTag& operator=(ListTag&&) noexcept;
    ~ListTag();

    [[nodiscard]] TagType elementtype() const { return element_; }
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool empty() const;
    [[nodiscard]] const Tag& operator[](std::size_t i) const;
    [[nodiscard]] Tag& operator[](std::size_t i);
    // Throws std::invalid_argument when the type differs from that of the elements already there.
    void add(Tag value);
    void clear();
    [[nodiscard]] const std::vector<Tag>& items() const { return items_; }
    bool operator==(const ListTag& other) const;

private:
    TagType element_ = TagType::End;
    std::vector<Tag> items_;
};

// The typed getters give the default when the key is missing or holds another type; they never throw.
class CompoundTag {
public:
    struct Entry;

    CompoundTag();
    CompoundTag(const CompoundTag&);
    CompoundTag(CompoundTag&&) noexcept;
    CompoundTag& operator=(const CompoundTag&);
    CompoundTag& operator=(CompoundTag&&) noexcept;
    ~CompoundTag();

    [[nodiscard]] const Tag* get(std::string_view key) const;
    [[nodiscard]] Tag* get(std::string_view key);
    [[nodiscard]] bool contains(std::string_view key) const { return get(key) != nullptr; }
    Tag& put(std::string_view key, Tag value);
    bool erase(std::string_view key);
    void clear();
    [[nodiscard]] bool empty() const;
    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

    [[nodiscard]] std::int8_t getByte(std::string_view key, std::int8_t otherwise = 0) const;
    [[nodiscard]] bool getBoolean(std::string_view key) const { return getByte(key) != 0; }
    [[nodiscard]] std::int16_t getShort(std::string_view key, std::int16_t otherwise = 0) const;
    [[nodiscard]] std::int32_t getInt(std::string_view key, std::int32_t otherwise = 0) const;
    [[nodiscard]] std::int64_t getInt64(std::string_view key, std::int64_t otherwise = 0) const;
    [[nodiscard]] std::string getString(std::string_view key) const;
    [[nodiscard]] const CompoundTag* getCompound(std::string_view key) const;
    [[nodiscard]] CompoundTag* getCompound(std::string_view key);
    [[nodiscard]] const ListTag* getList(std::string_view key) const;
    [[nodiscard]] ListTag* getList(std::string_view key);

    void putByte(std::string_view key, std::int8_t value);
    void putBoolean(std::string_view key, bool value) { putByte(key, value ? 1 : 0); }
    void putShort(std::string_view key, std::int16_t value);
    void putInt(std::string_view key, std::int32_t value);
    void putInt64(std::string_view key, std::int64_t value);
    void putString(std::string_view key, std::string value);
    // The compound or list under the key, made (replacing a value of another type) when it is not there.
    CompoundTag& compound(std::string_view key);
    ListTag& list(std::string_view key);

    [[nodiscard]] std::string toSNBT() const;
    // Nothing when the text is no compound, is malformed, has text left behind it or is nested too deep.
    [[nodiscard]] static std::optional<CompoundTag> fromSNBT(std::string_view text);

    // Both binary forms begin with the root's type byte 10 and its empty name. The fixed-width form has no room for
    // texts above 65535 bytes: toBinary throws std::length_error.
    [[nodiscard]] std::string toBinary() const;
    [[nodiscard]] std::string toNetwork() const;
    // Nothing when malformed, truncated or too deep. `used` takes the number of bytes read; without it bytes that are
    // left over count as malformed.
    [[nodiscard]] static std::optional<CompoundTag> fromBinary(std::string_view bytes, std::size_t* used = nullptr);
    [[nodiscard]] static std::optional<CompoundTag> fromNetwork(std::string_view bytes, std::size_t* used = nullptr);

    bool operator==(const CompoundTag& other) const;

    // Fills a compound with many entries in any order; they are put in order when it ends, and of equal keys the last
    // one stays.
    class Filler {
    public:
        explicit Filler(CompoundTag& tag) : tag_(tag) {}
        ~Filler();
        Filler(const Filler&) = delete;
        Filler& operator=(const Filler&) = delete;
        // Good until the next call.
        Tag& add(std::string key, Tag value);

    private:
        CompoundTag& tag_;
    };

private:
    std::vector<Entry> entries_;
};

// What could be read of a little-endian compound whose tail is broken: everything in front of the first fault.
// Used for hand-kept templates; nothing that comes from a client is read with it. The bytes may start with the root
// header or directly with the first entry.
[[nodiscard]] CompoundTag readtoleranttag(std::string_view bytes);

class Tag {
public:
    using Value =
        std::variant<std::int8_t, std::int16_t, std::int32_t, std::int64_t, float, double, std::vector<std::int8_t>,
                     std::string, ListTag, CompoundTag, std::vector<std::int32_t>, std::vector<std::int64_t>>;

    // A value is a tag. NOLINTBEGIN(bugprone-forwarding-reference-overload): it takes no Tag
    template <class T>
    requires(!std::is_same_v<std::remove_cvref_t<T>, Tag>) && std::is_constructible_v<Value, T&&> Tag(T&& value)
        : value_(std::forward<T>(value)) {}
    // NOLINTEND(bugprone-forwarding-reference-overload)

    [[nodiscard]] TagType type() const { return static_cast<TagType>(value_.index() + 1); }
    template <class T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&value_);
    }
    template <class T>
    [[nodiscard]] T* as() {
        return std::get_if<T>(&value_);
    }
    [[nodiscard]] const Value& value() const { return value_; }
    [[nodiscard]] Value& value() { return value_; }
    [[nodiscard]] std::string toSNBT() const;
    bool operator==(const Tag& other) const = default;

private:
    Value value_;
};

struct CompoundTag::Entry {
    std::string key;
    Tag value;
    bool operator==(const Entry& other) const = default;
};

// A tree holds itself, so that everything which needs the size of a Tag comes behind it.
inline ListTag::ListTag() = default;
inline ListTag::ListTag(TagType element) : element_(element) {}
inline ListTag::ListTag(const ListTag&) = default;
inline ListTag::ListTag(ListTag&&) noexcept = default;
inline ListTag& ListTag::operator=(const ListTag&) = default;
inline ListTag& ListTag::operator=(ListTag&&) noexcept = default;
inline ListTag::~ListTag() = default;
inline std::size_t ListTag::size() const { return items_.size(); }
inline bool ListTag::empty() const { return items_.empty(); }
inline CompoundTag::CompoundTag() = default;
inline CompoundTag::CompoundTag(const CompoundTag&) = default;
inline CompoundTag::CompoundTag(CompoundTag&&) noexcept = default;
inline CompoundTag& CompoundTag::operator=(const CompoundTag&) = default;
inline CompoundTag& CompoundTag::operator=(CompoundTag&&) noexcept = default;
inline CompoundTag::~CompoundTag() = default;
inline bool ListTag::operator==(const ListTag& other) const { return items_ == other.items_; }
inline const Tag& ListTag::operator[](std::size_t i) const { return items_[i]; }
inline Tag& ListTag::operator[](std::size_t i) { return items_[i]; }
inline bool CompoundTag::operator==(const CompoundTag& other) const { return entries_ == other.entries_; }
inline bool CompoundTag::empty() const { return entries_.empty(); }
inline std::size_t CompoundTag::size() const { return entries_.size(); }

}  // namespace platform
