// The money library's C entry points, which other programs bind by name. What each of them promises stands in
// platform/llmoney.h. One mutex around everything.
#include "platform/llmoney.h"

#include <memory>
#include <mutex>
#include <stdexcept>
#include <type_traits>

#include "host/llmoney/bank.h"

#if defined(_WIN32)
#define LLMONEY_EXPORT extern "C" __declspec(dllexport)
#else
#define LLMONEY_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using llmoney::Bank;
using llmoney::Unwritten;
using platform::llmoney::Record;

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
    if (bank == nullptr) throw std::runtime_error("no money database is open");
    return *bank;
}

void requireaccount(const std::string& xuid) {
    if (xuid.empty()) throw std::runtime_error("the system has no account");
}

bool openbank(const char* path, const std::optional<std::string>& former) {
    return guarded([&] {
        bank.reset();
        if (path == nullptr) throw std::runtime_error("a money database needs a path");
        try {
            bank = std::make_unique<Bank>(path, former);
        } catch (const std::exception& e) {
            throw std::runtime_error(naming(path, e));
        }
        return true;
    });
}

// What the host is to write, while it is the host that writes.
template <class Body>
auto withunwritten(Body&& body) noexcept {
    return guarded([&] {
        Unwritten* const unwritten = open().unwritten();
        if (unwritten == nullptr) throw std::runtime_error("the money database is not the host's to write");
        return body(*unwritten);
    });
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
        requireaccount(xuid);
        if (value != 0) opened.transfer(xuid, "", value, "reduce");
    });
}

LLMONEY_EXPORT bool LLMoneyAdd(const std::string& xuid, long long value) {
    return done([&](Bank& opened) {
        requireaccount(xuid);
        if (value != 0) opened.transfer("", xuid, value, "add");
    });
}

LLMONEY_EXPORT bool LLMoneyGetHist(const std::string& xuid, long long since, std::vector<Record>& found) {
    return done([&](Bank& opened) { found = opened.history(xuid, since); });
}

LLMONEY_EXPORT bool LLMoneyClearHist(long long before) {
    return done([&](Bank& opened) { opened.forget(before); });
}

LLMONEY_EXPORT bool LLMoneyOpen(const char* databasepath) { return openbank(databasepath, std::nullopt); }

LLMONEY_EXPORT bool LLMoneyOpenInHost(const char* databasepath, const char* formerpath) {
    return openbank(databasepath, formerpath != nullptr ? formerpath : "");
}

LLMONEY_EXPORT bool LLMoneyHasChanges() {
    return withunwritten([](Unwritten& unwritten) { return !unwritten.isempty(); });
}

LLMONEY_EXPORT bool LLMoneyWriteChanges(platform::llmoney::RunStatement* run, void* context) {
    return withunwritten([&](Unwritten& unwritten) { return unwritten.handover(run, context); });
}

LLMONEY_EXPORT void LLMoneyChangesWritten() {
    withunwritten([](Unwritten& unwritten) {
        unwritten.written();
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
static_assert(std::is_same_v<decltype(LLMoneyOpenInHost), platform::llmoney::OpenInHost>);
static_assert(std::is_same_v<decltype(LLMoneyHasChanges), platform::llmoney::HasChanges>);
static_assert(std::is_same_v<decltype(LLMoneyWriteChanges), platform::llmoney::WriteChanges>);
static_assert(std::is_same_v<decltype(LLMoneyChangesWritten), platform::llmoney::ChangesWritten>);
static_assert(std::is_same_v<decltype(LLMoneyClose), platform::llmoney::Close>);
static_assert(std::is_same_v<decltype(LLMoneyLastError), platform::llmoney::LastError>);
