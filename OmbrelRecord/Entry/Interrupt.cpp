#include "OmbrelRecord/Entry/Interrupt.h"

#include <csignal>

namespace OmbrelRecord {

namespace {

std::atomic<bool> flag{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the flag is set by a signal handler");

constexpr int handled[]{SIGINT, SIGTERM};

void handle(int signal) {
    if (flag.exchange(true)) std::signal(signal, SIG_DFL), std::raise(signal);
}

} // namespace

Interrupt::Interrupt() {
    flag = false;
    for (const int signal : handled)
        std::signal(signal, handle);
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
