// The free functions of the platform, each a step to the installed host.
#include "platform/host.h"

#include <stdexcept>

#include "platform/background.h"
#include "platform/clock.h"
#include "platform/event.h"
#include "platform/files.h"
#include "platform/hook.h"
#include "platform/http.h"
#include "platform/level.h"
#include "platform/logger.h"
#include "platform/network.h"
#include "platform/schedule.h"
#include "platform/stores.h"
#include "platform/text.h"
#include "platform/turn.h"
#include "platform/views.h"

namespace platform {

namespace {
Host* installed = nullptr;
}

Host& host() {
    if (installed == nullptr) throw std::logic_error("no host is installed");
    return *installed;
}

void installhost(Host* host) { installed = host; }

void RegisterPlugin(const std::string& name, const std::string& introduction, const LL::Version& version,
                    const std::map<std::string, std::string>& others) {
    host().plugins->add({name, introduction, version, others});
}

namespace Schedule {
void delay(Task task, std::uint64_t ticks) { host().scheduler->delay(std::move(task), ticks); }
void repeat(Task task, std::uint64_t ticks, int maxcount) {
    host().scheduler->repeat(std::move(task), ticks, maxcount);
}
}  // namespace Schedule

void Logger::put(LogLevel level, std::string_view message) const {
    host().log->write(title_, level, message, consolelevel, file_);
}
void Logger::setFile(const std::string& path, bool append) {
    file_ = path;
    host().log->openFile(path, append);
}
void Logger::setDefaultFile(const std::string& path, bool append) { host().log->setDefaultFile(path, append); }

namespace I18n {
void chooseLanguage(const std::string& code) {
    // Looked up at each call: a plug-in that loads replaces what the name stands for.
    const auto choose = reinterpret_cast<ChooseLanguageFunction>(dlsym_real(symbols::chooseLanguage));
    if (choose != nullptr) choose(code);
}
std::string get(const std::string& key, const std::string& locale) { return host().texts->gametext(key, locale); }
std::string currentlanguage() { return host().texts->currentlanguage(); }
}  // namespace I18n

namespace Translation {
I18nBase* loadI18nImpl(const std::string& path, const std::string& defaultlocale, const LangData& defaults) {
    return host().texts->loadI18n(path, defaultlocale, defaults);
}
}  // namespace Translation

std::vector<std::string> GetFileNameList(const std::string& directory) { return host().files->list(directory); }

Turn::Turn() { host().turn->take(); }
Turn::~Turn() { host().turn->give(); }

namespace Background {
void start(std::function<void()> body) { host().background->start(std::move(body)); }
std::shared_ptr<void> busy() { return host().background->busy(); }
bool stopping() { return host().background->stopping(); }
}  // namespace Background

namespace Stores {
bool writable() { return unwritable().empty(); }
std::string unwritable() { return host().stores != nullptr ? host().stores->unwritable() : std::string(); }
void whenwritten(std::function<void()> work) {
    if (host().stores != nullptr)
        host().stores->whenwritten(std::move(work));
    else
        work();
}
}  // namespace Stores

std::int64_t unixseconds() { return host().clock->unixmilliseconds() / 1000; }

void* dlsym_real(const char* decoratedname) { return host().hooks->find(decoratedname); }
int HookFunction(void* target, void** original, void* replacement) {
    return host().hooks->replace(target, original, replacement);
}

namespace PlayerInfo {
std::string getXuid(const std::string& name) { return host().knownplayers->getXuid(name); }
std::string fromXuid(const std::string& xuid) { return host().knownplayers->fromXuid(xuid); }
}  // namespace PlayerInfo

bool HttpGetSync(const std::string& url, int& status, std::string& result, int timeoutSeconds) {
    Http* const http = host().http;
    return http != nullptr && http->get(url, status, result, timeoutSeconds);
}
bool HttpPostSync(const std::string& url, const std::string& contenttype, const std::string& body, int& status,
                  std::string& result, int timeoutSeconds) {
    Http* const http = host().http;
    return http != nullptr && http->post(url, contenttype, body, status, result, timeoutSeconds);
}

namespace Shown {
void offer(View view) {
    if (host().views != nullptr) host().views->offer(std::move(view));
}
Counter counter(const CountName& name) {
    return host().views != nullptr ? Counter(host().views->counter(name)) : Counter();
}
Gauge gauge(const CountName& name) { return host().views != nullptr ? Gauge(host().views->gauge(name)) : Gauge(); }
Histogram histogram(const CountName& name, const std::vector<double>& bounds) {
    return host().views != nullptr ? Histogram(host().views->histogram(name, bounds)) : Histogram();
}
void gauge(const CountName& name, std::function<double()> read) {
    if (host().views != nullptr) host().views->gauge(name, std::move(read));
}
}  // namespace Shown

namespace Event::detail {
EventBus& bus() { return *host().events; }
}  // namespace Event::detail

}  // namespace platform
