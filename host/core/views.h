// The views and counts that the plug-in offers, as long as it is there. Whoever shows them asks by any thread but the
// server's; a stop closes the counter, waits for those who are being served, and drops all that is code of the plug-in.
#pragma once

#include <prometheus/metric_family.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <shared_mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/core/guarded.h"
#include "platform/views.h"

namespace prometheus {
class Registry;
}

namespace host {

class NoSuchView : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
class ViewsClosed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class ShownViews : public platform::Views {
public:
    explicit ShownViews(Complain complain);
    ~ShownViews() override;

    void offer(platform::View view) override;
    [[nodiscard]] std::shared_ptr<platform::Count> counter(const platform::CountName& name) override;
    [[nodiscard]] std::shared_ptr<platform::Count> gauge(const platform::CountName& name) override;
    [[nodiscard]] std::shared_ptr<platform::Count> histogram(const platform::CountName& name,
                                                             const std::vector<double>& bounds) override;
    void gauge(const platform::CountName& name, std::function<double()> read) override;

    // The descriptions with "name" and "open" in each, in the order of the offers.
    [[nodiscard]] std::vector<nlohmann::json> descriptions() const;
    // Throws NoSuchView, ViewsClosed when the server stops, and what the view throws: std::invalid_argument for a bad
    // query. `openonly`: as if there were only those that hold nothing private.
    [[nodiscard]] std::string ask(const std::string& name, const std::string& query, bool openonly = false) const;
    // What the view says its answers hang on; empty where it does not say. Throws as ask() does.
    [[nodiscard]] std::string state(const std::string& name, bool openonly = false) const;
    // Every count as it stands, by name; gauges that are read are read now.
    [[nodiscard]] std::vector<prometheus::MetricFamily> counts() const;

    // Nobody is served from now on. Not in a turn, since those who are served may wait for one.
    void close();

private:
    struct Read {
        platform::CountName name;
        std::function<double()> value;
    };
    void learn(const platform::CountName& name, const std::string& kind);
    [[nodiscard]] const platform::View& find(const std::string& name, bool openonly) const;

    const Complain complain_;
    mutable std::shared_mutex serving_;  // shared by those who are served
    bool closed_ = false;
    std::vector<platform::View> views_;
    std::vector<nlohmann::json> descriptions_;
    std::vector<Read> read_;
    std::map<std::string, std::string> kinds_;  // of counts, with their help
    const std::shared_ptr<prometheus::Registry> registry_;
};

}  // namespace host
