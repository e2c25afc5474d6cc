// Who commits to a database in WAL mode does not wait for the disk; only moving what has gathered in the log into the
// file does, and SQLite leaves that to whoever commits at the wrong moment. Here a thread of its own does it, so that a
// slow disk does not hold up the server thread.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

struct sqlite3;

namespace host {

class Checkpoints {
public:
    // From now on and as long as both live.
    explicit Checkpoints(SQLite::Database& file);
    ~Checkpoints();
    Checkpoints(const Checkpoints&) = delete;
    Checkpoints& operator=(const Checkpoints&) = delete;

private:
    static int committed(void* self, sqlite3* file, const char* name, int frames);
    void work();

    SQLite::Database& file_;
    std::mutex mutex_;
    std::condition_variable wanted_;
    bool due_ = false, over_ = false;
    std::thread thread_;
};

}  // namespace host
