// The money library, loaded and called as a plug-in does it: by name out of the shared library.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "platform/llmoney.h"

namespace {

namespace fs = std::filesystem;
namespace ll = platform::llmoney;

constexpr long long most = std::numeric_limits<long long>::max();

class LLMoneyTest : public testing::Test {
protected:
    template <class F>
    F* entry(const char* name) {
        void* found = dlsym(library, name);
        EXPECT_NE(found, nullptr) << name;
        return reinterpret_cast<F*>(found);
    }

    void SetUp() override {
        library = dlopen(LLMONEY_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        get = entry<ll::Get>("LLMoneyGet");
        set = entry<ll::Set>("LLMoneySet");
        trans = entry<ll::Trans>("LLMoneyTrans");
        reduce = entry<ll::Reduce>("LLMoneyReduce");
        add = entry<ll::Add>("LLMoneyAdd");
        gethist = entry<ll::GetHist>("LLMoneyGetHist");
        clearhist = entry<ll::ClearHist>("LLMoneyClearHist");
        open = entry<ll::Open>("LLMoneyOpen");
        close = entry<ll::Close>("LLMoneyClose");
        lasterror = entry<ll::LastError>("LLMoneyLastError");
        directory = fs::path(testing::TempDir()) / ("llmoney" + std::to_string(getpid()));
        fs::remove_all(directory);
        fs::create_directories(directory);
        file = (directory / "money.db").string();
        ASSERT_TRUE(open(file.c_str())) << lasterror();
    }

    void TearDown() override {
        if (close != nullptr) close();
        fs::remove_all(directory);
        if (library != nullptr) dlclose(library);
    }

    std::vector<ll::Record> history(const std::string& xuid) {
        std::vector<ll::Record> found;
        EXPECT_TRUE(gethist(xuid, 0, found));
        return found;
    }

    void* library = nullptr;
    ll::Get* get = nullptr;
    ll::Set* set = nullptr;
    ll::Trans* trans = nullptr;
    ll::Reduce* reduce = nullptr;
    ll::Add* add = nullptr;
    ll::GetHist* gethist = nullptr;
    ll::ClearHist* clearhist = nullptr;
    ll::Open* open = nullptr;
    ll::Close* close = nullptr;
    ll::LastError* lasterror = nullptr;
    fs::path directory;
    std::string file;
};

TEST_F(LLMoneyTest, MovesMoneyAndRemembersIt) {
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

TEST_F(LLMoneyTest, RefusesAndThenChangesNothing) {
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
    EXPECT_EQ(get("poor"), 10);
    EXPECT_EQ(get("rich"), most);
    EXPECT_TRUE(history("poor").empty());
    EXPECT_TRUE(history("new").empty());
}

TEST_F(LLMoneyTest, NothingMayBeMoved) {
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
    const auto other = directory / "notes.txt";
    const std::string text(4096, 'x');
    std::ofstream(other) << text;
    EXPECT_FALSE(open(other.string().c_str()));
    EXPECT_NE(std::string(lasterror()).find("notes.txt"), std::string::npos) << lasterror();
    std::ifstream again(other);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(again), {}), text);
    EXPECT_FALSE(open((directory / "missing" / "money.db").string().c_str()));
    EXPECT_FALSE(open(nullptr));
}

TEST_F(LLMoneyTest, ThreadsDoNotLoseMoney) {
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

}  // namespace
