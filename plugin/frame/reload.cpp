// Every file is read and checked before anything is in force. None is written, but for texts that the language file
// lacks, as at a start.
#include "plugin/frame/reload.h"

#include <atomic>
#include <memory>

#include "platform/background.h"
#include "platform/schedule.h"
#include "plugin/base/config.h"
#include "plugin/base/guards.h"
#include "plugin/base/language.h"
#include "plugin/base/owntexts.h"
#include "plugin/formparts/asker.h"
#include "plugin/forms/openers.h"

namespace ordomart {

namespace {

std::atomic<bool> isreloading = false;

struct drafts {
    settingsdraft settings;
    textsdraft texts;
    std::vector<std::string> faults;  // of everything
};

drafts readall() {
    drafts read{draftsettings(), drafttexts(), {}};
    for (const auto& some : {read.settings.faults, read.texts.faults, categoryfaults()})
        read.faults.insert(read.faults.end(), some.begin(), some.end());
    return read;
}

void putinforce(const asker& by, const drafts& read) {
    auto faults = read.faults;
    textcount texts;
    if (faults.empty() && !takeover(read.texts, texts)) faults.push_back(paths::langs + ": cannot be loaded");
    if (!faults.empty()) {
        by.tell(LogLevel::error, owntext::reloadrefused);
        for (const auto& fault : faults) by.tell(LogLevel::error, owntext::reloadfault, fault);
        return;
    }
    std::size_t changed = 0;
    for (const auto& [key, before, after, waits] : takeover(read.settings)) {
        by.tell(LogLevel::info, waits ? owntext::reloadwaits : owntext::reloadchanged, key, before, after);
        if (!waits) ++changed;
    }
    by.tell(LogLevel::info, owntext::reloaddone, changed, texts.changed, texts.all);
}

}  // namespace

void askreload(ServerPlayer* player, CommandOutput& output) {
    if (isreloading.exchange(true)) return output.error(tr(player, owntext::reloadruns));
    const auto run = [by = asker(player->getXuid())] {
        auto read = std::make_shared<drafts>();
        if (!envelope([&] { *read = readall(); })) {
            isreloading = false;
            return;
        }
        Schedule::delay(
            [by, read] {
                envelope([&] { putinforce(by, *read); });
                isreloading = false;
            },
            0);
    };
    if (!envelope([&] { Background::start(run); })) isreloading = false;
}

}  // namespace ordomart
