// An import goes by steps, each of which is known to be on the disk before the next one begins. The file is checked.
// Its pieces are put into a table where they wait and nobody sees them ("handover.staged"). Then the market is closed
// and a record says that it is decided ("handover", "decided"). From then on one piece a pass is taken over and erased
// in one act, with the record as the promise that all of them will be: a start that finds it goes on where the last run
// was killed. A start that finds pieces without it erases them.
#include "plugin/handover/handover.h"

#include <fmt/format.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

#include "platform/background.h"
#include "platform/host.h"
#include "platform/records.h"
#include "platform/schedule.h"
#include "platform/turn.h"
#include "plugin/base/guards.h"
#include "plugin/base/owntexts.h"
#include "plugin/economy/marketopen.h"
#include "plugin/formparts/asker.h"
#include "plugin/handover/emptyshops.h"
#include "plugin/handover/exporting.h"
#include "plugin/handover/linefile.h"
#include "plugin/handover/staged.h"
#include "plugin/ledger/ledger.h"

namespace handover {

using ordomart::asker, ordomart::envelope;
using platform::Background::start, platform::Background::stopping, platform::Turn;

namespace owntext = ordomart::owntext;

namespace {

constexpr const char *table = "handover", *decidedkey = "decided", *stagedtable = "handover.staged";
constexpr std::size_t erasedatatime = 200;

std::atomic<bool> isbusy = false, istaking = false;
std::optional<ledger::thinningheld> held;

platform::Records& records() { return *platform::host().records; }

bool goeson() { return !stopping(); }

void erasestaged(std::function<void()> then) {
    const Turn turn;
    const auto some = records().keys(stagedtable, "", erasedatatime);
    for (const auto& key : some) records().erase(stagedtable, key);
    if (some.empty()) return then();
    ordomart::whenwritten([then = std::move(then)] { erasestaged(then); });
}

void endimport() {
    held.reset();
    ordomart::openaftertakeover();
    istaking = false;
    isbusy = false;
}

// ---- from the decision on

struct decision {
    std::string file, by;
    std::uint64_t base = 0, entries = 0;
    linecounts counts;
    NLOHMANN_DEFINE_TYPE_INTRUSIVE(decision, file, by, base, entries, counts)
};

void tellresult(const asker& to, const char* key, const std::string& file, const linecounts& counts) {
    const auto of = [&](const char* kind) {
        const auto found = counts.find(kind);
        return found != counts.end() ? found->second : 0;
    };
    to.tell(platform::LogLevel::info, key, file, of(line::shop), of(line::good), of(line::commission), of(line::entry));
}

void finish(const decision& of) {
    if (of.entries > 0) ledger::notetakenover(of.base, of.base + of.entries);
    records().erase(table, decidedkey);
    ledger::start();
    endimport();
    ordomart::whenwritten([of] {
        tellresult(asker(of.by), owntext::importdone, of.file, of.counts);
        start([] { envelope(&savetakenin); });
    });
}

// In a pass of the server thread.
void takesome(const std::shared_ptr<const decision>& of) {
    const bool isfine = envelope([&] {
        const auto next = records().rows(stagedtable, {}, 1);
        if (next.empty()) return finish(*of);
        takeover(next.front().bytes, of->base);
        records().erase(stagedtable, next.front().key);
        ordomart::whenwritten([of] { platform::Schedule::delay([of] { takesome(of); }, 1); });
    });
    if (!isfine)
        ordomart::logger.fatal("{} cannot be taken in any further. The market stays closed; restore a backup",
                               of->file);
}

// ---- up to the decision

class importing : public std::enable_shared_from_this<importing> {
public:
    importing(std::string path, const std::string& xuid) : path_(std::move(path)), name_(nameof(path_)), by_(xuid) {}

    void check() {
        attempt([this] {
            file_ = checkfile(path_, &goeson);
            refuseothers();
            if (const auto here = moneyhere(); file_.money != here)
                by_.tell(platform::LogLevel::warn, owntext::importmoney, name_, file_.money, here);
            tellresult(by_, owntext::importchecked, name_, file_.counts);
            pieces_ = std::make_unique<stager>(file_.numbers);
            walk_ = std::make_unique<filewalk>(path_, *pieces_);
            erasestaged([self = shared_from_this()] { start([self] { self->stage(); }); });
        });
    }

private:
    // What it throws ends the import with nothing taken in.
    void attempt(const std::function<void()>& body) {
        try {
            body();
        } catch (const std::exception& e) {
            refuse(e.what());
        }
    }
    void refuse(const std::string& why) {
        by_.tell(platform::LogLevel::error, owntext::importrefused, why);
        erasestaged(&endimport);
    }

    void refuseothers() const {
        if (const auto there = notempty(file_.owners, &goeson); !there.empty()) throw std::runtime_error(there);
        if (!goeson()) throw std::runtime_error("the server stops");
    }

    void stage() {
        attempt([this] {
            while (!isread_ && !pieces_->isfull()) isread_ = !walk_->step();
            if (isread_ && walk_->sum() != file_.sum)
                throw std::runtime_error(name_ + ": has been changed since it was checked");
            const Turn turn;
            records().put(stagedtable, fmt::format("{:08}", number_++), [bytes = pieces_->take()] { return bytes; });
            ordomart::whenwritten([self = shared_from_this()] {
                if (stopping()) return;  // the next start forgets it
                start([self] { self->isread_ ? self->decide() : self->stage(); });
            });
        });
    }

    void decide() {
        attempt([this] {
            {
                const Turn turn;
                ordomart::closefortakeover();
            }
            refuseothers();
            const Turn turn;
            held.emplace();
            const auto next = ledger::nextnumber();
            const auto of = std::make_shared<const decision>(
                decision{name_, by_.xuid(), next == 1 ? std::max<std::uint64_t>(file_.numbers.first(), 1) : next,
                         file_.numbers.size(), file_.counts});
            records().put(table, decidedkey, [text = json(*of).dump()] { return text; });
            ordomart::whenwritten([of] { platform::Schedule::delay([of] { takesome(of); }, 0); });
        });
    }

    const std::string path_, name_;
    const asker by_;
    checkedfile file_;
    std::unique_ptr<stager> pieces_;
    std::unique_ptr<filewalk> walk_;
    int number_ = 0;
    bool isread_ = false;
};

bool begin(const std::function<void()>& body) {
    if (isbusy.exchange(true)) return false;
    if (!envelope([&] { start(body); })) isbusy = false;
    return true;
}

}  // namespace

bool startexport(const std::string& path, const std::string& xuid) {
    return begin([path, by = asker(xuid)] {
        try {
            const auto counts = exportmarket(
                path, &goeson, [&](const linecounts& so) { tellresult(by, owntext::exportshops, nameof(path), so); });
            tellresult(by, owntext::exportdone, path, counts);
        } catch (const std::exception& e) {
            by.tell(platform::LogLevel::error, owntext::exportfailed, e.what());
        }
        isbusy = false;
    });
}

bool startimport(const std::string& path, const std::string& xuid) {
    return begin([work = std::make_shared<importing>(path, xuid)] {
        istaking = true;
        work->check();
    });
}

bool istakingin() { return istaking; }

void resume() {
    isbusy = istaking = false;
    ordomart::openaftertakeover();
    held.reset();
    if (platform::host().records == nullptr) return;
    const auto decided = records().get(table, decidedkey);
    if (!decided) return erasestaged([] {});
    const auto of = std::make_shared<const decision>(json::parse(*decided).get<decision>());
    ordomart::logger.warn("The last run ended while {} was being taken in. This one goes on with it", of->file);
    isbusy = istaking = true;
    ordomart::closefortakeover();
    held.emplace();
    platform::Schedule::delay([of] { takesome(of); }, 0);
}

}  // namespace handover
