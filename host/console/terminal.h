// Feeds what is typed at a file descriptor to a console, on a thread of its own that can be ended while it waits.
#pragma once

#include <functional>
#include <string>
#include <thread>

namespace host {

class Console;

class Terminal {
public:
    // `stopped` is called once after a line that ends the server. The end of the input only ends the reading.
    Terminal(Console& console, int input, std::function<void()> stopped);
    ~Terminal();
    void stop();

private:
    void read();

    Console& console_;
    int input_;
    std::function<void()> stopped_;
    int wake_;  // an event that ends the wait
    std::thread thread_;
};

}  // namespace host
