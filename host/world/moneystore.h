// The accounts of a money library that leaves the writing to its host: they are written with the rest of the world.
// Nothing, as long as no such library has joined.
#pragma once

#include <atomic>

#include "host/world/database.h"
#include "platform/llmoney.h"

namespace host {

// The entry points by which it does so.
struct MoneyLibrary {
    platform::llmoney::HasChanges* haschanges;
    platform::llmoney::WriteChanges* writechanges;
    platform::llmoney::ChangesWritten* changeswritten;
};

class MoneyStore : public Store {
public:
    // Any thread, once. The library stays until the world's last write.
    void join(const MoneyLibrary& library);

    [[nodiscard]] bool changed() const override;
    void write(Database& file) override;
    void written() override;

private:
    MoneyLibrary library_{};
    std::atomic<bool> joined_ = false;
};

}  // namespace host
