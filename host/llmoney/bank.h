// The accounts and their history in an SQLite file. Either the file is the library's own: then a movement of money and
// its history row are one transaction, begun as a writer so that it cannot lose a race for the file half-way. Or the
// host writes it: then what changes is kept here until the host asks for it, and only reading goes to the file. Not
// locked; what is refused or fails throws.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "host/llmoney/unwritten.h"
#include "host/sqlite/checkpoints.h"

namespace llmoney {

using Clock = std::chrono::steady_clock;

// A file that is waited for as long as a moment allows. It is in WAL mode, where whoever reads is not hindered by
// whoever writes. A call waits for another process's write a moment only, and after a call that waited in vain the next
// ones do not wait at all for a while: many trades that fail must not add up to a server that stands.
class File : public SQLite::Database {
public:
    // Takes over the accounts of another file when this one has none, if that is asked and the other one is there.
    File(const std::string& path, const std::string& former);
    // From here on the waits of one call count together.
    void begincall();

private:
    int wait();
    Clock::time_point waituntil_, impatientuntil_;
};

class Bank {
public:
    // With a former file, be it there or not, the host writes.
    Bank(const std::string& path, const std::optional<std::string>& former);

    void begincall() { file_.begincall(); }
    [[nodiscard]] const std::string& path() const { return file_.getFilename(); }

    [[nodiscard]] Money get(const std::string& xuid);
    void set(const std::string& xuid, Money value);
    void transfer(const std::string& from, const std::string& to, Money value, const std::string& note);
    [[nodiscard]] std::vector<Record> history(const std::string& xuid, Money since);
    void forget(Money before);

    // Null in a file of the library's own.
    [[nodiscard]] Unwritten* unwritten() { return unwritten_ ? &*unwritten_ : nullptr; }

private:
    void put(const std::string& xuid, Money balance);
    void remember(const Record& movement);

    File file_;
    std::optional<Unwritten> unwritten_;
    std::optional<host::Checkpoints> checkpoints_;
    SQLite::Statement balance_, put_, remember_, history_, forget_;
};

}  // namespace llmoney
