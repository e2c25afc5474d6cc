// The terminal as it was before a line editor came: put back when this goes, and when a signal ends the program.
// One at a time.
#pragma once

namespace host {

class TtyGuard {
public:
    // `wake` is an event that is raised when the program goes on after a stop of its job.
    TtyGuard(int terminal, int wake);
    ~TtyGuard();
    TtyGuard(const TtyGuard&) = delete;
    TtyGuard& operator=(const TtyGuard&) = delete;

    // False while another job has the terminal: touching it would stop this one.
    [[nodiscard]] static bool ours(int terminal);
    // Whether the program has gone on after a stop since the last call.
    [[nodiscard]] static bool wenton();
};

}  // namespace host
