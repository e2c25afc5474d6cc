// The small language in which filters are written, and a filter that is read once for many sources.
//
// A filter is a row of alternatives with "{||}" between them. One that ends in "$" must equal the source, any other
// must be part of it; bytes, case and all. So an empty alternative is part of everything, and a "$" alone equals the
// empty source. An empty filter is one empty alternative; behind a separator at the very end there is none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/shopsystem/textgrams.h"

namespace shopsystem {

struct alternative {
    std::string_view text;  // without its "$"
    bool whole;
    [[nodiscard]] bool passes(std::string_view source) const;
};

// Reads the alternatives of a filter from front to back. The filter must outlive it.
class alternatives {
public:
    explicit alternatives(std::string_view filter) : filter_(filter) {}
    std::optional<alternative> next();

    std::size_t lastflag = 0;  // start of the present alternative
    std::size_t orflag = 0;    // the separator behind it

private:
    std::string_view filter_;
    bool started_ = false;
};

class textfilter {
public:
    // Bytes behind the last text that mark() may read.
    static constexpr std::size_t slack = 64;

    explicit textfilter(const std::string& mfilter);
    [[nodiscard]] bool isset() const { return isset_; }
    [[nodiscard]] bool passes(std::string_view source) const;

    // Texts that lie end to end: text i is [offsets[i], offsets[i + 1]) of `bytes`, so that there is one offset more
    // than there are texts. Sets the bit first + i for each text that passes, and clears none. Bit n is bit n % 64 of
    // the word n / 64; two threads that mark into one row must not share a word.
    void mark(const char* bytes, std::span<const std::uint32_t> offsets, std::span<std::uint64_t> bits,
              std::size_t first) const;
    // The same for the texts of a kind, and without a look at what they are known not to hold. Not by two threads at
    // once: it sees whether that spares anything.
    void mark(const rowtexts& texts, rowtexts::kind of, std::span<std::uint64_t> bits, std::size_t first) const;

private:
    struct part {
        std::string text;
        bool whole;
        std::size_t rare, second;  // where its two rarest bytes stand; one place if it is a single byte
        std::vector<textgrams::gram> grams;
        mutable std::size_t asked = 0, spared = 0;  // texts of which was asked what they cannot hold

        [[nodiscard]] textgrams::rows where(const textgrams& known, rowtexts::kind of, textgrams::rows among) const;
    };
    class stretch;

    template <class Where>
    void mark(const char* bytes, std::span<const std::uint32_t> offsets, std::span<std::uint64_t> bits,
              std::size_t first, const Where& where) const;

    std::vector<part> parts_;
    bool isset_;
};

}  // namespace shopsystem
