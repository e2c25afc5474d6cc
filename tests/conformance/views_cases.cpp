// Views and counts are taken in, refused by name where they are against the rules, and cost nothing where there is no
// such service. What a host makes of them is its own to test.
#include "platform/views.h"

#include <thread>

#include "tests/conformance/conformance.h"

namespace conformance {

namespace Shown = platform::Shown;

TEST_P(Conformance, ViewsAndCountsAreTakenInOrRefused) {
    start([](platform::Host& host) {
        if (host.views == nullptr) return;
        const auto answer = [](const std::string&) { return std::string("{}"); };
        Shown::offer({"good-1", R"({"title": "Good"})", answer});
        struct Refused {
            const char *name, *description;
        };
        for (const auto& [name, description] : {Refused{"good-1", "{}"}, Refused{"", "{}"}, Refused{"Bad", "{}"},
                                                Refused{"a/b", "{}"}, Refused{"b", "{"}, Refused{"b", "[]"}})
            EXPECT_THROW(Shown::offer({name, description, answer}), std::invalid_argument) << name << description;
        EXPECT_THROW(Shown::offer({"b", "{}", nullptr}), std::invalid_argument);

        const auto first = Shown::counter({"test_trades_total", "Trades.", {{"kind", "sale"}}});
        const auto same = Shown::counter({"test_trades_total", "Trades.", {{"kind", "sale"}}});
        std::thread other([&] {
            for (int i = 0; i < 1000; ++i) first.add();
        });
        for (int i = 0; i < 1000; ++i) same.add(2);
        other.join();
        Shown::gauge({"test_players", "Players."}).set(3);
        Shown::histogram({"test_seconds", "Times."}, {0.1, 1}).observe(0.5);
        Shown::gauge({"test_read_bytes", "Bytes."}, [] { return 4.0; });
        EXPECT_THROW((void)Shown::gauge({"test_trades_total", "Trades."}), std::invalid_argument);
        EXPECT_THROW((void)Shown::gauge({"test_read_bytes", "Bytes."}), std::invalid_argument);
        EXPECT_THROW((void)Shown::counter({"test_players", "Players."}), std::invalid_argument);
        EXPECT_THROW((void)Shown::gauge({"test-players", "Players."}), std::invalid_argument);
        EXPECT_THROW((void)Shown::gauge({"test_helpless", ""}), std::invalid_argument);
        EXPECT_THROW((void)Shown::gauge({"test_labelled", "Labels.", {{"le", "1"}}}), std::invalid_argument);
        EXPECT_THROW((void)Shown::histogram({"test_falling_seconds", "Times."}, {1, 1}), std::invalid_argument);
    });
    server->services().views = nullptr;
    Shown::offer({"Bad", "", nullptr});
    Shown::counter({"bad", ""}).add();
    Shown::gauge({"", ""}).set(1);
    Shown::histogram({"", ""}, {}).observe(1);
    platform::Counter().add();
}

}  // namespace conformance
