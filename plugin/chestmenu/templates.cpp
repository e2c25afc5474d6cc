// The templates, put together while compiling from what they say; their lengths are fixed.
#include "plugin/chestmenu/templates.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/nbt/tags.h"

namespace ordomart::templates {

namespace {

using platform::TagType;

// ---- bytes put together while compiling

template <std::size_t N>
using bytes = std::array<char, N>;

template <std::size_t... N>
constexpr auto joined(const bytes<N>&... parts) {
    bytes<(N + ...)> all{};
    auto* place = all.data();
    ((place = std::copy(parts.begin(), parts.end(), place)), ...);
    return all;
}

template <std::size_t Size>
constexpr auto number(std::int64_t value) {
    bytes<Size> out{};
    for (std::size_t i = 0; i < Size; ++i) out[i] = static_cast<char>(value >> (8 * i) & 0xff);
    return out;
}

template <std::size_t N>
constexpr auto text(const char (&value)[N]) {
    bytes<N - 1> out{};
    std::copy(value, value + N - 1, out.begin());
    return joined(number<2>(N - 1), out);
}

constexpr auto typebyte(TagType type) { return number<1>(static_cast<std::int64_t>(type)); }

template <std::size_t N>
constexpr auto head(TagType type, const char (&name)[N]) {
    return joined(typebyte(type), text(name));
}

template <std::size_t N>
constexpr auto byteof(const char (&name)[N], int value) {
    return joined(head(TagType::Byte, name), number<1>(value));
}
template <std::size_t N>
constexpr auto shortof(const char (&name)[N], int value) {
    return joined(head(TagType::Short, name), number<2>(value));
}
template <std::size_t N>
constexpr auto intof(const char (&name)[N], int value) {
    return joined(head(TagType::Int, name), number<4>(value));
}
template <std::size_t N, std::size_t M>
constexpr auto stringof(const char (&name)[N], const char (&value)[M]) {
    return joined(head(TagType::String, name), text(value));
}

constexpr auto end = typebyte(TagType::End);

template <std::size_t N, std::size_t... M>
constexpr auto compoundof(const char (&name)[N], const bytes<M>&... entries) {
    return joined(head(TagType::Compound, name), entries..., end);
}

// Compounds in a list have neither type byte nor name.
template <std::size_t N, std::size_t... M>
constexpr auto listof(const char (&name)[N], const bytes<M>&... elements) {
    return joined(head(TagType::List, name), typebyte(sizeof...(elements) == 0 ? TagType::End : TagType::Compound),
                  number<4>(sizeof...(elements)), elements...);
}

template <std::size_t N>
constexpr auto tail(const unsigned char (&raw)[N]) {
    bytes<N> out{};
    std::copy(raw, raw + N, out.begin());
    return out;
}

// ---- the chests

template <std::size_t N, std::size_t M>
constexpr auto stackentry(int slot, const char (&item)[N], int damage, const char (&shown)[M]) {
    return joined(byteof("Count", 1), shortof("Damage", damage), stringof("Name", item), byteof("Slot", slot),
                  byteof("WasPickedUp", 0),
                  compoundof("tag", intof("RepairCost", 0), compoundof("display", stringof("Name", shown))), end);
}

constexpr auto chestblock = compoundof("Block", stringof("name", "minecraft:chest"),
                                       compoundof("states", intof("facing_direction", 0)), intof("version", 17959425));

template <std::size_t N>
constexpr auto chestwith(const bytes<N>& items) {
    return joined(byteof("Findable", 0), items, stringof("id", "Chest"), byteof("isMovable", 1));
}

constexpr auto emptychest = chestwith(listof("Items"));

constexpr auto fullbytes =
    joined(stringof("CustomName", "ONLINE CHESTMENU"),
           chestwith(listof("Items", stackentry(0, "minecraft:emerald", 0, "shopmenu"),
                            stackentry(1, "minecraft:skull", 3, "openselfshop"),
                            joined(chestblock, stackentry(2, "minecraft:chest", 0, "nearbychestmenu")))),
           tail({0x03, 0x01, 0x00, 0x78, 0x5f, 0x00, 0x00, 0x03, 0x01, 0x00, 0x79, 0x00,
                 0x00, 0x00, 0x03, 0x01, 0x00, 0x7a, 0x4a, 0x00, 0x00, 0x00, 0x00}));
static_assert(fullbytes.size() == 557);

constexpr auto nearbytes = joined(stringof("CustomName", "nearbymenu"), emptychest,
                                  tail({0x03, 0x01, 0x00, 0x78, 0x61, 0x00, 0x00, 0x03, 0x01, 0x00, 0x79, 0x00,
                                        0x00, 0x00, 0x03, 0x01, 0x00, 0x7a, 0x4c, 0x00, 0x00, 0x00, 0x00}));
static_assert(nearbytes.size() == 98);

constexpr auto plainbytes =
    joined(emptychest, tail({0x03, 0x01, 0x00, 0x78, 0x03, 0x01, 0x00, 0x79, 0x68, 0x00, 0x00,
                             0x00, 0x03, 0x01, 0x00, 0x7a, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00}));
static_assert(plainbytes.size() == 72);

constexpr auto pairtail = tail({0x03, 0x05, 0x00, 0x70, 0x61, 0x69, 0x72, 0x78, 0x03, 0x05, 0x00, 0x70, 0x61, 0x69,
                                0x72, 0x7a, 0x04, 0x00, 0x00, 0x00, 0x03, 0x01, 0x00, 0x78, 0x03, 0x01, 0x00, 0x79,
                                0x67, 0x00, 0x00, 0x00, 0x03, 0x01, 0x00, 0x7a, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00});
constexpr auto leaderbytes = joined(emptychest, byteof("pairlead", 1), pairtail);
constexpr auto followerbytes = joined(emptychest, byteof("pairlead", 0), pairtail);
static_assert(leaderbytes.size() == 104 && followerbytes.size() == 104);

// ---- the stack; ends in one zero byte more than a compound needs

constexpr auto stackbytes = joined(byteof("Count", 1), shortof("Damage", 3), stringof("Name", "minecraft:skull"),
                                   byteof("WasPickedUp", 0), end, number<1>(0));
static_assert(stackbytes.size() == 61);

template <std::size_t N>
constexpr std::string_view view(const bytes<N>& whole) {
    return {whole.data(), N};
}

}  // namespace

constinit const std::string_view fullchest = view(fullbytes), nearchest = view(nearbytes),
                                 plainchest = view(plainbytes), pairleader = view(leaderbytes),
                                 pairfollower = view(followerbytes), basestack = view(stackbytes);

}  // namespace ordomart::templates
