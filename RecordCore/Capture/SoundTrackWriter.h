#pragma once

#include "RecordCore/Capture/DriftResampler.h"
#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/SoundClock.h"
#include "RecordCore/Capture/SoundStream.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace RecordCore {

/// Makes an unbroken sound track, in step with the picture, of the blocks that a sound stream delivers.
///
/// Sample k of the track is what was heard at `firstFrameTime` + k / 48000 on the host clock. Sound from
/// before that is dropped, time without sound becomes silence, and a device that runs fast or slow is
/// resampled continuously, so slightly that nobody hears it. The first 0.4 s after a device starts are held
/// back until it is known when they were heard, and so is what a monitor delivers before it is played.
///
/// Callable from any thread. The sink is called under the object's lock, one call at a time and in order; it
/// must not call back. What it throws is kept, ends the track and is thrown again by `advance` and `finish`.
class SoundTrackWriter {
public:
    /// Receives the track's samples: 48 kHz stereo, interleaved. Usually SoundEncoder::encode.
    using Sink = std::function<void(std::span<const float>)>;

    struct Report {
        std::int64_t frames = 0;       ///< length of the track
        std::int64_t silentFrames = 0; ///< of them inserted
        int corrections = 0;           ///< times the track was out of step so far that it was cut
        double drift = 0;              ///< of the device: seconds gained per second
        double greatestError = 0; ///< seconds, largest distance from the device's clock in steady running
    };

    SoundTrackWriter(const HostClock& hostClock, Sink sink);

    /// The next block of the stream. Never throws.
    void add(const SoundBlock& block);

    /// The picture starts: the track's sample 0 stands at this host clock time. Called once.
    void begin(double firstFrameTime);

    /// To be called a few times a second: a stream that delivers nothing is replaced by silence from a
    /// second on, so that the track never lags far behind the picture.
    void advance();

    /// No more sound comes: fills the track up to that host clock time. Nothing is written after it, and
    /// nothing at all when the picture never began.
    void finish(double endTime);

    Report report() const;

private:
    void startRun();
    void drain();
    void write();
    void align();
    void giveSilence(std::int64_t frames);
    void give(std::span<const float> samples);
    double slot() const; ///< host clock time of the next sample of the track

    const HostClock& hostClock;
    mutable std::mutex mutex;
    // All below is guarded by the mutex.
    Sink sink;
    std::exception_ptr failure;
    std::optional<double> origin; ///< host clock time of sample 0
    std::int64_t written = 0;     ///< frames given to the sink
    std::optional<double> end;    ///< set by `finish`

    SoundClock deviceClock;
    DriftResampler
        resampler; ///< its positions and the device clock's are the same: frames since the run's start
    std::int64_t pushed = 0; ///< frames of this run
    bool running = false;    ///< a run has started
    bool aligned = false;    ///< its position fits the track's
    bool blocksCame = false; ///< since the last `advance`
    std::optional<double> quietSince;
    std::vector<float> output; ///< scratch
    Report facts;
};

} // namespace RecordCore
