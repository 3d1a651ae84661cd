#pragma once

#include <functional>
#include <optional>

namespace RecordCore {

/// The time of a film that plays. Where there is sound its clock rules, smoothed, because what a sound
/// service tells jitters; otherwise, and when the sound fails, the system's. One thread.
class PlayClock {
public:
    /// Tells how many seconds of sound have been heard; 0 while it is on its way, none when there is none.
    using Heard = std::function<std::optional<double>()>;

    /// Begins at film time `seconds` at the moment `now` (seconds of a clock that never goes back). Without
    /// `heard` there is no sound. With it the time stands still until the first sound is heard.
    void start(double seconds, double now, Heard heard = nullptr);
    void stop();
    bool runs() const { return running; }

    /// The film's time. Never goes back between two starts.
    double at(double now);
    /// Whether the sound rules.
    bool followsSound() const { return running && static_cast<bool>(heard); }

private:
    bool running = false;
    Heard heard;
    double origin = 0;    ///< film time at the start
    double offset = 0;    ///< film time minus `now`
    double startedAt = 0; ///< `now` at the start
    bool waiting = false; ///< for the first sound
    double lastHeard = 0;
    double lastProgress = 0; ///< `now` when the sound was heard to go on
    double latest = 0;       ///< film time told last
};

} // namespace RecordCore
