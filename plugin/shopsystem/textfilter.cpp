// Reading of filters, and the search through many texts at once.
//
// The search looks for the two rarest bytes of an alternative at their distance, in many positions at a time, and looks
// closer only where both stand. It does not know of texts until then, so short texts cost no more than long ones.
#include "plugin/shopsystem/textfilter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace shopsystem {

namespace {

constexpr std::string_view separator = "{||}";

// How common a byte is in names and descriptions, English and Chinese. Only the order counts, and only for speed.
constexpr auto commonness = [] {
    std::array<unsigned char, 256> table{};
    const auto range = [&](int from, int to, int weight) {
        for (int byte = from; byte <= to; ++byte) table[byte] = static_cast<unsigned char>(weight);
    };
    range(0x20, 0x7e, 40);
    range('0', '9', 85);
    range('A', 'Z', 60);
    range(0x80, 0xbf, 90);   // second and third bytes of characters
    range(0xb8, 0xbd, 110);  // the most common among the second
    range(0xe3, 0xe3, 120);
    range(0xe4, 0xe6, 240);
    range(0xe7, 0xe9, 210);
    range(0xef, 0xef, 120);
    int weight = 255;
    for (const char letter : std::string_view(" etaoinsrhldcumfpgwy_bv:k.,xjqz")) {
        table[static_cast<unsigned char>(letter)] = static_cast<unsigned char>(weight);
        weight -= 6;
    }
    return table;
}();

// The places of the two rarest bytes; the second is another byte where there is one, and rather far from
// the first, since neighbours are often found together.
std::pair<std::size_t, std::size_t> rarest(std::string_view text) {
    const auto weight = [&](std::size_t at) { return commonness[static_cast<unsigned char>(text[at])]; };
    std::size_t rare = 0;
    for (std::size_t at = 1; at < text.size(); ++at)
        if (weight(at) < weight(rare)) rare = at;
    std::size_t second = rare == 0 && text.size() > 1 ? 1 : 0;
    const auto score = [&](std::size_t at) { return weight(at) + (text[at] == text[rare] ? 256 : 0); };
    for (std::size_t at = second + 1; at < text.size(); ++at)
        if (at != rare && score(at) <= score(second)) second = at;
    return {rare, second};
}

// Positions that are looked at together. The loops over them are written for the compiler to turn into wide
// instructions: a fixed count, no way out, bytes only.
constexpr std::size_t block = 64;
static_assert(textfilter::slack >= block);

constexpr auto bitofplace = [] {
    std::array<unsigned char, block> table{};
    for (std::size_t i = 0; i < block; ++i) table[i] = static_cast<unsigned char>(1 << i % 8);
    return table;
}();

struct bytepair {
    const char *at, *other;
    char byte, otherbyte;
};

// The first block from `from` on, in steps of a block and before `end`, where the pair stands anywhere.
[[gnu::always_inline]] inline std::size_t nextblock(const bytepair& pair, std::size_t from, std::size_t end) {
    const char byte = pair.byte, otherbyte = pair.otherbyte;
    for (; from < end; from += block) {
        const char *const x = pair.at + from, *const y = pair.other + from;
        unsigned char any = 0;
        for (std::size_t i = 0; i < block; ++i) any |= static_cast<unsigned char>((x[i] == byte) & (y[i] == otherbyte));
        if (any != 0) break;
    }
    return from;
}
// Bit i: both stand at from + i.
[[gnu::always_inline]] inline std::uint64_t placesinblock(const bytepair& pair, std::size_t from) {
    const char *const x = pair.at + from, *const y = pair.other + from;
    std::array<unsigned char, block> here;
    for (std::size_t i = 0; i < block; ++i)
        here[i] = static_cast<unsigned char>(-((x[i] == pair.byte) & (y[i] == pair.otherbyte)) & bitofplace[i]);
    std::uint64_t places = 0;
    for (std::size_t i = 0; i < block; i += 8) {
        std::uint64_t eight;
        std::memcpy(&eight, &here[i], sizeof eight);
        places |= (eight * 0x0101010101010101 >> 56) << i;  // the sum of its bytes, in whatever order they lie
    }
    return places;
}

// The same code for processors with wider instructions than every one has.
struct width {
    std::size_t (*nextblock)(const bytepair&, std::size_t, std::size_t);
    std::uint64_t (*placesinblock)(const bytepair&, std::size_t);
};
constexpr width everywhere{
    [](const bytepair& pair, std::size_t from, std::size_t end) { return nextblock(pair, from, end); },
    [](const bytepair& pair, std::size_t from) { return placesinblock(pair, from); }};
#if defined(__x86_64__) && defined(__GNUC__)
[[gnu::target("avx2")]] std::size_t nextwide(const bytepair& pair, std::size_t from, std::size_t end) {
    return nextblock(pair, from, end);
}
[[gnu::target("avx2")]] std::uint64_t placeswide(const bytepair& pair, std::size_t from) {
    return placesinblock(pair, from);
}
const width& widest() {
    static constexpr width avx2{&nextwide, &placeswide};
    static const bool iswide = __builtin_cpu_supports("avx2") != 0;
    return iswide ? avx2 : everywhere;
}
#else
const width& widest() { return everywhere; }
#endif

}  // namespace

bool alternative::passes(std::string_view source) const {
    return whole ? source == text : source.find(text) != std::string_view::npos;
}

std::optional<alternative> alternatives::next() {
    if (std::exchange(started_, true)) {
        if (orflag == std::string_view::npos) return std::nullopt;
        lastflag = orflag + separator.size();
        if (lastflag >= filter_.size()) return std::nullopt;
    }
    orflag = filter_.find(separator, lastflag);
    alternative read{filter_.substr(lastflag, orflag - lastflag), false};
    read.whole = read.text.ends_with('$');
    if (read.whole) read.text.remove_suffix(1);
    return read;
}

// Texts that are searched for every alternative before the next ones are: few enough to stay in the nearest cache.
class textfilter::stretch {
public:
    static constexpr std::size_t texts = textgrams::rowsoftable;

    stretch(const char* bytes, std::span<const std::uint32_t> offsets, std::span<std::uint64_t> bits, std::size_t first)
        : bytes_(bytes), offsets_(offsets), bits_(bits), first_(first) {}

    void mark(const part& wanted) const {
        if (wanted.whole)
            markequal(wanted.text);
        else if (wanted.text.empty())
            for (std::size_t text = 0; text < count(); ++text) set(text);
        else
            markcontaining(wanted);
    }

private:
    [[nodiscard]] std::size_t count() const { return offsets_.size() - 1; }
    void set(std::size_t text) const {
        const std::size_t bit = first_ + text;
        bits_[bit / 64] |= std::uint64_t{1} << bit % 64;
    }

    void markequal(std::string_view wanted) const {
        for (std::size_t text = 0; text < count(); ++text) {
            const std::string_view source(bytes_ + offsets_[text], offsets_[text + 1] - offsets_[text]);
            if (source == wanted) set(text);
        }
    }

    void markcontaining(const part& wanted) const {
        const std::size_t length = wanted.text.size(), start = offsets_.front(), end = offsets_.back();
        if (end - start < length) return;
        const std::size_t behind = end - length + 1;  // a match starts before it, so that no read passes end + slack
        const bytepair pair{bytes_ + wanted.rare, bytes_ + wanted.second, wanted.text[wanted.rare],
                            wanted.text[wanted.second]};
        std::size_t text = 0;
        const auto& wide = widest();
        for (std::size_t from = start, next = start;; from = std::max(from + block, next)) {
            from = wide.nextblock(pair, from, behind);
            if (from >= behind) return;
            for (auto places = wide.placesinblock(pair, from); places != 0; places &= notbefore(next - from)) {
                const std::size_t at = from + std::countr_zero(places);
                if (at >= behind) return;
                while (offsets_[text + 1] <= at) ++text;
                const std::size_t textend = offsets_[text + 1];
                const bool fits = length <= textend - at;
                const bool hit = fits && std::memcmp(bytes_ + at, wanted.text.data(), length) == 0;
                if (hit) set(text);
                next = hit || !fits ? textend : at + 1;  // no match can begin in what lies between
            }
        }
    }
    static std::uint64_t notbefore(std::size_t place) { return place < block ? ~std::uint64_t{0} << place : 0; }

    const char* bytes_;
    std::span<const std::uint32_t> offsets_;
    std::span<std::uint64_t> bits_;
    std::size_t first_;
};

textfilter::textfilter(const std::string& mfilter) : isset_(!mfilter.empty()) {
    alternatives filter(mfilter);
    while (const auto read = filter.next()) {
        const auto [rare, second] = rarest(read->text);
        parts_.push_back({std::string(read->text), read->whole, rare, second, textgrams::of(read->text)});
    }
}

bool textfilter::passes(std::string_view source) const {
    return std::any_of(parts_.begin(), parts_.end(), [&](const part& one) {
        return alternative{one.text, one.whole}.passes(source);
    });
}

// What stands nearly everywhere is looked for everywhere: to be told so, table by table, costs more than it spares.
textgrams::rows textfilter::part::where(const textgrams& known, rowtexts::kind of, textgrams::rows among) const {
    constexpr std::size_t enough = 16 * textgrams::rowsoftable, worthwhile = 5;
    if (asked >= enough && spared * worthwhile < asked) return among;
    const auto there = known.where(grams, of, among.begin);
    asked += among.end - among.begin;
    spared += among.end - among.begin - (there.begin < there.end ? there.end - there.begin : 0);
    return there;
}

template <class Where>
void textfilter::mark(const char* bytes, std::span<const std::uint32_t> offsets, std::span<std::uint64_t> bits,
                      std::size_t first, const Where& where) const {
    const std::size_t count = offsets.size() - 1;
    for (std::size_t text = 0; text < count; text += stretch::texts)
        for (const part& one : parts_) {
            const auto [begin, end] = where(one, textgrams::rows{text, std::min(text + stretch::texts, count)});
            if (begin < end) stretch(bytes, offsets.subspan(begin, end - begin + 1), bits, first + begin).mark(one);
        }
}

void textfilter::mark(const char* bytes, std::span<const std::uint32_t> offsets, std::span<std::uint64_t> bits,
                      std::size_t first) const {
    mark(bytes, offsets, bits, first, [](const part&, textgrams::rows all) { return all; });
}

void textfilter::mark(const rowtexts& texts, rowtexts::kind of, std::span<std::uint64_t> bits,
                      std::size_t first) const {
    const auto* const known = of == rowtexts::stack ? nullptr : texts.grams();
    if (known == nullptr) return mark(texts.bytes(), texts.offsets(of), bits, first);
    mark(texts.bytes(), texts.offsets(of), bits, first,
         [&](const part& one, textgrams::rows all) { return one.where(*known, of, all); });
}

}  // namespace shopsystem
