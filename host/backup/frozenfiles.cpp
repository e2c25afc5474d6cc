// A file may have several names by way of links, so it is known by the real one.
#include "host/backup/frozenfiles.h"

#include <fmt/format.h>

#include <cstring>

#include "host/backup/backuperror.h"

namespace host {

namespace fs = std::filesystem;

namespace {

std::string keyof(const fs::path& path) {
    std::error_code missing;
    const auto real = fs::canonical(path, missing);
    if (!missing) return real.string();
    const auto directory = fs::canonical(path.parent_path(), missing);
    return missing ? path.string() : (directory / path.filename()).string();
}

bool unchanged(const struct stat& then, const struct stat& now) {
    return then.st_ino == now.st_ino && then.st_dev == now.st_dev && then.st_size == now.st_size &&
           then.st_mtim.tv_sec == now.st_mtim.tv_sec && then.st_mtim.tv_nsec == now.st_mtim.tv_nsec;
}

std::string unreadable(const fs::path& path, int why) {
    return fmt::format("{}: it cannot be read: {}", path.string(), std::strerror(why));
}

}  // namespace

FrozenFiles::Change::~Change() {
    if (counting_ == nullptr) return;
    const std::lock_guard lock(counting_->mutex_);
    if (--counting_->underway_ == 0) counting_->done_.notify_all();
}

FrozenFiles::Change FrozenFiles::changing(const fs::path& path, const std::string& name) {
    const std::lock_guard lock(mutex_);
    if (frozen_) {
        keep(path, name);
        return Change();
    }
    ++underway_;
    return Change(this);
}

void FrozenFiles::appending(const fs::path& path, const std::string& name) {
    if (!frozen_) return;
    const std::lock_guard lock(mutex_);
    if (frozen_) keep(path, name);
}

void FrozenFiles::emptying(const fs::path& path) {
    if (!frozen_) return;
    const std::lock_guard lock(mutex_);
    std::error_code missing;
    if (frozen_ && fs::exists(path, missing) && trouble_.empty())
        trouble_ = fmt::format("{}: it was begun anew during the backup", path.string());
}

void FrozenFiles::keep(const fs::path& path, const std::string& name) {
    const auto [place, isnew] = known_.try_emplace(keyof(path));
    if (!isnew) return;
    Piece piece{place->first, name, Descriptor(path.c_str(), O_RDONLY | O_NONBLOCK)};
    if (!piece.file.isopen()) {
        if (errno != ENOENT && trouble_.empty()) trouble_ = unreadable(path, errno);
        return;
    }
    ::fstat(piece.file.number(), &piece.status);
    place->second = {true, piece.status};
    if (S_ISREG(piece.status.st_mode)) kept_.push_back(std::move(piece));
}

void FrozenFiles::freeze() {
    const std::lock_guard lock(mutex_);
    frozen_ = true;
}

void FrozenFiles::thaw() {
    const std::lock_guard lock(mutex_);
    frozen_ = false;
    known_.clear();
    kept_.clear();
    trouble_.clear();
}

void FrozenFiles::awaitchanges() {
    std::unique_lock lock(mutex_);
    done_.wait(lock, [&] { return underway_ == 0; });
}

void FrozenFiles::throwtrouble() const {
    if (!trouble_.empty()) throw BackupError(trouble_);
}

std::optional<FrozenFiles::Piece> FrozenFiles::takekeptof(const std::string& key) {
    const auto found = std::ranges::find(kept_, key, &Piece::key);
    if (found == kept_.end()) return std::nullopt;
    std::optional<Piece> piece(std::move(*found));
    kept_.erase(found);
    return piece;
}

// Opened before it is known to be taken: whoever changes it meanwhile keeps it, and what was opened is forgotten.
std::optional<FrozenFiles::Piece> FrozenFiles::take(const fs::path& path, const std::string& name) {
    Piece piece{keyof(path), name, Descriptor(path.c_str(), O_RDONLY | O_NONBLOCK)};
    const int why = piece.file.isopen() ? 0 : errno;
    const std::lock_guard lock(mutex_);
    throwtrouble();
    if (piece.file.isopen()) ::fstat(piece.file.number(), &piece.status);
    const auto [place, isnew] = known_.try_emplace(piece.key);
    if (isnew) {
        if (why == ENOENT) return std::nullopt;
        if (why != 0) throw BackupError(unreadable(path, why));
        place->second = {true, piece.status};
        return piece;
    }
    if (!place->second.wasthere) return std::nullopt;
    if (auto kept = takekeptof(piece.key)) {
        kept->name = name;
        return kept;
    }
    if (why == 0 && unchanged(place->second.status, piece.status)) return piece;
    throw BackupError(
        fmt::format("{}: the same file has another name here, and it changed during the backup", path.string()));
}

std::optional<FrozenFiles::Piece> FrozenFiles::takekept() {
    const std::lock_guard lock(mutex_);
    throwtrouble();
    if (kept_.empty()) return std::nullopt;
    std::optional<Piece> piece(std::move(kept_.front()));
    kept_.pop_front();
    return piece;
}

}  // namespace host
