#include "host/world/moneystore.h"

#include <exception>
#include <stdexcept>

namespace host {

namespace {

// No exception crosses the library.
struct Statements {
    Database& file;
    std::exception_ptr failure;

    static bool run(void* self, const char* sql, const platform::llmoney::Value* values, std::size_t count) {
        auto& statements = *static_cast<Statements*>(self);
        try {
            statements.file.runvalues(sql, {values, count});
            return true;
        } catch (...) {
            statements.failure = std::current_exception();
            return false;
        }
    }
};

}  // namespace

void MoneyStore::join(const MoneyLibrary& library) {
    library_ = library;
    joined_ = true;
}

bool MoneyStore::changed() const { return joined_ && library_.haschanges(); }

void MoneyStore::write(Database& file) {
    if (!joined_) return;
    Statements statements{file, {}};
    const bool done = library_.writechanges(&Statements::run, &statements);
    if (statements.failure) std::rethrow_exception(statements.failure);
    if (!done) throw std::runtime_error("the money library does not tell what has changed");
}

void MoneyStore::written() {
    if (joined_) library_.changeswritten();
}

}  // namespace host
