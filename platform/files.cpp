// What a host that offers no more than whole files gets for large ones: they are gathered in memory.
#include "platform/files.h"

#include <algorithm>

namespace platform {

namespace {

class GatheredFile : public NewFile {
public:
    GatheredFile(Files& files, std::string path) : files_(files), path_(std::move(path)) {}
    bool write(std::string_view piece) override {
        content_ += piece;
        return true;
    }
    bool finish() override { return !files_.exists(path_) && files_.replace(path_, content_); }

private:
    Files& files_;
    const std::string path_;
    std::string content_;
};

}  // namespace

std::optional<std::string> Files::readpart(const std::string& path, std::uint64_t from, std::size_t most) const {
    const auto whole = read(path);
    if (!whole) return std::nullopt;
    return whole->substr(std::min<std::uint64_t>(from, whole->size()), most);
}

std::unique_ptr<NewFile> Files::make(const std::string& path) {
    if (exists(path)) return nullptr;
    return std::make_unique<GatheredFile>(*this, path);
}

}  // namespace platform
