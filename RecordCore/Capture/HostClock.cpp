#include "RecordCore/Capture/HostClock.h"

#include <ctime>

namespace RecordCore {

namespace {

class MonotonicClock final : public HostClock {
public:
    double now() const override {
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }
};

} // namespace

const HostClock& HostClock::system() {
    static const MonotonicClock clock;
    return clock;
}

} // namespace RecordCore
