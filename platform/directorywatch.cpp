#include "platform/directorywatch.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/host.h"

namespace platform {

namespace {

class StampComparison final : public DirectoryWatch {
public:
    explicit StampComparison(std::string directory) : directory_(std::move(directory)) {}

    Changes take() override {
        auto before = std::exchange(seen_, look());
        if (std::exchange(first_, false)) return {.all = true};
        Changes changes;
        for (const auto& [name, stamp] : seen_) {
            const auto known = before.extract(name);
            if (known.empty() || !stamp || stamp != known.mapped()) changes.names.push_back(name);
        }
        for (const auto& [gone, stamp] : before) changes.names.push_back(gone);
        std::sort(changes.names.begin(), changes.names.end());
        return changes;
    }

private:
    using Stamps = std::map<std::string, std::optional<FileStamp>>;
    [[nodiscard]] Stamps look() const {
        Stamps stamps;
        const std::string prefix = directory_.empty() || directory_.ends_with('/') ? directory_ : directory_ + '/';
        for (const auto& name : GetFileNameList(directory_)) stamps[name] = host().files->stamp(prefix + name);
        return stamps;
    }

    const std::string directory_;
    bool first_ = true;
    Stamps seen_;
};

}  // namespace

std::unique_ptr<DirectoryWatch> watchDirectory(const std::string& directory) {
    auto watch = host().files->watch(directory);
    return watch ? std::move(watch) : std::make_unique<StampComparison>(directory);
}

}  // namespace platform
