// Whether a file can be taken over whole: everything in it is sound, and its ledger fits its shops to the piece, as an
// audit of them would say. Background threads.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "plugin/handover/filewalk.h"

namespace handover {

// The numbers of the entries in a file, which may have gaps, and their places.
class numbering {
public:
    void add(std::uint64_t number);
    [[nodiscard]] std::uint64_t size() const { return size_; }
    [[nodiscard]] std::uint64_t first() const { return runs_.empty() ? 0 : runs_.front().number; }
    // How many entries there are below this number.
    [[nodiscard]] std::uint64_t before(std::uint64_t number) const;
    [[nodiscard]] bool contains(std::uint64_t number) const { return before(number + 1) != before(number); }

private:
    struct run {
        std::uint64_t number, place, length;
    };
    std::vector<run> runs_;
    std::uint64_t size_ = 0;
};

struct checkedfile {
    linecounts counts;
    std::uint64_t sum = 0;  // over all lines: by this it is known again
    std::vector<std::string> owners;
    numbering numbers;
    std::string money;  // of the market that it comes from
};

// Throws std::runtime_error that names file, line and key.
[[nodiscard]] checkedfile checkfile(const std::string& path, const std::function<bool()>& goeson);

}  // namespace handover
