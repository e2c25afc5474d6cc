// Whether the world's file takes what is written to it, and when it is tried again after it did not: the pauses grow,
// so that the server thread hardly waits for a file that stays locked. The log is told when it begins and when it is
// over.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/stores.h"

namespace host {

class WriteState : public platform::StoreState {
public:
    explicit WriteState(std::string file) : file_(std::move(file)) {}

    [[nodiscard]] bool istime() const;
    void failed(const std::string& why);
    void worked();

    // Since the start. Any thread.
    [[nodiscard]] std::uint64_t writes() const { return writes_; }
    [[nodiscard]] std::uint64_t failures() const { return failures_; }

    [[nodiscard]] std::string unwritable() const override;
    void whenwritten(std::function<void()> work) override { waiting_.push_back(std::move(work)); }
    // Everything that has changed is on the disk: what waited for that.
    void runwaiting();

private:
    [[nodiscard]] bool isfailing() const { return pause_ > 0; }

    std::atomic<std::uint64_t> writes_ = 0, failures_ = 0;
    const std::string file_;
    std::string why_;
    std::vector<std::function<void()>> waiting_;
    std::int64_t since_ = 0, tried_ = 0, pause_ = 0;  // milliseconds of the server's clock
};

}  // namespace host
