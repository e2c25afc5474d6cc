// What the server tells of itself to whoever watches it, beside what the plug-in counts.
#include <cmath>
#include <limits>

#include "host/core/parts.h"
#include "host/world/worldparts.h"

namespace host {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

namespace {

using Labels = std::vector<ClientMetric::Label>;

struct Value {
    Labels labels;
    double value;
};

MetricFamily family(MetricType type, const char* name, const char* help, const std::vector<Value>& values) {
    MetricFamily made{name, help, type, {}};
    for (const auto& [labels, value] : values) {
        ClientMetric metric;
        metric.label = labels;
        (type == MetricType::Counter ? metric.counter.value : metric.gauge.value) = value;
        made.metric.push_back(std::move(metric));
    }
    return made;
}

ClientMetric histogram(Labels labels, const PassTimes& times) {
    const auto seen = times.seen();
    ClientMetric metric;
    metric.label = std::move(labels);
    auto& made = metric.histogram;
    made.sample_sum = seen.seconds;
    for (std::size_t range = 0; range < PassTimes::ranges; ++range) {
        made.sample_count += seen.counts[range];
        const bool islast = range + 1 == PassTimes::ranges;
        made.bucket.push_back({made.sample_count, islast ? std::numeric_limits<double>::infinity()
                                                         : std::ldexp(1e-6, static_cast<int>(range))});
    }
    return metric;
}

}  // namespace

std::vector<MetricFamily> Server::Parts::metrics() {
    constexpr auto counter = MetricType::Counter, gauge = MetricType::Gauge;
    const auto number = [](auto value) { return static_cast<double>(value); };
    const auto work = background.underway();
    const auto& state = world->parts().state;
    auto all = views.counts();
    all.push_back(family(counter, "server_ticks_total", "Ticks since the start.", {{{}, number(tickcount.load())}}));
    all.push_back(family(gauge, "server_players", "Players who are online.", {{{}, number(playersonline.load())}}));
    all.push_back(family(counter, "server_writes_total", "Passes that were written to the world's file.",
                         {{{}, number(state.writes())}}));
    all.push_back(family(counter, "server_write_failures_total",
                         "Passes that could not be written and are tried again.", {{{}, number(state.failures())}}));
    all.push_back(family(
        gauge, "server_waiting", "What waits for the server thread.",
        {{{{"queue", "mailbox"}}, number(mailbox.waiting())}, {{{"queue", "tasks"}}, number(scheduler.waiting())}}));
    all.push_back(family(gauge, "server_background_work", "What is under way beside the server thread.",
                         {{{{"kind", "bodies"}}, number(work.bodies)}, {{{"kind", "handles"}}, number(work.handles)}}));
    all.push_back({"server_pass_seconds",
                   "How long the passes of the server thread took.",
                   MetricType::Histogram,
                   {histogram({}, passtimes)}});
    all.push_back({"server_turn_wait_seconds",
                   "How long threads waited for their turn.",
                   MetricType::Histogram,
                   {histogram({{"thread", "server"}}, turn.serverwaits()),
                    histogram({{"thread", "background"}}, turn.guestwaits())}});
    return all;
}

}  // namespace host
