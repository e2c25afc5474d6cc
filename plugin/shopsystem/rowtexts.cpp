#include "plugin/shopsystem/rowtexts.h"

#include <cstring>

#include "plugin/shopsystem/textfilter.h"
#include "plugin/shopsystem/textgrams.h"

namespace shopsystem {

void rowtexts::makeroom(std::size_t rows, std::size_t bytes) {
    bytes_ = std::make_unique_for_overwrite<char[]>(bytes + textfilter::slack);
    std::memset(bytes_.get() + bytes, 0, textfilter::slack);
    offsets_.reserve(rows * kinds + 1);
    offsets_.push_back(0);
}

std::shared_ptr<const rowtexts> rowtexts::joined(std::span<const stretch> pieces) {
    std::size_t rows = 0, bytes = 0;
    for (const auto& [of, first, count] : pieces) {
        rows += count;
        for (std::uint8_t k = 0; k < kinds; ++k) {
            const auto offsets = of->offsets(static_cast<kind>(k));
            bytes += offsets[first + count] - offsets[first];
        }
    }
    auto made = std::make_shared<rowtexts>();
    made->makeroom(rows, bytes);
    std::uint32_t at = 0;
    for (std::uint8_t k = 0; k < kinds; ++k)
        for (const auto& [of, first, count] : pieces) {
            const auto offsets = of->offsets(static_cast<kind>(k)).subspan(first, count + 1);
            const auto length = offsets.back() - offsets.front();
            std::memcpy(made->bytes_.get() + at, of->bytes() + offsets.front(), length);
            for (const auto end : offsets.subspan(1)) made->offsets_.push_back(at + (end - offsets.front()));
            at += length;
        }
    return made;
}

const textgrams* rowtexts::grams() const {
    constexpr std::uint32_t often = 16;
    if (searched_.load(std::memory_order_relaxed) < often) {
        searched_.fetch_add(1, std::memory_order_relaxed);
        return nullptr;
    }
    std::call_once(making_, [this] { grams_ = std::make_unique<const textgrams>(*this); });
    return grams_.get();
}

void textbuilder::add(std::string_view name, std::string_view describe, std::string_view stack) {
    const std::string_view texts[] = {name, describe, stack};
    for (std::size_t k = 0; k < rowtexts::kinds; ++k) {
        columns_[k].bytes += texts[k];
        columns_[k].ends.push_back(columns_[k].bytes.size());
    }
}

std::shared_ptr<const rowtexts> textbuilder::finish() const {
    std::size_t bytes = 0;
    for (const auto& each : columns_) bytes += each.bytes.size();
    auto made = std::make_shared<rowtexts>();
    made->makeroom(columns_[0].ends.size(), bytes);
    std::size_t at = 0;
    for (const auto& each : columns_) {
        std::memcpy(made->bytes_.get() + at, each.bytes.data(), each.bytes.size());
        for (const auto end : each.ends) made->offsets_.push_back(static_cast<std::uint32_t>(at + end));
        at += each.bytes.size();
    }
    return made;
}

}  // namespace shopsystem
