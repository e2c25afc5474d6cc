// The money library as its users bind it: a shared library of its own, found by name ("LLmoney.dll"), with these entry
// points. Accounts are addressed by xuid, a decimal string; the empty string is the system, which has no account.
// Amounts are whole units of signed 64 bits, balances are never negative, and an account nobody has touched holds 0.
// Any thread. No entry point throws: what is refused or fails gives false (a balance: 0) and changes nothing.
//
// A file that somebody else has locked, or a full disk, makes a call fail within 100 ms; balances can still be read
// while another process writes. Only LLMoneyOpen has a few seconds of patience.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace platform::llmoney {

// One movement of money as the library remembers it; the empty string is the system side.
struct Record {
    std::string from, to;
    long long value = 0;
    long long time = 0;  // Unix seconds
    std::string note;
    bool operator==(const Record&) const = default;
};

// "LLMoneyGet": the balance. A balance that cannot be read is 0, too; LLMoneyLastError tells the two apart.
using Get = long long(const std::string& xuid);

// "LLMoneySet": makes the balance this. Refused for a negative value and for the system.
using Set = bool(const std::string& xuid, long long value);

// "LLMoneyTrans": moves money from one account to another and remembers it, both or neither. With the system as payer
// money comes into being, with the system as receiver it vanishes. Refused for a negative value, for more than the
// payer has, and where the receiver would hold more than 64 bits can say. A value of 0 is moved like any other.
using Trans = bool(const std::string& from, const std::string& to, long long value, const std::string& note);

// "LLMoneyReduce" and "LLMoneyAdd": LLMoneyTrans to and from the system, refused for the system's own side; a value of
// 0 works and is not remembered.
using Reduce = bool(const std::string& xuid, long long value);
using Add = bool(const std::string& xuid, long long value);

// "LLMoneyGetHist": what an account has paid and received since a moment (Unix seconds), oldest first.
using GetHist = bool(const std::string& xuid, long long since, std::vector<Record>& found);
// "LLMoneyClearHist": forgets what is older than a moment (Unix seconds). Balances stay.
using ClearHist = bool(long long before);

// "LLMoneyOpen": opens or makes the SQLite file that holds the accounts; a file opened before is closed. Until then
// every other entry point refuses. It may be a file with other tables in it.
using Open = bool(const char* databasepath);
// "LLMoneyClose"
using Close = void();
// "LLMoneyLastError": why the last call of another entry point on this thread was refused or failed, one line; the
// empty string when it worked. Good until the next call. Optional: a library without it cannot say why.
using LastError = const char*();

// By the following four, which are optional and belong together, the accounts live in a file of the host's, and the
// host writes what has changed in its own transaction, together with what was traded for the money. A library that has
// them is opened by either LLMoneyOpen or LLMoneyOpenInHost.
//
// "LLMoneyOpenInHost": like LLMoneyOpen, for a file that the host writes. Accounts and history of `formerpath`, a file
// of LLMoneyOpen, are taken over whole if the host's file has none yet and that file is there; it stays as it is. From
// then on the other entry points keep what they change in memory and answer from there.
using OpenInHost = bool(const char* databasepath, const char* formerpath);
// "LLMoneyHasChanges": whether there is anything to write.
using HasChanges = bool();
// "LLMoneyWriteChanges": hands what has changed to the host, as SQL statements with values for their question marks, in
// the order in which they are to be run on that file; false when the host broke off with false. There are a few
// statements, so that it is worth keeping them prepared. Until LLMoneyChangesWritten is called, the next call hands the
// same over once more, with what has come since.
struct Value {
    const char* text;  // null: it is the number
    std::size_t size;
    long long number;
};
using RunStatement = bool(void* context, const char* sql, const Value* values, std::size_t count);
using WriteChanges = bool(RunStatement* run, void* context);
// "LLMoneyChangesWritten": what the last LLMoneyWriteChanges handed over is committed.
using ChangesWritten = void();

}  // namespace platform::llmoney
