// The money library: accounts and their history in an SQLite file, behind C entry points that other programs bind by
// name. What each of them promises stands in platform/llmoney.h. One mutex around everything; a movement of money and
// its history row are one transaction, begun as a writer so that it cannot lose a race for the file half-way.
//
// The file is in WAL mode, where whoever reads is not hindered by whoever writes. A call waits for another process's
// write a moment only, and after a call that waited in vain the next ones do not wait at all for a while: many trades
// that fail must not add up to a server that stands.
#include "platform/llmoney.h"

#include "host/sqlite/checkpoints.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <chrono>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <type_traits>

#if defined(_WIN32)
#define LLMONEY_EXPORT extern "C" __declspec(dllexport)
#else
#define LLMONEY_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using platform::llmoney::Record;
using Money = long long;

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// For another connection's write to the same file.
constexpr auto patienceatopening = 5000ms, patience = 50ms;
constexpr auto impatience = 1000ms;  // behind a wait in vain

void require(bool met, const std::string& otherwise) {
    if (!met) throw std::runtime_error(otherwise);
}

// A file that is waited for as long as a moment allows.
class File : public SQLite::Database {
public:
    explicit File(const std::string& path) : SQLite::Database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE) {
        sqlite3_busy_handler(
            getHandle(), [](void* self, int) { return static_cast<File*>(self)->wait(); }, this);
        waituntil_ = Clock::now() + patienceatopening;
        // A killed process loses nothing in this mode; a power cut may take the last moments, but never half a
        // transfer.
        exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL");
        exec(
            "CREATE TABLE IF NOT EXISTS llmoney_account (xuid TEXT PRIMARY KEY, balance INTEGER NOT NULL"
            " CHECK (balance >= 0)) WITHOUT ROWID;"
            "CREATE TABLE IF NOT EXISTS llmoney_history (id INTEGER PRIMARY KEY, payer TEXT NOT NULL,"
            " payee TEXT NOT NULL, value INTEGER NOT NULL, time INTEGER NOT NULL, note TEXT NOT NULL);"
            "CREATE INDEX IF NOT EXISTS llmoney_bypayer ON llmoney_history (payer, time);"
            "CREATE INDEX IF NOT EXISTS llmoney_bypayee ON llmoney_history (payee, time);");
    }
    // From here on the waits of one call count together.
    void begincall() {
        const auto now = Clock::now();
        waituntil_ = now < impatientuntil_ ? now : now + patience;
    }

private:
    // Zero when it is enough.
    int wait() {
        const auto now = Clock::now();
        if (now < waituntil_) return std::this_thread::sleep_for(1ms), 1;
        impatientuntil_ = now + impatience;
        return 0;
    }
    Clock::time_point waituntil_, impatientuntil_;
};

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

class Bank {
public:
    explicit Bank(const std::string& path) : file_(path) {}

    void begincall() { file_.begincall(); }
    [[nodiscard]] const std::string& path() const { return file_.getFilename(); }

    Money get(const std::string& xuid) {
        const Use query(balance_, xuid);
        return query->executeStep() ? query->getColumn(0).getInt64() : 0;
    }

    void set(const std::string& xuid, Money value) {
        require(!xuid.empty(), "the system has no account");
        require(value >= 0, "the balance of " + xuid + " cannot be " + std::to_string(value));
        put(xuid, value);
    }

    void transfer(const std::string& from, const std::string& to, Money value, const std::string& note) {
        require(value >= 0, "cannot move " + std::to_string(value) + " from '" + from + "' to '" + to + "'");
        SQLite::Transaction transaction(file_, SQLite::TransactionBehavior::IMMEDIATE);
        if (!from.empty()) {
            const Money has = get(from);
            require(has >= value, from + " has " + std::to_string(has) + " and cannot pay " + std::to_string(value));
            put(from, has - value);
        }
        if (!to.empty()) {
            const Money has = get(to);
            require(has <= std::numeric_limits<Money>::max() - value, "the balance of " + to + " would overflow");
            put(to, has + value);
        }
        Use(remember_, from, to, value, now(), note)->exec();
        transaction.commit();
    }

    std::vector<Record> history(const std::string& xuid, Money since) {
        const Use query(history_, xuid, since);
        std::vector<Record> found;
        while (query->executeStep()) {
            found.push_back({query->getColumn(0).getString(), query->getColumn(1).getString(),
                             query->getColumn(2).getInt64(), query->getColumn(3).getInt64(),
                             query->getColumn(4).getString()});
        }
        return found;
    }

    void forget(Money before) { Use(forget_, before)->exec(); }

private:
    static Money now() {
        return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
            .count();
    }

    void put(const std::string& xuid, Money balance) { Use(put_, xuid, balance)->exec(); }

    File file_;
    host::Checkpoints checkpoints_{file_};
    SQLite::Statement balance_{file_, "SELECT balance FROM llmoney_account WHERE xuid = ?"};
    SQLite::Statement put_{file_,
                           "INSERT INTO llmoney_account VALUES (?1, ?2)"
                           " ON CONFLICT (xuid) DO UPDATE SET balance = ?2"};
    SQLite::Statement remember_{file_,
                                "INSERT INTO llmoney_history (payer, payee, value, time, note) VALUES (?, ?, ?, ?, ?)"};
    SQLite::Statement history_{file_,
                               "SELECT payer, payee, value, time, note FROM llmoney_history"
                               " WHERE (payer = ?1 OR payee = ?1) AND time >= ?2 ORDER BY id"};
    SQLite::Statement forget_{file_, "DELETE FROM llmoney_history WHERE time < ?"};
};

std::mutex mutex;
std::unique_ptr<Bank> bank;
thread_local std::string lasterror;

// Runs the body under the lock; whatever it throws ends here and gives the empty result.
template <class Body>
auto guarded(Body&& body) noexcept -> std::invoke_result_t<Body> {
    lasterror.clear();
    try {
        const std::lock_guard lock(mutex);
        return body();
    } catch (const std::exception& e) {
        lasterror = e.what();
        return {};
    }
}

std::string naming(const std::string& path, const std::exception& e) {
    return "the money database " + path + ": " + e.what();
}

Bank& open() {
    require(bank != nullptr, "no money database is open");
    return *bank;
}

template <class Body>
auto withbank(Body&& body) noexcept {
    return guarded([&] {
        Bank& opened = open();
        opened.begincall();
        try {
            return body(opened);
        } catch (const SQLite::Exception& e) {
            throw std::runtime_error(naming(opened.path(), e));
        }
    });
}

template <class Body>
bool done(Body&& body) noexcept {
    return withbank([&](Bank& opened) {
        body(opened);
        return true;
    });
}

}  // namespace

LLMONEY_EXPORT long long LLMoneyGet(const std::string& xuid) {
    return withbank([&](Bank& opened) { return opened.get(xuid); });
}

LLMONEY_EXPORT bool LLMoneySet(const std::string& xuid, long long value) {
    return done([&](Bank& opened) { opened.set(xuid, value); });
}

LLMONEY_EXPORT bool LLMoneyTrans(const std::string& from, const std::string& to, long long value,
                                 const std::string& note) {
    return done([&](Bank& opened) { opened.transfer(from, to, value, note); });
}

LLMONEY_EXPORT bool LLMoneyReduce(const std::string& xuid, long long value) {
    return done([&](Bank& opened) {
        require(!xuid.empty(), "the system has no account");
        if (value != 0) opened.transfer(xuid, "", value, "reduce");
    });
}

LLMONEY_EXPORT bool LLMoneyAdd(const std::string& xuid, long long value) {
    return done([&](Bank& opened) {
        require(!xuid.empty(), "the system has no account");
        if (value != 0) opened.transfer("", xuid, value, "add");
    });
}

LLMONEY_EXPORT bool LLMoneyGetHist(const std::string& xuid, long long since, std::vector<Record>& found) {
    return done([&](Bank& opened) { found = opened.history(xuid, since); });
}

LLMONEY_EXPORT bool LLMoneyClearHist(long long before) {
    return done([&](Bank& opened) { opened.forget(before); });
}

LLMONEY_EXPORT bool LLMoneyOpen(const char* databasepath) {
    return guarded([&] {
        bank.reset();
        require(databasepath != nullptr, "a money database needs a path");
        try {
            bank = std::make_unique<Bank>(databasepath);
        } catch (const std::exception& e) {
            throw std::runtime_error(naming(databasepath, e));
        }
        return true;
    });
}

LLMONEY_EXPORT void LLMoneyClose() {
    guarded([] {
        bank.reset();
        return true;
    });
}

LLMONEY_EXPORT const char* LLMoneyLastError() { return lasterror.c_str(); }

// The entry points against what their users bind.
static_assert(std::is_same_v<decltype(LLMoneyGet), platform::llmoney::Get>);
static_assert(std::is_same_v<decltype(LLMoneySet), platform::llmoney::Set>);
static_assert(std::is_same_v<decltype(LLMoneyTrans), platform::llmoney::Trans>);
static_assert(std::is_same_v<decltype(LLMoneyReduce), platform::llmoney::Reduce>);
static_assert(std::is_same_v<decltype(LLMoneyAdd), platform::llmoney::Add>);
static_assert(std::is_same_v<decltype(LLMoneyGetHist), platform::llmoney::GetHist>);
static_assert(std::is_same_v<decltype(LLMoneyClearHist), platform::llmoney::ClearHist>);
static_assert(std::is_same_v<decltype(LLMoneyOpen), platform::llmoney::Open>);
static_assert(std::is_same_v<decltype(LLMoneyClose), platform::llmoney::Close>);
static_assert(std::is_same_v<decltype(LLMoneyLastError), platform::llmoney::LastError>);
