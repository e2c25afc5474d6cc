#include "host/llmoney/bank.h"

#include <sqlite3.h>

#include <filesystem>
#include <limits>
#include <stdexcept>
#include <thread>

namespace llmoney {

namespace {

using namespace std::chrono_literals;

// For another connection's write to the same file.
constexpr auto patienceatopening = 5000ms, patience = 50ms;
constexpr auto impatience = 1000ms;  // behind a wait in vain

constexpr const char* tables =
    "CREATE TABLE IF NOT EXISTS llmoney_account (xuid TEXT PRIMARY KEY, balance INTEGER NOT NULL"
    " CHECK (balance >= 0)) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS llmoney_history (id INTEGER PRIMARY KEY, payer TEXT NOT NULL,"
    " payee TEXT NOT NULL, value INTEGER NOT NULL, time INTEGER NOT NULL, note TEXT NOT NULL);"
    "CREATE INDEX IF NOT EXISTS llmoney_bypayer ON llmoney_history (payer, time);"
    "CREATE INDEX IF NOT EXISTS llmoney_bypayee ON llmoney_history (payee, time);";

// All of it or nothing: it is one transaction, which writes the new file alone.
void takeover(SQLite::Database& file, const std::string& former) {
    try {
        SQLite::Statement attach(file, "ATTACH ? AS former");
        attach.bind(1, former);
        attach.exec();
        SQLite::Transaction transaction(file, SQLite::TransactionBehavior::IMMEDIATE);
        file.exec(tables);
        file.exec(
            "INSERT INTO main.llmoney_account SELECT xuid, balance FROM former.llmoney_account;"
            "INSERT INTO main.llmoney_history SELECT id, payer, payee, value, time, note"
            " FROM former.llmoney_history");
        transaction.commit();
    } catch (const SQLite::Exception& e) {
        throw std::runtime_error(former + ": " + e.what());
    }
    file.exec("DETACH former");
}

void require(bool met, const std::string& otherwise) {
    if (!met) throw std::runtime_error(otherwise);
}

// A prepared statement for the time of its use; afterwards it holds nothing of the file.
class Use {
public:
    template <class... A>
    explicit Use(SQLite::Statement& statement, const A&... arguments) : statement_(statement) {
        int place = 0;
        (bind(++place, arguments), ...);
    }
    ~Use() { statement_.tryReset(); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    SQLite::Statement* operator->() const { return &statement_; }

private:
    void bind(int place, const std::string& text) { statement_.bindNoCopy(place, text); }
    void bind(int place, Money value) { statement_.bind(place, static_cast<std::int64_t>(value)); }
    SQLite::Statement& statement_;
};

Money now() {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

File::File(const std::string& path, const std::string& former)
    : SQLite::Database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE) {
    sqlite3_busy_handler(
        getHandle(), [](void* self, int) { return static_cast<File*>(self)->wait(); }, this);
    waituntil_ = Clock::now() + patienceatopening;
    // A killed process loses nothing in this mode; a power cut may take the last moments, but never half a transfer.
    exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
    const bool isnew = !tableExists("llmoney_account");
    if (isnew && std::filesystem::exists(former)) takeover(*this, former);
    exec(tables);
}

void File::begincall() {
    const auto now = Clock::now();
    waituntil_ = now < impatientuntil_ ? now : now + patience;
}

// Zero when it is enough.
int File::wait() {
    const auto now = Clock::now();
    if (now < waituntil_) return std::this_thread::sleep_for(1ms), 1;
    impatientuntil_ = now + impatience;
    return 0;
}

Bank::Bank(const std::string& path, const std::optional<std::string>& former)
    : file_(path, former.value_or("")),
      balance_(file_, "SELECT balance FROM llmoney_account WHERE xuid = ?"),
      put_(file_,
           "INSERT INTO llmoney_account VALUES (?1, ?2)"
           " ON CONFLICT (xuid) DO UPDATE SET balance = ?2"),
      remember_(file_, "INSERT INTO llmoney_history (payer, payee, value, time, note) VALUES (?, ?, ?, ?, ?)"),
      history_(file_,
               "SELECT payer, payee, value, time, note FROM llmoney_history"
               " WHERE (payer = ?1 OR payee = ?1) AND time >= ?2 ORDER BY id"),
      forget_(file_, "DELETE FROM llmoney_history WHERE time < ?") {
    if (former)
        unwritten_.emplace();
    else
        checkpoints_.emplace(file_);
}

Money Bank::get(const std::string& xuid) {
    if (unwritten_)
        if (const auto balance = unwritten_->balance(xuid)) return *balance;
    const Use query(balance_, xuid);
    return query->executeStep() ? query->getColumn(0).getInt64() : 0;
}

void Bank::set(const std::string& xuid, Money value) {
    require(!xuid.empty(), "the system has no account");
    require(value >= 0, "the balance of " + xuid + " cannot be " + std::to_string(value));
    put(xuid, value);
}

void Bank::transfer(const std::string& from, const std::string& to, Money value, const std::string& note) {
    require(value >= 0, "cannot move " + std::to_string(value) + " from '" + from + "' to '" + to + "'");
    std::optional<SQLite::Transaction> transaction;
    if (!unwritten_) transaction.emplace(file_, SQLite::TransactionBehavior::IMMEDIATE);
    const Money has = from.empty() ? 0 : get(from);
    require(from.empty() || has >= value,
            from + " has " + std::to_string(has) + " and cannot pay " + std::to_string(value));
    // Both halves are tested before either is done. Who pays himself ends where he began.
    const Money before = to.empty() ? 0 : to == from ? has - value : get(to);
    require(to.empty() || before <= std::numeric_limits<Money>::max() - value,
            "the balance of " + to + " would overflow");
    if (!from.empty()) put(from, has - value);
    if (!to.empty()) put(to, before + value);
    remember({from, to, value, now(), note});
    if (transaction) transaction->commit();
}

std::vector<Record> Bank::history(const std::string& xuid, Money since) {
    const Use query(history_, xuid, unwritten_ ? std::max(since, unwritten_->forgottenbefore()) : since);
    std::vector<Record> found;
    while (query->executeStep()) {
        found.push_back({query->getColumn(0).getString(), query->getColumn(1).getString(),
                         query->getColumn(2).getInt64(), query->getColumn(3).getInt64(),
                         query->getColumn(4).getString()});
    }
    if (unwritten_) unwritten_->addhistory(xuid, since, found);
    return found;
}

void Bank::forget(Money before) {
    if (unwritten_)
        unwritten_->forget(before);
    else
        Use(forget_, before)->exec();
}

void Bank::put(const std::string& xuid, Money balance) {
    if (unwritten_)
        unwritten_->put(xuid, balance);
    else
        Use(put_, xuid, balance)->exec();
}

void Bank::remember(const Record& movement) {
    if (unwritten_)
        unwritten_->remember(movement);
    else
        Use(remember_, movement.from, movement.to, Money{movement.value}, Money{movement.time}, movement.note)->exec();
}

}  // namespace llmoney
