#pragma once

#include <atomic>

namespace OmbrelRecord {

/// While it lives, Ctrl-C, a polite request to terminate and a terminal that is closed set a flag instead of
/// ending the program; the second one ends it at once. Writing to what is closed fails instead of ending the
/// program. One at a time.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    const std::atomic<bool>& requested() const;
};

} // namespace OmbrelRecord
