// Any text as SNBT, and any bytes as a binary tag: what is read goes through the text form and comes back the same.
#include <cstdint>
#include <cstdlib>

#include "platform/nbt/tags.h"

using platform::CompoundTag;

namespace {

void roundtrip(const CompoundTag& tag) {
    const auto text = tag.toSNBT();
    const auto again = CompoundTag::fromSNBT(text);
    // by text, since a NaN is not equal to itself
    if (!again || again->toSNBT() != text) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto tag = CompoundTag::fromSNBT(bytes)) roundtrip(*tag);
    if (const auto tag = CompoundTag::fromBinary(bytes)) {
        roundtrip(*tag);
        if (CompoundTag::fromBinary(tag->toBinary())->toBinary() != tag->toBinary()) std::abort();
    }
    if (const auto tag = CompoundTag::fromNetwork(bytes)) roundtrip(*tag);
    roundtrip(platform::readtoleranttag(bytes));
    return 0;
}
