// Every line that an envelope can write stands in the tables below; the catching is written once.
#include "plugin/base/guards.h"

#include <fmt/format.h>

#include <cmath>

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "platform/hardwarefault.h"
#include "platform/stores.h"

namespace ordomart {

namespace {

constexpr const char* runtimeline = "An runtimeerrorerror occurred, {}";
constexpr const char* faultline = "SEH Uncaught Exception Detected!\n{}";
constexpr const char* parserline = "An error occurred while parsing the ordomart data, {}";
// Bans and list queries have always told the unknown with the words of the update check; operators search logs for it.
constexpr const char* updateline = "An error was caught during the update process.";

}  // namespace

const envelopelines usualenvelope = {runtimeline, faultline, parserline,
                                     "An error was caught during the prehandlemain process."};
const envelopelines refreshenvelope = {runtimeline, faultline, parserline, updateline};
const envelopelines manageenvelope = {"",
                                      faultline,
                                      "",
                                      "An error was caught during openmanagesetstateform",
                                      LogLevel::info,
                                      "In openmanagesetstateform"};
const envelopelines banenvelope = {runtimeline, faultline, "", updateline, LogLevel::info, "In Auto Update system"};
const envelopelines updateenvelope = {
    "",      faultline,     "An error occurred while parsing the update configuration, {}", updateline, LogLevel::info,
    nullptr, LogLevel::info};
const envelopelines reportenvelope = {"", faultline, "An error occurred while parsing the testuploaddata, {}",
                                      "An error was caught during testuploaddata process.", LogLevel::error};

namespace {

// {0} is what(), {1} the place.
constexpr envelopelines deferredenvelope = {"An runtimeerrorerror occurred, {0} at base:{1}",
                                            "SEH Uncaught Exception Detected:{0} at base:{1}",
                                            "An error occurred while parsing the ordomart data, {0} at base:{1}",
                                            "An error was caught during the prehandlemain process. at base:{1}"};

enum class kind { runtime, fault, parser, other };

struct failure {
    kind what;
    std::string text;
};

std::optional<failure> attempt(const std::function<void()>& body) {
    try {
        body();
        return std::nullopt;
    } catch (const std::runtime_error& e) {
        return failure{kind::runtime, e.what()};
    } catch (const seh_exception& e) {
        return failure{kind::fault, e.what()};
    } catch (const nlohmann::detail::exception& e) {
        return failure{kind::parser, e.what()};
    } catch (...) {
        return failure{kind::other, {}};
    }
}

// Writes the line of a failure's kind; tells which kind's line it was.
kind report(const failure& failed, const envelopelines& lines, std::string_view place) {
    const char* const bykind[] = {lines.runtime, lines.fault, lines.parser, lines.other};
    const char* line = bykind[static_cast<int>(failed.what)];
    const kind told = line != nullptr && *line != '\0' ? failed.what : kind::other;
    if (told == kind::other) line = lines.other;
    logger.put(told == kind::parser ? lines.parserlevel : lines.level,
               fmt::vformat(line, fmt::make_format_args(failed.text, place)));
    return told;
}

}  // namespace

bool envelope(const std::function<void()>& body, const char* place, const envelopelines& lines) {
    const auto failed = attempt(body);
    if (!failed) return true;
    if (place == nullptr) place = lines.faultplace;
    if (report(*failed, lines, {}) == kind::fault && place != nullptr) logger.put(LogLevel::error, place);
    return false;
}

void whenwritten(std::function<void()> body) {
    Stores::whenwritten([body = std::move(body)] { envelope(body); });
}

bool envelopeat(const char* base, const std::function<void()>& body) {
    const auto failed = attempt(body);
    if (failed) report(*failed, deferredenvelope, base);
    return !failed;
}

// ---- timing

double querytimer::seconds() const {
    const double milliseconds = static_cast<double>(std::clock() - start_) * 1000.0 / CLOCKS_PER_SEC;
    return std::trunc(milliseconds) / 1000.0;
}

void querytimer::write(const char* line, const char* place) const {
    const double taken = seconds();
    const std::string_view at = place;
    debuglogger.put(LogLevel::info, fmt::vformat(line, fmt::make_format_args(taken, at)));
}

}  // namespace ordomart
