#include "host/world/stacks.h"

#include <fmt/format.h>

#include <stdexcept>

#include "platform/logger.h"

namespace host {

std::string encodestack(const platform::ItemStack& stack) { return stack.save().toBinary(); }

platform::ItemStack decodestack(const std::string& bytes, const std::string& where) {
    const auto tag = platform::CompoundTag::fromBinary(bytes);
    if (!tag) throw std::runtime_error(fmt::format("{}: the stored stack is damaged", where));
    auto stack = platform::ItemStack::fromTag(*tag);
    if (stack.isNull())
        platform::Logger("Server").warn("{}: unknown item \"{}\", left out", where, tag->getString("Name"));
    return stack;
}

}  // namespace host
