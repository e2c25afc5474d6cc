// The backup of a server that runs. Its instant lies between two passes: everything that has changed is written first,
// and nobody holds the turn, so that no trade is half done.
#include "host/core/parts.h"
#include "host/world/world.h"
#include "platform/stores.h"
#include "platform/turn.h"

namespace host {

BackupReport Server::Parts::backup(const std::filesystem::path& target, const BetweenPasses& betweenpasses) {
    const std::unique_lock alone(backingup, std::try_to_lock);
    if (!alone) throw BackupError(target.string() + ": another backup is under way, or the server stops");
    Backup made(directory, frozen, target, [&] {
        if (background.stopping()) throw BackupError(target.string() + ": the server stops, and the backup with it");
    });
    std::chrono::steady_clock::duration stopped{};
    betweenpasses([&] {
        const auto began = std::chrono::steady_clock::now();
        begininstant(made);
        stopped = std::chrono::steady_clock::now() - began;
    });
    auto report = made.write();
    report.stopped = std::chrono::duration_cast<std::chrono::microseconds>(stopped);
    say(platform::LogLevel::info, report.text());
    return report;
}

void Server::Parts::begininstant(Backup& backup) {
    const platform::Turn held;
    if (!world) throw BackupError("the server does not run");
    world->flush();
    if (const auto why = world->stores().unwritable(); !why.empty())
        throw BackupError("no backup of what is not on the disk: " + why);
    backup.begin();
}

}  // namespace host
