// A file descriptor that people or programs read at their own pace, written by a thread of its own. Whoever prints
// never waits: what does not fit into a bounded queue, since nobody reads (a pipe that is full, a terminal held with
// Ctrl-S), is dropped and counted, and the count is told as soon as something can be written again.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace host {

class Output {
public:
    static constexpr std::size_t mostwaiting = 1 << 20;  // bytes

    explicit Output(int descriptor);
    ~Output();  // stops

    // Adds the end of line that is missing. Any thread.
    void print(std::string text);
    [[nodiscard]] int descriptor() const;
    // The same without an end of line, for what is no line; it overtakes what is set aside.
    void put(std::string_view bytes);
    // While a line is typed on the terminal, what is printed is set aside for the typing thread, which draws it above
    // that line; `told` is called for each, and must not wait. Empty: it is written at once again.
    void setaside(std::function<void()> told);
    [[nodiscard]] std::string takeaside();
    // What waits is written if that goes within a second; what is printed afterwards is lost.
    void stop();

private:
    struct Parts;
    static void write(Parts& parts);

    // The thread's too: in the middle of a write that is stuck it can only be left behind.
    std::shared_ptr<Parts> parts_;
    std::thread thread_;
};

}  // namespace host
