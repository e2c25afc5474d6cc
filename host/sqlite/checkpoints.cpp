// A checkpoint is a passive one: it moves what nobody needs in the log any more, and waits for nobody.
#include "host/sqlite/checkpoints.h"

#include <sqlite3.h>

#include <utility>

namespace host {

namespace {

// Pages in the log. Commits that come faster than the disk can follow would let it grow without an end; past the second
// mark the one who commits does the rest, which is little then.
constexpr int enough = 1000, toomuch = 8000;

void checkpoint(sqlite3* file) {
    sqlite3_wal_checkpoint_v2(file, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

}  // namespace

Checkpoints::Checkpoints(SQLite::Database& file) : file_(file), thread_([this] { work(); }) {
    sqlite3_wal_hook(file.getHandle(), &Checkpoints::committed, this);
}

Checkpoints::~Checkpoints() {
    sqlite3_wal_hook(file_.getHandle(), nullptr, nullptr);
    {
        const std::lock_guard lock(mutex_);
        over_ = true;
    }
    wanted_.notify_one();
    thread_.join();
}

int Checkpoints::committed(void* self, sqlite3* file, const char*, int frames) {
    if (frames >= toomuch) {
        checkpoint(file);
    } else if (frames >= enough) {
        auto& checkpoints = *static_cast<Checkpoints*>(self);
        const std::lock_guard lock(checkpoints.mutex_);
        checkpoints.due_ = true;
        checkpoints.wanted_.notify_one();
    }
    return SQLITE_OK;
}

void Checkpoints::work() {
    std::unique_lock lock(mutex_);
    for (;;) {
        wanted_.wait(lock, [&] { return due_ || over_; });
        if (over_) return;
        due_ = false;
        lock.unlock();
        try {
            checkpoint(SQLite::Database(file_.getFilename(), SQLite::OPEN_READWRITE).getHandle());
        } catch (const SQLite::Exception&) {  // the next commit asks again
        }
        lock.lock();
    }
}

}  // namespace host
