// What some texts cannot hold, so that a search skips them unseen. A "gram" is three bytes in a row, in a name or in a
// description. Each 512 rows have a table of 2,048 bytes (fewer rows a smaller one, four bytes a row), in which every
// gram has its place, shared with others. Bit i of the byte there is set when such a gram stands in the i-th 64 of the
// rows. So a text stands at most where all of its grams may, and one of less than three bytes may stand everywhere.
// Never changed, and reached from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "plugin/shopsystem/rowtexts.h"

namespace shopsystem {

class textgrams {
public:
    using gram = std::uint32_t;
    static constexpr std::size_t rowsofbit = 64, rowsoftable = 8 * rowsofbit;
    struct rows {
        std::size_t begin, end;
        bool operator==(const rows&) const = default;
    };

    explicit textgrams(const rowtexts& of);
    // Of the rows of the table that begins with `first`, those outside which no text of the kind (any but stacks) has
    // them all; the end is not behind the beginning where there are none.
    [[nodiscard]] rows where(std::span<const gram> all, rowtexts::kind in, std::size_t first) const;

    [[nodiscard]] static std::vector<gram> of(std::string_view text);

private:
    static constexpr std::size_t bytesofrow = 4;
    std::vector<std::uint8_t> tables_;  // end to end
};

}  // namespace shopsystem
