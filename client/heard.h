// What a client has heard of one kind: the last of it, and how much it was in all, so that whoever tells what is new
// keeps one number and neither loses nor repeats anything when the oldest goes or the owner clears the list.
#pragma once

#include <cstdint>
#include <deque>
#include <ranges>
#include <utility>

namespace client {

template <class T>
class Heard {
public:
    static constexpr std::size_t mostkept = 1000;

    void push_back(T one) {
        kept_.push_back(std::move(one));
        ++total_;
        if (kept_.size() > mostkept) kept_.pop_front();
    }
    void clear() { kept_.clear(); }  // the count goes on

    [[nodiscard]] std::uint64_t total() const { return total_; }
    // What came behind the first n, as far as it is still here.
    [[nodiscard]] auto from(std::uint64_t n) const {
        const std::uint64_t gone = total_ - kept_.size();
        const std::uint64_t skipped = n <= gone ? 0 : n >= total_ ? kept_.size() : n - gone;
        return std::ranges::subrange(kept_.begin() + static_cast<std::ptrdiff_t>(skipped), kept_.end());
    }

    [[nodiscard]] std::size_t size() const { return kept_.size(); }
    [[nodiscard]] bool empty() const { return kept_.empty(); }
    [[nodiscard]] const T& at(std::size_t i) const { return kept_.at(i); }
    [[nodiscard]] const T& operator[](std::size_t i) const { return kept_[i]; }
    [[nodiscard]] const T& back() const { return kept_.back(); }
    [[nodiscard]] auto begin() const { return kept_.begin(); }
    [[nodiscard]] auto end() const { return kept_.end(); }

private:
    std::deque<T> kept_;
    std::uint64_t total_ = 0;
};

}  // namespace client
