// What the server answers about itself, and the plug-ins that have made themselves known.
#pragma once

#include <mutex>
#include <vector>

#include "platform/host.h"

namespace host {

class FixedProperties : public platform::Properties {
public:
    explicit FixedProperties(int port) : port_(port) {}
    [[nodiscard]] int getServerPort() const override { return port_; }

private:
    const int port_;
};

class Plugins : public platform::PluginList {
public:
    void add(const platform::PluginRecord& record) override {
        const std::lock_guard lock(mutex_);
        records_.push_back(record);
    }
    [[nodiscard]] std::vector<platform::PluginRecord> records() const {
        const std::lock_guard lock(mutex_);
        return records_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<platform::PluginRecord> records_;
};

}  // namespace host
