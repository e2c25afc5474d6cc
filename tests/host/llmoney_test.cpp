// The money library, loaded and called as a plug-in does it: by name out of the shared library.
#include <SQLiteCpp/SQLiteCpp.h>
#include <dlfcn.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "platform/llmoney.h"
#include "tests/host/coretools.h"

namespace {

namespace ll = platform::llmoney;

constexpr long long most = std::numeric_limits<long long>::max();

struct Library {
    void* const handle = dlopen(LLMONEY_PATH, RTLD_NOW | RTLD_LOCAL);
    ~Library() { dlclose(handle); }
    template <class F>
    F* entry(const char* name) const {
        void* const found = dlsym(handle, name);
        EXPECT_NE(found, nullptr) << name;
        return reinterpret_cast<F*>(found);
    }
};

class LLMoneyTest : public testing::Test {
protected:
    LLMoneyTest() { EXPECT_TRUE(open(file.c_str())) << lasterror(); }
    ~LLMoneyTest() override { close(); }

    // From now on in a file that a host writes.
    void livesinhost(const std::string& former = "") {
        ASSERT_TRUE(openinhost(hostfile.c_str(), former.c_str())) << lasterror();
    }
    // One transaction of the host; one that breaks off after so many statements changes nothing.
    bool hostwrites(int statements = 1000) {
        struct Host {
            SQLite::Database file;
            int left;
        } host{SQLite::Database(hostfile, SQLite::OPEN_READWRITE), statements};
        SQLite::Transaction transaction(host.file);
        const auto run = [](void* of, const char* sql, const ll::Value* values, std::size_t count) {
            auto& its = *static_cast<Host*>(of);
            if (its.left-- == 0) return false;
            SQLite::Statement statement(its.file, sql);
            for (int i = 0; i < static_cast<int>(count); ++i)
                if (values[i].text != nullptr)
                    statement.bind(i + 1, std::string(values[i].text, values[i].size));
                else
                    statement.bind(i + 1, static_cast<std::int64_t>(values[i].number));
            statement.exec();
            return true;
        };
        if (!write(run, &host)) return false;
        transaction.commit();
        return true;
    }

    std::vector<ll::Record> history(const std::string& xuid) {
        std::vector<ll::Record> found;
        EXPECT_TRUE(gethist(xuid, 0, found));
        return found;
    }

    const Library library;
    ll::Get* const get = library.entry<ll::Get>("LLMoneyGet");
    ll::Set* const set = library.entry<ll::Set>("LLMoneySet");
    ll::Trans* const trans = library.entry<ll::Trans>("LLMoneyTrans");
    ll::Reduce* const reduce = library.entry<ll::Reduce>("LLMoneyReduce");
    ll::Add* const add = library.entry<ll::Add>("LLMoneyAdd");
    ll::GetHist* const gethist = library.entry<ll::GetHist>("LLMoneyGetHist");
    ll::ClearHist* const clearhist = library.entry<ll::ClearHist>("LLMoneyClearHist");
    ll::Open* const open = library.entry<ll::Open>("LLMoneyOpen");
    ll::OpenInHost* const openinhost = library.entry<ll::OpenInHost>("LLMoneyOpenInHost");
    ll::HasChanges* const haschanges = library.entry<ll::HasChanges>("LLMoneyHasChanges");
    ll::WriteChanges* const write = library.entry<ll::WriteChanges>("LLMoneyWriteChanges");
    ll::ChangesWritten* const changeswritten = library.entry<ll::ChangesWritten>("LLMoneyChangesWritten");
    ll::Close* const close = library.entry<ll::Close>("LLMoneyClose");
    ll::LastError* const lasterror = library.entry<ll::LastError>("LLMoneyLastError");
    coretests::Directory directory;
    const std::string file = (directory.path / "money.db").string();
    const std::string hostfile = (directory.path / "host.db").string();
};

// What holds in a file of its own holds in the host's.
class LLMoneyAnywhere : public LLMoneyTest, public testing::WithParamInterface<bool> {
protected:
    LLMoneyAnywhere() {
        if (GetParam()) livesinhost();
    }
};
INSTANTIATE_TEST_SUITE_P(, LLMoneyAnywhere, testing::Bool(),
                         [](const auto& of) { return of.param ? "InTheHost" : "InItsOwnFile"; });

TEST_P(LLMoneyAnywhere, MovesMoneyAndRemembersIt) {
    EXPECT_EQ(get("1"), 0);
    EXPECT_TRUE(trans("", "1", 1000, "start"));
    EXPECT_TRUE(trans("1", "2", 950, "buy item :apple*2"));
    EXPECT_TRUE(reduce("1", 50));
    EXPECT_EQ(get("1"), 0);
    EXPECT_EQ(get("2"), 950);
    EXPECT_TRUE(trans("2", "2", 950, "to himself"));
    EXPECT_TRUE(trans("2", "", 900, "to the system"));
    EXPECT_EQ(get("2"), 50);

    std::vector<std::string> notes;
    for (const auto& row : history("2")) notes.push_back(row.from + ">" + row.to + " " + row.note);
    EXPECT_EQ(notes, (std::vector<std::string>{"1>2 buy item :apple*2", "2>2 to himself", "2> to the system"}));
    EXPECT_TRUE(clearhist(most));
    EXPECT_TRUE(history("2").empty());
    EXPECT_EQ(get("2"), 50);
}

TEST_P(LLMoneyAnywhere, RefusesAndThenChangesNothing) {
    ASSERT_TRUE(set("poor", 10));
    ASSERT_TRUE(set("rich", most));
    const struct {
        const char* what;
        bool result;
    } cases[] = {
        {"a payment above the balance", trans("poor", "new", 11, "")},
        {"a receiver that would overflow, after the payer was charged", trans("poor", "rich", 1, "")},
        {"-1, as a tax on a payment of 0 asks for", trans("poor", "rich", -1, "")},
        {"the smallest number there is", trans("poor", "rich", -most - 1, "")},
        {"a negative sum from the system", trans("", "poor", -5, "")},
        {"reducing below zero", reduce("poor", 11)},
        {"reducing by a negative sum", reduce("poor", -1)},
        {"reducing the system", reduce("", 1)},
        {"reducing the system by nothing", reduce("", 0)},
        {"adding a negative sum", add("poor", -1)},
        {"adding past 64 bits", add("rich", 1)},
        {"adding to the system", add("", 1)},
        {"a negative balance", set("poor", -1)},
        {"a balance of the system", set("", 1)},
    };
    for (const auto& one : cases) EXPECT_FALSE(one.result) << one.what;
    EXPECT_FALSE(reduce("poor", 11));
    EXPECT_STREQ(lasterror(), "poor has 10 and cannot pay 11");
    EXPECT_EQ(get("poor"), 10);
    EXPECT_EQ(get("rich"), most);
    EXPECT_TRUE(history("poor").empty());
    EXPECT_TRUE(history("new").empty());
}

TEST_P(LLMoneyAnywhere, NothingMayBeMoved) {
    EXPECT_TRUE(reduce("1", 0));
    EXPECT_TRUE(add("1", 0));
    EXPECT_TRUE(history("1").empty());
    EXPECT_TRUE(trans("1", "2", 0, "a gift"));
    EXPECT_EQ(history("2").size(), 1u);
}

TEST_F(LLMoneyTest, TheFileOutlivesTheLibrary) {
    ASSERT_TRUE(add("1", 7));
    close();
    EXPECT_EQ(get("1"), 0);
    EXPECT_FALSE(add("1", 1));
    EXPECT_STRNE(lasterror(), "");
    ASSERT_TRUE(open(file.c_str()));
    EXPECT_EQ(get("1"), 7);
}

TEST_F(LLMoneyTest, AFileThatIsNoDatabaseIsRefusedAndLeftAsItIs) {
    const std::string text(4096, 'x');
    directory.put("notes.txt", text);
    EXPECT_FALSE(open((directory.path / "notes.txt").c_str()));
    EXPECT_NE(std::string(lasterror()).find("notes.txt"), std::string::npos) << lasterror();
    EXPECT_EQ(directory.get("notes.txt"), text);
    EXPECT_FALSE(open((directory.path / "missing/money.db").c_str()));
    EXPECT_FALSE(open(nullptr));
}

// Another program at the file, and a disk that takes no more. A hundred calls each: none of them has seconds to wait.
TEST_F(LLMoneyTest, WhatCannotBeWrittenIsRefusedAtOnceAndBalancesAreStillRead) {
    ASSERT_TRUE(set("1", 100));
    SQLite::Database other(file, SQLite::OPEN_READWRITE);
    const auto nothingworks = [&](const char* why) {
        for (int i = 0; i < 100; ++i) {
            EXPECT_FALSE(i % 2 == 0 ? trans("1", "2", 60, "goods") : reduce("1", 1));
            EXPECT_NE(std::string(lasterror()).find(file + ": " + why), std::string::npos) << lasterror();
        }
        EXPECT_FALSE(add("2", 1));
        EXPECT_FALSE(set("2", 1));
        EXPECT_FALSE(clearhist(most));
        EXPECT_EQ(get("1"), 100);
        EXPECT_STREQ(lasterror(), "");
        EXPECT_EQ(get("2"), 0);
        EXPECT_STREQ(lasterror(), "") << "he has nothing, and that is certain";
    };
    {
        const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
        other.exec("DELETE FROM llmoney_account");
        nothingworks("database is locked");
    }
    EXPECT_TRUE(add("2", 1));
    ASSERT_TRUE(set("2", 0));
    {
        const coretests::FullDisk full;
        nothingworks("disk I/O error");
    }
    EXPECT_TRUE(trans("1", "2", 60, "goods"));
    EXPECT_STREQ(lasterror(), "");
    EXPECT_EQ(history("2").size(), 2U);

    other.exec("ALTER TABLE llmoney_account RENAME TO gone");
    EXPECT_EQ(get("1"), 0);
    EXPECT_STRNE(lasterror(), "") << "a balance that cannot be read is told from none";
}

TEST_P(LLMoneyAnywhere, ThreadsDoNotLoseMoney) {
    ASSERT_TRUE(set("a", 100));
    ASSERT_TRUE(set("b", 100));
    std::vector<std::thread> threads;
    for (const bool forward : {true, false, true, false}) {
        threads.emplace_back([this, forward] {
            for (int i = 0; i < 50; ++i) trans(forward ? "a" : "b", forward ? "b" : "a", 3, "");
        });
    }
    for (auto& one : threads) one.join();
    EXPECT_EQ(get("a") + get("b"), 200);
}

TEST_F(LLMoneyTest, TheHostWritesWhatHasChanged) {
    const auto infile = [&](const std::string& sql) { return SQLite::Database(hostfile).execAndGet(sql).getString(); };
    const std::string odd = std::string("o'dd\0note", 9);
    EXPECT_FALSE(haschanges());
    EXPECT_FALSE(write([](void*, const char*, const ll::Value*, std::size_t) { return true; }, nullptr))
        << "it is the library's own file";
    livesinhost();
    EXPECT_FALSE(haschanges());
    ASSERT_TRUE(set("1", 100));
    ASSERT_TRUE(trans("1", "2", 60, odd));
    EXPECT_TRUE(haschanges());
    EXPECT_EQ(infile("SELECT count(*) FROM llmoney_account"), "0");
    EXPECT_EQ(history("2").size(), 1U);

    // Broken off in the middle, and what comes between handing over and commit.
    EXPECT_FALSE(hostwrites(2));
    EXPECT_EQ(infile("SELECT count(*) FROM llmoney_account"), "0");
    ASSERT_TRUE(hostwrites());
    ASSERT_TRUE(trans("1", "2", 5, "meanwhile"));
    changeswritten();
    EXPECT_EQ(infile("SELECT group_concat(balance) FROM llmoney_account"), "40,60");
    EXPECT_EQ(get("2"), 65);
    EXPECT_TRUE(haschanges());
    ASSERT_TRUE(hostwrites());
    changeswritten();
    EXPECT_FALSE(haschanges());
    EXPECT_EQ(infile("SELECT group_concat(balance) FROM llmoney_account"), "35,65");
    ASSERT_EQ(history("2").size(), 2U) << "each movement once";
    EXPECT_EQ(history("2")[0].note, odd);

    ASSERT_TRUE(add("2", 1));
    ASSERT_TRUE(clearhist(most));
    EXPECT_TRUE(history("2").empty());
    ASSERT_TRUE(add("2", 2));
    for (const char* when : {"before", "behind"}) {
        ASSERT_EQ(history("2").size(), 1U) << when << " the commit";
        EXPECT_EQ(history("2")[0].value, 2);
        ASSERT_TRUE(hostwrites());
        changeswritten();
    }
    // Another process holds the file, and trade goes on in memory.
    SQLite::Database other(hostfile, SQLite::OPEN_READWRITE);
    const SQLite::Transaction locked(other, SQLite::TransactionBehavior::IMMEDIATE);
    EXPECT_TRUE(reduce("2", 68));
    EXPECT_EQ(get("2"), 0);
    EXPECT_FALSE(reduce("2", 1));
}

TEST_F(LLMoneyTest, AccountsMoveIntoTheHostsFileOnce) {
    ASSERT_TRUE(set("1", 100));
    ASSERT_TRUE(trans("1", "2", 60, "before"));
    livesinhost(file);
    EXPECT_EQ(get("1"), 40);
    EXPECT_EQ(history("2").size(), 1U);
    ASSERT_TRUE(set("1", 7));
    ASSERT_TRUE(hostwrites());
    changeswritten();
    livesinhost(file);
    EXPECT_EQ(get("1"), 7) << "not taken over again";
    EXPECT_EQ(history("2").size(), 1U);

    const std::string text(4096, 'x');
    directory.put("garbage.db", text);
    const auto garbage = (directory.path / "garbage.db").string();
    const auto anew = (directory.path / "new.db").string();
    EXPECT_FALSE(openinhost(anew.c_str(), garbage.c_str()));
    EXPECT_NE(std::string(lasterror()).find(garbage), std::string::npos) << lasterror();
    EXPECT_EQ(directory.get("garbage.db"), text);
    livesinhost((directory.path / "nowhere.db").string());
}

}  // namespace
