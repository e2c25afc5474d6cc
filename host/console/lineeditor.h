// A line typed on a terminal, with a prompt, the lines typed before and completion, by libedit, while others print:
// what they print is drawn above the line. All that it draws goes through the output's queue, so that a terminal which
// takes nothing holds up nobody. One thread, which makes it and lets it go.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/console/output.h"

namespace host {

// What can stand for the end of a line that is being typed.
struct Offer {
    std::string begun;               // this end of it
    std::vector<std::string> words;  // each begins with it
};

class LineEditor {
public:
    struct Place {
        int input;
        Output& output;
        int wake;                          // an event: something was printed, or there is an end to it
        std::function<bool()> isover;      // asked when the event is raised
        std::filesystem::path typedlines;  // the file for them
        std::function<Offer(const std::string& typed)> complete;
    };
    // Whether a person sits at both, at a terminal that can move its cursor.
    [[nodiscard]] static bool suits(int input, int output);

    explicit LineEditor(Place place);
    ~LineEditor();
    // The next line; nothing when there are no more (Ctrl-D), or when it is over.
    [[nodiscard]] std::optional<std::string> next();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace host
