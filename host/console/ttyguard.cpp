#include "host/console/ttyguard.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>

namespace host {

namespace {

// Those that end a program unless it says otherwise. What is ignored or handled already is left as it is.
constexpr int ending[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS,
                          SIGFPE, SIGILL,  SIGSYS, SIGXCPU, SIGXFSZ, SIGALRM};

// Read in signal handlers.
std::atomic<int> guarded = -1, woken = -1;
std::atomic<bool> continued = false;
termios former;

void putback() {
    const int terminal = guarded;
    if (terminal >= 0 && TtyGuard::ours(terminal)) ::tcsetattr(terminal, TCSANOW, &former);
}

// The handler is gone by now, and the signal comes again with its own effect as soon as this returns.
void end(int signal) {
    putback();
    ::raise(signal);
}

void goon(int) {
    continued = true;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t put = ::write(woken, &one, sizeof one);
}

void handle(int signal, void (*handler)(int), int flags) {
    struct sigaction now {};
    if (::sigaction(signal, nullptr, &now) != 0 || now.sa_handler != SIG_DFL) return;
    now.sa_handler = handler;
    now.sa_flags = flags;
    ::sigaction(signal, &now, nullptr);
}

void leave(int signal, void (*handler)(int)) {
    struct sigaction now {};
    if (::sigaction(signal, nullptr, &now) == 0 && now.sa_handler == handler) ::signal(signal, SIG_DFL);
}

}  // namespace

TtyGuard::TtyGuard(int terminal, int wake) {
    if (::tcgetattr(terminal, &former) != 0) return;
    guarded = terminal;
    woken = wake;
    for (const int signal : ending) handle(signal, &end, SA_RESETHAND);
    handle(SIGCONT, &goon, SA_RESTART);
}

TtyGuard::~TtyGuard() {
    putback();
    leave(SIGCONT, &goon);
    for (const int signal : ending) leave(signal, &end);
    guarded = -1;
}

bool TtyGuard::ours(int terminal) {
    const pid_t group = ::tcgetpgrp(terminal);
    return group < 0 || group == ::getpgrp();
}

bool TtyGuard::wenton() { return continued.exchange(false); }

}  // namespace host
