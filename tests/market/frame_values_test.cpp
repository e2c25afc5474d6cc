// Small things of the frame that every menu leans on: numbers as typed, and what is told of a failure.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "platform/hardwarefault.h"
#include "plugin/base/guards.h"
#include "plugin/base/numbers.h"
#include "tests/market/quiethost.h"

using namespace ordomart;

namespace {

TEST(TypedNumber, ReadsLikeAtoi) {
    struct {
        const char* typed;
        std::int64_t small, large;
    } const cases[] = {
        {"", 0, 0},
        {"abc", 0, 0},
        {" \t42x", 42, 42},
        {"+7", 7, 7},
        {"-7", -7, -7},
        {"+-7", 0, 0},
        {"- 7", 0, 0},
        {"+", 0, 0},
        {"1.9", 1, 1},
        {"0x10", 0, 0},
        {"2147483648", 2147483647, 2147483648},
        {"-99999999999999999999", -2147483648LL, std::numeric_limits<std::int64_t>::min()},
        {"+99999999999999999999z", 2147483647, std::numeric_limits<std::int64_t>::max()},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(typednumber(c.typed), c.small) << c.typed;
        EXPECT_EQ(typednumber64(c.typed), c.large) << c.typed;
    }
}

TEST(Envelope, TellsEachKindInItsWords) {
    const auto runtime = [] { throw std::runtime_error("{no template}"); };
    const auto fault = [] { throw platform::seh_exception("fault"); };
    const auto parser = [] { return nlohmann::json::parse("{"); };
    const auto other = [] { throw 1; };
    struct {
        std::function<bool()> run;
        std::vector<std::string> starts;  // of the lines
    } const cases[] = {
        {[&] { return envelope(runtime); }, {"Ordomart 3 An runtimeerrorerror occurred, {no template}"}},
        {[&] { return envelope(fault); }, {"Ordomart 3 SEH Uncaught Exception Detected!\nfault"}},
        {[&] { return envelope(fault, "In a place"); },
         {"Ordomart 3 SEH Uncaught Exception Detected!\nfault", "Ordomart 3 In a place"}},
        {[&] { return envelope(parser, "In a place"); },
         {"Ordomart 1 An error occurred while parsing the ordomart data, [json.exception.parse_error.101]"}},
        {[&] { return envelope(other); }, {"Ordomart 3 An error was caught during the prehandlemain process."}},
        {[&] { return envelope(other, nullptr, refreshenvelope); },
         {"Ordomart 3 An error was caught during the update process."}},
        {[&] { return envelope(runtime, nullptr, manageenvelope); },
         {"Ordomart 3 An error was caught during openmanagesetstateform"}},
        {[&] { return envelope(fault, nullptr, banenvelope); },
         {"Ordomart 3 SEH Uncaught Exception Detected!\nfault", "Ordomart 3 In Auto Update system"}},
        {[&] { return envelope(parser, nullptr, banenvelope); },
         {"Ordomart 3 An error was caught during the update process."}},
        {[&] { return envelope(runtime, nullptr, updateenvelope); },
         {"Ordomart 1 An error was caught during the update process."}},
        {[&] { return envelope(fault, nullptr, updateenvelope); },
         {"Ordomart 1 SEH Uncaught Exception Detected!\nfault"}},
        {[&] { return envelope(parser, nullptr, updateenvelope); },
         {"Ordomart 1 An error occurred while parsing the update configuration, [json.exception.parse_error.101]"}},
        {[&] { return envelope(runtime, nullptr, reportenvelope); },
         {"Ordomart 3 An error was caught during testuploaddata process."}},
        {[&] { return envelope(fault, nullptr, reportenvelope); },
         {"Ordomart 3 SEH Uncaught Exception Detected!\nfault"}},
        {[&] { return envelope(parser, nullptr, reportenvelope); },
         {"Ordomart 3 An error occurred while parsing the testuploaddata, [json.exception.parse_error.101]"}},
        {[&] { return envelopeat("here", runtime); },
         {"Ordomart 3 An runtimeerrorerror occurred, {no template} at base:here"}},
        {[&] { return envelopeat("here", other); },
         {"Ordomart 3 An error was caught during the prehandlemain process. at base:here"}},
    };
    for (const auto& c : cases) {
        market_tests::QuietHost host;
        EXPECT_FALSE(c.run());
        ASSERT_EQ(host.log.lines.size(), c.starts.size()) << c.starts[0];
        for (std::size_t i = 0; i < c.starts.size(); ++i)
            EXPECT_TRUE(host.log.lines[i].starts_with(c.starts[i])) << host.log.lines[i];
    }
    EXPECT_TRUE(envelope([] {}));
}

}  // namespace
