#include "OmbrelRecord/Entry/Interrupt.h"

#include <csignal>

namespace OmbrelRecord {

namespace {

std::atomic<bool> flag{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the flag is set by a signal handler");

/// The terminal that is closed is a request to end, too: the recording is finished as by Ctrl-C.
constexpr int handled[]{SIGINT, SIGTERM, SIGHUP};

std::atomic<bool> asked{false}; ///< by somebody; a terminal that goes says so more than once

void handle(int signal) {
    flag = true;
    if (signal != SIGHUP && asked.exchange(true)) std::signal(signal, SIG_DFL), std::raise(signal);
}

} // namespace

Interrupt::Interrupt() {
    flag = asked = false;
    for (const int signal : handled)
        // Who started it with nohup wants it to go on.
        if (std::signal(signal, handle) == SIG_IGN && signal == SIGHUP) std::signal(signal, SIG_IGN);
    // A display, a sound server or a reader that is gone is an error to deal with, not the end.
    std::signal(SIGPIPE, SIG_IGN);
}

Interrupt::~Interrupt() {
    for (const int signal : handled)
        std::signal(signal, SIG_DFL);
    std::signal(SIGPIPE, SIG_DFL);
}

const std::atomic<bool>& Interrupt::requested() const {
    return flag;
}

} // namespace OmbrelRecord
