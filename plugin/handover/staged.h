// A checked file as pieces that wait in the records, in a table of their own, where nobody sees them; and one piece
// taken over. Numbers of entries are counted from the first of the file, so that they can wait.
#pragma once

#include <cstdint>
#include <string>

#include "platform/binarystream.h"
#include "plugin/handover/checking.h"

namespace handover {

// Gathers pieces out of a walk.
class stager : public linetaker {
public:
    explicit stager(const numbering& numbers) : numbers_(numbers) {}
    void shop(const shopline& head, const json& section) override;
    void opening(const shopline& of, const ledger::shopbooks& books) override;
    void item(const std::string& text) override;
    void entry(const ledger::entry& one) override;
    void sum(const sumline& one) override;

    [[nodiscard]] bool isfull() const;
    [[nodiscard]] std::string take();  // what has gathered

private:
    const numbering& numbers_;
    platform::BinaryStream out_;
    int pieces_ = 0;
};

// In a turn: what has gathered is the market's from this pass on. `base`: the number of the file's first entry here.
// Throws platform::ReadError for what was not gathered so.
void takeover(const std::string& staged, std::uint64_t base);

}  // namespace handover
