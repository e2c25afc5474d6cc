// The databases come first, so that their instants do not hold up their logs for long, then small files before large
// ones: what is taken need not be kept open any more when it changes, and logs, which are long, need not at all.
#include "host/backup/backup.h"

#include <fmt/format.h>
#include <sys/file.h>

#include <cstring>

#include "host/api/keyfiles.h"
#include "host/network/gateway/door.h"

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr const char* databasenames[] = {"server.sqlite", "money.sqlite"};

bool isleftout(const std::string& name, bool attop) {
    for (const std::string_view secret : {KeyFiles::tokenname, KeyFiles::addressname, GatewayDoor::tokenname})
        if (attop && name == secret) return true;
    if (attop && name == sumsname) return true;
    for (const char* ending : {".part", ".sqlite-wal", ".sqlite-shm", ".sqlite-journal"})
        if (name.ends_with(ending)) return true;
    return isarchivename(name);
}

}  // namespace

std::string BackupReport::text() const {
    auto text = fmt::format("Backed up to {}: {} files, {:.1f} MB", file, files, static_cast<double>(bytes) / 1e6);
    if (stopped.count() > 0)
        text += fmt::format("; the market stood still for {:.1f} ms", static_cast<double>(stopped.count()) / 1e3);
    return text;
}

Backup::Backup(fs::path directory, FrozenFiles& files, const fs::path& target, std::function<void()> goeson)
    : directory_(std::move(directory)),
      target_(fs::absolute(target).lexically_normal()),
      files_(files),
      goeson_(std::move(goeson)),
      archive_(target_, goeson_) {
    if (!fs::exists(directory_ / databasenames[0]))
        throw BackupError(fmt::format("{}: there is no world here to back up", directory_.string()));
    for (const char* name : databasenames) {
        const auto file = directory_ / name;
        try {
            // Money that no library reads may be anything.
            if (name == databasenames[0] || Snapshot::isdatabase(file)) databases_.try_emplace(name, file);
        } catch (const SQLite::Exception& e) {
            throw BackupError(fmt::format("{}: {}", file.string(), e.what()));
        }
    }
}

Backup::~Backup() { files_.thaw(); }

void Backup::begin() {
    for (auto& [name, database] : databases_) {
        try {
            database.begin();
        } catch (const SQLite::Exception& e) {
            throw BackupError(fmt::format("{}: {}", (directory_ / name).string(), e.what()));
        }
    }
    files_.freeze();
}

BackupReport Backup::write() {
    files_.awaitchanges();
    std::error_code error;
    std::vector<std::string> above;
    walk(directory_, "", above);
    copydatabases();
    addfound();
    addkept();
    files_.thaw();
    for (const auto& [name, copy] : copies_) add(copy);
    archive_.finish();
    return {target_.string(), archive_.count(), archive_.size()};
}

// Beside the archive, where there must be room for it anyway, and without a name as soon as it is there.
void Backup::copydatabases() {
    for (auto& [name, database] : databases_) {
        const auto copy = partbeside(target_.string() + "." + name);
        FrozenFiles::Piece piece{{}, name, makepart(copy)};
        if (!piece.file.isopen()) throw BackupError(fmt::format("{}: {}", copy.string(), std::strerror(errno)));
        struct Unnamed {
            const fs::path& file;
            ~Unnamed() { ::unlink(file.c_str()); }
        } const unnamed{copy};
        try {
            if (const auto damage = database.damage(); !damage.empty())
                throw BackupError(fmt::format("{}: the file is damaged: {}", (directory_ / name).string(), damage));
            database.copyto(copy, [&] {
                goeson_();
                addkept();
            });
        } catch (const SQLite::Exception& e) {
            throw BackupError(
                fmt::format("{}: its copy {}: {}", (directory_ / name).string(), copy.string(), e.what()));
        }
        ::fstat(piece.file.number(), &piece.status);
        // The copy's own times and rights say nothing.
        struct stat status {};
        if (::stat((directory_ / name).c_str(), &status) == 0) {
            piece.status.st_mode = status.st_mode;
            piece.status.st_mtim = status.st_mtim;
        }
        copies_.emplace(name, std::move(piece));
    }
    databases_.clear();
}

// A link is the operator's word that what it leads to belongs here, and it is archived as that. One that leads round
// in a circle is followed once.
void Backup::walk(const fs::path& directory, const std::string& prefix, std::vector<std::string>& above) {
    goeson_();
    std::error_code error;
    const std::string real = fs::canonical(directory, error);
    if (std::ranges::find(above, real) != above.end()) return;
    above.push_back(real);
    fs::directory_iterator entry(directory, error);
    for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
        const std::string file = entry->path().filename(), name = prefix + file;
        struct stat status {};
        if (isleftout(file, prefix.empty()) || databases_.contains(name) || ::stat(entry->path().c_str(), &status) != 0)
            continue;
        if (S_ISDIR(status.st_mode)) {
            archive_.adddirectory(name, status);
            walk(entry->path(), name + "/", above);
        } else if (S_ISREG(status.st_mode)) {
            found_.push_back({entry->path(), name, static_cast<std::uintmax_t>(status.st_size)});
        }
    }
    if (error) throw BackupError(fmt::format("{}: it cannot be read: {}", directory.string(), error.message()));
    above.pop_back();
}

void Backup::addfound() {
    std::ranges::sort(found_, {}, [](const Found& each) { return std::pair(each.size, std::string_view(each.name)); });
    for (const auto& [path, name, size] : found_) {
        addkept();
        if (added_.contains(name)) continue;
        if (const auto piece = files_.take(path, name)) add(*piece);
    }
}

void Backup::addkept() {
    while (const auto piece = files_.takekept())
        if (!isleftout(fs::path(piece->name).filename(), false) && !added_.contains(piece->name)) add(*piece);
}

void Backup::add(const FrozenFiles::Piece& piece) {
    archive_.add(piece);
    added_.insert(piece.name);
}

std::optional<BackupReport> backupstopped(const fs::path& directory, const fs::path& target) {
    const Descriptor lock(directory.c_str(), O_RDONLY | O_DIRECTORY);
    if (!lock.isopen()) throw BackupError(fmt::format("{}: {}", directory.string(), std::strerror(errno)));
    if (::flock(lock.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return std::nullopt;
    FrozenFiles files;
    Backup backup(directory, files, target, [] {});
    backup.begin();
    return backup.write();
}

void removeleftovers(const fs::path& directory) {
    std::error_code error;
    fs::recursive_directory_iterator entry(directory, fs::directory_options::skip_permission_denied, error);
    for (const fs::recursive_directory_iterator end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (!name.starts_with('.') || !name.ends_with(partending)) continue;
        // Another server's backup may be under way here.
        const Descriptor file(entry->path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
        if (file.isopen() && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0) ::unlink(entry->path().c_str());
    }
}

}  // namespace host
