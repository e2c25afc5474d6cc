#include "host/core/views.h"

#include <fmt/format.h>
#include <prometheus/counter.h>
#include <prometheus/gauge.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>

#include <algorithm>
#include <mutex>
#include <stdexcept>

#include "platform/foreignjson.h"

namespace host {

using platform::Count;
using platform::CountName;

namespace {

bool isword(std::string_view text, std::string_view others) {
    const auto isgood = [&](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || others.find(c) != std::string_view::npos;
    };
    return !text.empty() && text.front() >= 'a' && text.front() <= 'z' && std::ranges::all_of(text, isgood);
}

void checkname(const CountName& name, bool iscounter) {
    const auto bad = [&](const std::string& what) {
        throw std::invalid_argument(fmt::format("the count \"{}\" {}", name.name, what));
    };
    if (!isword(name.name, "_")) bad("must have a name of small letters, digits and _");
    if (name.name.ends_with("_total") != iscounter)
        bad(iscounter ? "must end in _total, as it is a counter" : "must not end in _total, as it is no counter");
    if (name.help.empty()) bad("has no help");
    for (const auto& [label, value] : name.labels)
        if (!isword(label, "_") || label.starts_with("__") || label == "le") bad("has a label \"" + label + "\"");
}

// The metric belongs to the registry, which the handle keeps.
template <class Metric>
class Counted : public Count {
public:
    Counted(std::shared_ptr<prometheus::Registry> registry, Metric& metric)
        : registry_(std::move(registry)), metric_(metric) {}
    void add(double amount) override {
        if constexpr (std::is_same_v<Metric, prometheus::Histogram>)
            metric_.Observe(amount);
        else
            metric_.Increment(amount);
    }
    void set(double value) override {
        if constexpr (std::is_same_v<Metric, prometheus::Gauge>) metric_.Set(value);
    }

private:
    const std::shared_ptr<prometheus::Registry> registry_;
    Metric& metric_;
};

template <class Metric, class Builder, class... Bounds>
std::shared_ptr<Count> counted(const std::shared_ptr<prometheus::Registry>& registry, Builder builder,
                               const CountName& name, const Bounds&... bounds) {
    auto& metric = builder.Name(name.name).Help(name.help).Register(*registry).Add(name.labels, bounds...);
    return std::make_shared<Counted<Metric>>(registry, metric);
}

}  // namespace

ShownViews::ShownViews(Complain complain)
    : complain_(std::move(complain)), registry_(std::make_shared<prometheus::Registry>()) {}

ShownViews::~ShownViews() = default;

void ShownViews::offer(platform::View view) {
    if (!isword(view.name, "-"))
        throw std::invalid_argument(fmt::format("the view \"{}\" must have a name of small letters", view.name));
    nlohmann::json description;
    try {
        description = platform::readforeignjson(view.description);
    } catch (const platform::ForeignJsonError& e) {
        throw std::invalid_argument(fmt::format("the description of the view \"{}\" {}", view.name, e.what()));
    }
    if (!description.is_object() || !view.ask)
        throw std::invalid_argument(fmt::format("the view \"{}\" needs a description and an answer", view.name));
    description["name"] = view.name;
    description["open"] = view.open;
    const std::unique_lock lock(serving_);
    if (closed_) return;
    if (std::ranges::find(views_, view.name, &platform::View::name) != views_.end())
        throw std::invalid_argument(fmt::format("the view \"{}\" is there already", view.name));
    views_.push_back(std::move(view));
    descriptions_.push_back(std::move(description));
}

// With one kind and one help for all labels, as the text form has it.
void ShownViews::learn(const CountName& name, const std::string& kind) {
    checkname(name, kind == "counter");
    const std::unique_lock lock(serving_);
    const auto known = kinds_.try_emplace(name.name, kind + " " + name.help).first;
    if (known->second != kind + " " + name.help)
        throw std::invalid_argument(
            fmt::format("the count \"{}\" is a {} here and was a {}", name.name, kind, known->second));
}

std::shared_ptr<Count> ShownViews::counter(const CountName& name) {
    learn(name, "counter");
    return counted<prometheus::Counter>(registry_, prometheus::BuildCounter(), name);
}

std::shared_ptr<Count> ShownViews::gauge(const CountName& name) {
    learn(name, "gauge");
    return counted<prometheus::Gauge>(registry_, prometheus::BuildGauge(), name);
}

std::shared_ptr<Count> ShownViews::histogram(const CountName& name, const std::vector<double>& bounds) {
    learn(name, "histogram");
    if (std::ranges::adjacent_find(bounds, std::greater_equal()) != bounds.end())
        throw std::invalid_argument(fmt::format("the bounds of the count \"{}\" do not rise", name.name));
    return counted<prometheus::Histogram>(registry_, prometheus::BuildHistogram(), name, bounds);
}

void ShownViews::gauge(const CountName& name, std::function<double()> read) {
    learn(name, "gauge that is read");
    const std::unique_lock lock(serving_);
    if (!closed_) read_.push_back({name, std::move(read)});
}

std::vector<nlohmann::json> ShownViews::descriptions() const {
    const std::shared_lock lock(serving_);
    return descriptions_;
}

const platform::View& ShownViews::find(const std::string& name, bool openonly) const {
    if (closed_) throw ViewsClosed("the server stops");
    const auto found = std::ranges::find(views_, name, &platform::View::name);
    if (found == views_.end() || (openonly && !found->open))
        throw NoSuchView(fmt::format("there is no view \"{}\"", name));
    return *found;
}

std::string ShownViews::ask(const std::string& name, const std::string& query, bool openonly) const {
    const std::shared_lock lock(serving_);
    return find(name, openonly).ask(query);
}

std::string ShownViews::state(const std::string& name, bool openonly) const {
    const std::shared_lock lock(serving_);
    const auto& view = find(name, openonly);
    return view.state ? view.state() : std::string();
}

std::vector<prometheus::MetricFamily> ShownViews::counts() const {
    auto all = registry_->Collect();
    {
        const std::shared_lock lock(serving_);
        std::map<std::string, prometheus::MetricFamily> families;
        for (const auto& [name, value] : read_) {
            prometheus::ClientMetric metric;
            if (!guarded(complain_, name.name + " could not be read", [&] { metric.gauge.value = value(); })) continue;
            for (const auto& [label, text] : name.labels) metric.label.push_back({label, text});
            auto& family = families[name.name];
            family.name = name.name;
            family.help = name.help;
            family.type = prometheus::MetricType::Gauge;
            family.metric.push_back(std::move(metric));
        }
        for (auto& [name, family] : families) all.push_back(std::move(family));
    }
    std::ranges::sort(all, {}, &prometheus::MetricFamily::name);
    return all;
}

void ShownViews::close() {
    const std::unique_lock lock(serving_);
    closed_ = true;
    views_.clear();
    descriptions_.clear();
    read_.clear();
}

}  // namespace host
