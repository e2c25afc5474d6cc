#include "plugin/shopsystem/textgrams.h"

#include <algorithm>
#include <bit>

namespace shopsystem {

namespace {

constexpr std::size_t gramsize = 3;

template <class Body>
void foreachgram(std::string_view text, Body&& body) {
    textgrams::gram last = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        last = (last << 8 | static_cast<unsigned char>(text[at])) & 0xffffff;
        if (at + 1 >= gramsize) body(last);
    }
}

std::size_t placeof(textgrams::gram gram, rowtexts::kind in, std::size_t places) {
    const std::uint32_t spread = (gram | std::uint32_t{in} << 24) * 0x9e3779b1U;
    return spread * std::uint64_t{places} >> 32;
}

}  // namespace

textgrams::textgrams(const rowtexts& of) : tables_(of.rows() * bytesofrow) {
    for (std::size_t first = 0; first < of.rows(); first += rowsoftable) {
        const auto count = std::min(rowsoftable, of.rows() - first), places = count * bytesofrow;
        auto* const table = &tables_[first * bytesofrow];
        for (std::size_t row = 0; row < count; ++row) {
            const auto bit = static_cast<std::uint8_t>(1U << row / rowsofbit);
            for (const auto kind : {rowtexts::name, rowtexts::describe})
                foreachgram(of.at(kind, first + row), [&](gram each) { table[placeof(each, kind, places)] |= bit; });
        }
    }
}

// From the first bit to the last, since one long look costs less than some short ones.
textgrams::rows textgrams::where(std::span<const gram> all, rowtexts::kind in, std::size_t first) const {
    const auto begin = first * bytesofrow, places = std::min(rowsoftable * bytesofrow, tables_.size() - begin);
    unsigned there = 0xff;
    for (auto each = all.begin(); each != all.end() && there != 0; ++each)
        there &= tables_[begin + placeof(*each, in, places)];
    const auto row = [&](int bit) {
        return first + std::min(places / bytesofrow, rowsofbit * static_cast<std::size_t>(bit));
    };
    return {row(std::countr_zero(there)), row(static_cast<int>(std::bit_width(there)))};
}

std::vector<textgrams::gram> textgrams::of(std::string_view text) {
    std::vector<gram> all;
    foreachgram(text, [&](gram each) { all.push_back(each); });
    return all;
}

}  // namespace shopsystem
