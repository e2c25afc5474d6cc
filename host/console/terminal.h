// Feeds what is typed at a file descriptor to a console, on a thread of its own that can be ended while it waits:
// through a line editor where a person sits at a terminal, and line by line as it comes elsewhere.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace host {

class Console;
class Output;

class Terminal {
public:
    // `stopped` is called once after a line that ends the server. The end of the input only ends the reading. What was
    // typed before is kept in `directory`.
    Terminal(Console& console, Output& output, int input, std::filesystem::path directory,
             std::function<void()> stopped);
    ~Terminal();
    void stop();

private:
    void read();
    bool edit();

    Console& console_;
    Output& output_;
    int input_;
    const std::filesystem::path directory_;
    std::function<void()> stopped_;
    std::atomic<bool> over_ = false;
    int wake_;  // an event that ends the wait
    std::thread thread_;
};

}  // namespace host
