// The texts of some rows: all names, then all descriptions, then all stacks, each kind end to end, so that a search
// goes through them in one piece however short the shops are. Never changed, and reached from any thread; with what
// they cannot hold beside them once they are searched often.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace shopsystem {

class textgrams;

class rowtexts {
public:
    enum kind : std::uint8_t { name, describe, stack, kinds };

    // Some rows of another one.
    struct stretch {
        const rowtexts* of;
        std::size_t first, rows;
    };
    [[nodiscard]] static std::shared_ptr<const rowtexts> joined(std::span<const stretch> pieces);

    [[nodiscard]] std::size_t rows() const { return offsets_.size() / kinds; }
    [[nodiscard]] std::string_view at(kind of, std::size_t row) const {
        const auto* const offset = &offsets_[of * rows() + row];
        return {bytes() + offset[0], offset[1] - offset[0]};
    }
    // Text i of a kind is [offsets[i], offsets[i + 1]) of the bytes, behind which textfilter::slack more can be read.
    [[nodiscard]] const char* bytes() const { return bytes_.get(); }
    [[nodiscard]] std::span<const std::uint32_t> offsets(kind of) const {
        return std::span(offsets_).subspan(of * rows(), rows() + 1);
    }
    // To be asked for by each search of names or descriptions. Null until they were searched so often that the making,
    // which costs as much as some ten searches, is worth it: texts beside a shop that changes all the time never are.
    [[nodiscard]] const textgrams* grams() const;

private:
    friend class textbuilder;
    void makeroom(std::size_t rows, std::size_t bytes);

    std::unique_ptr<char[]> bytes_;
    std::vector<std::uint32_t> offsets_;  // of all kinds; each begins where the one before ends
    mutable std::atomic<std::uint32_t> searched_ = 0;
    mutable std::once_flag making_;
    mutable std::unique_ptr<const textgrams> grams_;
};

// Puts texts together, row by row.
class textbuilder {
public:
    void add(std::string_view name, std::string_view describe, std::string_view stack);
    [[nodiscard]] std::shared_ptr<const rowtexts> finish() const;

private:
    struct column {
        std::string bytes;
        std::vector<std::size_t> ends;
    };
    column columns_[rowtexts::kinds];
};

}  // namespace shopsystem
