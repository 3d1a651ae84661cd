#pragma once

#include <vector>

namespace RecordCore {

/// Learns at which moment of the host clock each sample of a sound device was heard.
///
/// A device counts samples evenly but at a rate of its own (some hundred parts per million off), while the
/// times that a sound service gives for its blocks jitter by milliseconds and are now and then far off. The
/// clock joins the two: a Kalman filter of two states, the offset of the sample count against the host clock
/// and its drift, fed with clipped innovations. Positions count samples since the last `restart`.
/// One thread at a time.
class SoundClock {
public:
    /// Forgets the offset and, as it may be another device, trusts the known drift less.
    void restart();

    /// `time` (host clock seconds) was measured for the sample at `position`. Positions rise.
    void observe(double position, double time);

    /// Settles with what was observed, however little; nothing when nothing was.
    void settleNow();

    /// Whether enough was observed since the last restart for `timeAt` to be used.
    bool settled() const { return ready; }

    /// Host clock seconds at which the sample at `position` was heard.
    double timeAt(double position) const;

    /// Seconds of the host clock that pass in one second of samples: 1 for a perfect device, at most 1 % off.
    double secondsPerSecond() const { return 1 + drift; }

private:
    void settle();
    void jump();
    double predictedOffset(double x) const { return offset + drift * (x - at); }

    struct Measurement {
        double x = 0;      ///< position in nominal seconds
        double offset = 0; ///< measured time − x
    };

    bool ready = false;
    std::vector<Measurement> pending; ///< measurements before the clock settles, or that speak for a jump
    double at = 0;                    ///< nominal seconds for which `offset` stands
    double offset = 0;                ///< seconds
    double drift = 0;                 ///< seconds per second
    double varOffset = 0;             ///< covariance of the two
    double covariance = 0;
    double varDrift = 0;
    double noise = 0; ///< variance of a single measurement, learned
    bool driftKnown = false;
};

} // namespace RecordCore
