#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace RecordCore {

/// Reads stereo sound at a speed very close to 1 that may change at any sample: a windowed sinc, evaluated
/// between the input samples (interleaved floats). Delays nothing: output at input position p is the sound
/// at p. Flat within 0.1 dB to 18 kHz; what it adds lies below −80 dB. One thread at a time.
class DriftResampler {
public:
    DriftResampler();

    /// Appends input.
    void push(std::span<const float> samples);

    /// Position of the next output in input samples since the last `reset`; may be fractional.
    double position() const { return next; }
    /// One past the last input position pushed.
    double end() const { return static_cast<double>(firstHeld + heldFrames()); }

    /// Goes on at another place; what lies before it is let go. Not back behind `position`.
    void moveTo(double position);

    /// Appends at most `frames` frames to `out`, `step` input samples (0.5 to 2) apart, and returns how many:
    /// fewer when the input does not reach far enough.
    std::size_t read(double step, std::size_t frames, std::vector<float>& out);

    /// Starts again at position 0, with no input.
    void reset();

private:
    std::ptrdiff_t heldFrames() const { return static_cast<std::ptrdiff_t>(held.size() / 2) - skip; }
    void compact();

    std::vector<float> held;      ///< interleaved input; the first `skip` frames are used up
    std::ptrdiff_t skip = 0;      ///< frames
    std::ptrdiff_t firstHeld = 0; ///< position of the first frame that still counts
    double next = 0;
};

} // namespace RecordCore
