#pragma once

#include <cstdint>

namespace RecordCore::X264 {

/// Chooses the quantiser of each frame of a film so that the film keeps its average bit rate. The encoder's
/// own rate control does not know how long the film is, looks at every frame a second time to guess what it
/// will cost, and changes the quantiser with every frame, by which what stands still is coded again and
/// again. Here the quantiser follows what the film has cost so far and what is left to spend, and stays where
/// it is as long as it can. Pure arithmetic; the same calls give the same quantisers.
class FilmRate {
public:
    /// `seconds`: length of the film; 0 when it is not known.
    FilmRate(double bitsPerSecond, double seconds);

    enum class Frame { key, change, refinement };

    /// The quantiser of the frame shown at `seconds`. Times rise.
    int quantiser(Frame frame, double seconds);
    /// What the quantiser of the frame asked for last was derived from; to be given back in `coded`.
    int base() const { return current; }

    /// A frame came out of the encoder. `base` as of when it went in.
    void coded(std::int64_t bits, int base);

private:
    double wanted() const;

    double rate;
    double length;
    double now = 0;
    double spent = 0; ///< bits
    // Bits times step size are about the same whatever the quantiser.
    double cost = 0;       ///< of the whole film so far
    double recentCost = 0; ///< fading
    double recentTime = 0; ///< seconds, fading alike
    int current;
};

} // namespace RecordCore::X264
