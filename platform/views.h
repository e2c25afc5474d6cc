// How a plug-in shows its operators what it knows: views, which are questions answered in JSON, and counts. Both are
// read only. What they mean is told by themselves, so that a host shows any plug-in's without knowing what it is about;
// docs/adapter.md has the form. A host that shows nothing leaves the service out, and all of it costs nothing.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace platform {

struct View {
    std::string name;         // in addresses: small letters, digits and "-", as "trades-by-day"
    std::string description;  // a JSON object: title, kind, columns, the query's fields, actions
    // Answers a query, a JSON object whose values are texts, with a JSON object. Called by any thread but the server's,
    // by several at a time and never in a turn: it takes turns of its own, short ones. Throws std::invalid_argument,
    // with a text for a person, for a query that it does not understand. Once a stop has begun it is not called any
    // more, and the stop waits for calls under way: one that may take long asks Background::stopping() now and then.
    std::function<std::string(const std::string& query)> ask;
    bool open = false;  // holds nothing private: it may be shown to those who are no operators
    // Where it is set: while it gives the same text, the same query has the same answer, so that answers can be kept.
    // An empty text promises nothing. Called as `ask` is, before it.
    std::function<std::string()> state = nullptr;
};

// A name by the conventions of Prometheus: small letters, digits and "_"; the plug-in's own word first, the base unit
// last ("_seconds", "_bytes", "_ratio"), and "_total" behind it all in a counter's name and no other.
struct CountName {
    std::string name;
    std::string help;  // one sentence
    std::map<std::string, std::string> labels = {};
};

// Any thread; costs some ten nanoseconds.
class Count {
public:
    virtual ~Count() = default;
    // A counter's amount is never negative; a histogram takes it as one observation.
    virtual void add(double amount) = 0;
    virtual void set(double value) = 0;  // of a gauge
};

class Views {
public:
    virtual ~Views() = default;
    // While the plug-in is entered. Each of these throws std::invalid_argument: a name against the rules or another
    // view's, a description that is no JSON object, a count that is known as another kind.
    virtual void offer(View view) = 0;
    // Asked again for the same name and labels, it is the same count.
    [[nodiscard]] virtual std::shared_ptr<Count> counter(const CountName& name) = 0;
    [[nodiscard]] virtual std::shared_ptr<Count> gauge(const CountName& name) = 0;
    // The bounds rise; what is beyond the last one is counted, too.
    [[nodiscard]] virtual std::shared_ptr<Count> histogram(const CountName& name,
                                                           const std::vector<double>& bounds) = 0;
    // A gauge that is read when somebody looks, as a view is asked. What throws is left out.
    virtual void gauge(const CountName& name, std::function<double()> read) = 0;
};

// The same on the installed host. What these give counts nowhere where nothing is shown, and before it was made.
class Counter {
public:
    Counter() = default;
    explicit Counter(std::shared_ptr<Count> count) : count_(std::move(count)) {}
    void add(double amount = 1) const {
        if (count_) count_->add(amount);
    }

private:
    std::shared_ptr<Count> count_;
};

class Gauge {
public:
    Gauge() = default;
    explicit Gauge(std::shared_ptr<Count> count) : count_(std::move(count)) {}
    void set(double value) const {
        if (count_) count_->set(value);
    }
    void add(double amount) const {
        if (count_) count_->add(amount);
    }

private:
    std::shared_ptr<Count> count_;
};

class Histogram {
public:
    Histogram() = default;
    explicit Histogram(std::shared_ptr<Count> count) : count_(std::move(count)) {}
    void observe(double value) const {
        if (count_) count_->add(value);
    }

private:
    std::shared_ptr<Count> count_;
};

namespace Shown {
void offer(View view);
[[nodiscard]] Counter counter(const CountName& name);
[[nodiscard]] Gauge gauge(const CountName& name);
[[nodiscard]] Histogram histogram(const CountName& name, const std::vector<double>& bounds);
void gauge(const CountName& name, std::function<double()> read);
}  // namespace Shown

}  // namespace platform
