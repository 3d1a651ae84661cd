#pragma once

namespace RecordCore {

/// The one clock of a recording: seconds of CLOCK_MONOTONIC. Screen frames, input, sound and camera are all
/// stamped by it, so that their times can be subtracted from each other. Callable from any thread.
class HostClock {
public:
    virtual ~HostClock() = default;
    virtual double now() const = 0;

    /// The system's clock.
    static const HostClock& system();
};

} // namespace RecordCore
