// Two conventions of all menu code: a small result code, and the envelope around work that may meet bad data.
#pragma once

#include <ctime>
#include <functional>
#include <string>

#include "plugin/base/globals.h"

namespace ordomart {

enum class opresult : int { opened = 0, refused = 1, notready = 2, cooldown = 3 };

// What an envelope writes for each kind that it catches. An empty line means that the kind is caught as "anything
// else".
struct envelopelines {
    const char* runtime;  // {} is what()
    const char* fault;    // {} is what()
    const char* parser;   // {} is what()
    const char* other;
    LogLevel parserlevel = LogLevel::info;
    const char* faultplace = nullptr;  // a second line for a fault
    LogLevel level = LogLevel::error;  // of all other lines
};

// The usual one, and the words of the bodies that have their own.
extern const envelopelines usualenvelope, refreshenvelope, manageenvelope, banenvelope, updateenvelope, reportenvelope;

// Runs the body; what it throws is logged and ends it. True when it came through. `place` overrides faultplace.
bool envelope(const std::function<void()>& body, const char* place = nullptr,
              const envelopelines& lines = usualenvelope);
// The same, once everything that has changed so far is on the disk. In a turn.
void whenwritten(std::function<void()> body);
// The second form, of the deferred tasks of the chest handlers: adds the place to each line.
bool envelopeat(const char* base, const std::function<void()>& body);

// Processor time of a list query, written when told: fmt template with {} for seconds and {} for the place.
class querytimer {
public:
    querytimer() : start_(std::clock()) {}
    [[nodiscard]] double seconds() const;  // whole milliseconds
    void write(const char* line, const char* place = "") const;

private:
    std::clock_t start_;
};

}  // namespace ordomart
