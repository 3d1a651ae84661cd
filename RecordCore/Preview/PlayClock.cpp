#include "RecordCore/Preview/PlayClock.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace RecordCore {

namespace {

constexpr double mostPatience = 1;  ///< seconds without the first sound
constexpr double mostSilence = 0.5; ///< seconds that the sound may stand still
constexpr double jump = 0.04;       ///< seconds; larger differences are corrected at once
constexpr double share = 0.05;      ///< of a smaller difference, corrected each time it is looked at

} // namespace

void PlayClock::start(double seconds, double now, Heard sound) {
    running = true;
    heard = std::move(sound);
    origin = latest = seconds;
    offset = seconds - now;
    startedAt = lastProgress = now;
    waiting = static_cast<bool>(heard);
    lastHeard = 0;
}

void PlayClock::stop() {
    running = false;
    heard = nullptr;
}

double PlayClock::at(double now) {
    if (!running) return latest;
    if (heard) {
        const std::optional<double> sound = heard();
        if (sound && *sound > lastHeard) {
            lastHeard = *sound;
            lastProgress = now;
        }
        if (!sound || now - lastProgress > (waiting ? mostPatience : mostSilence)) {
            // The film goes on without it, from where it is.
            if (waiting) offset = origin - now;
            heard = nullptr;
            waiting = false;
        } else if (*sound > 0) {
            const double error = origin + *sound - (now + offset);
            offset += waiting || std::abs(error) > jump ? error : error * share;
            waiting = false;
        }
    }
    if (!waiting) latest = std::max(latest, now + offset);
    return latest;
}

} // namespace RecordCore
