#pragma once

#include "RecordCore/Media/VideoEncoder.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace RecordCore::X264 {

/// Chooses the quantiser of each frame of a film so that the film keeps its average bit rate. The encoder's
/// own rate control does not know how long the film is, looks at every frame a second time to guess what it
/// will cost, and changes the quantiser with every frame, by which what stands still is coded again and
/// again. Here the quantiser follows what the film has cost so far and what is left to spend, and stays where
/// it is as long as it can: the most quality for the bits is one quantiser from beginning to end. For that it
/// must be known where the film is heavy; a rough forecast is enough, its scale is learned. A part of a film
/// reckons with what it is told of the others: what they took counts as its own. Pure arithmetic; the same
/// calls give the same quantisers.
class FilmRate {
public:
    /// In seconds of the film.
    struct Part {
        double begin = 0;
        double end = 0;
        double share = 1; ///< as of FilmPart
    };

    /// `seconds`: length of the film; 0 when it is not known. `forecast`: of each of the film's frames, or of
    /// the part's, evenly over its length; empty when nothing is known.
    FilmRate(double bitsPerSecond, double seconds, std::span<const FrameForecast> forecast = {},
             const std::optional<Part>& part = {});

    enum class Frame { key, change, refinement };

    /// The quantiser of the frame shown at `seconds`. Times rise.
    int quantiser(Frame frame, double seconds);

    /// The next of the frames asked for came out of the encoder.
    void coded(std::int64_t bits);

    /// There are no more frames, and all have come out.
    void finish();

    /// Of the frames asked for here.
    EncodingTally tally() const;
    /// What is known of the film's other parts.
    void setElsewhere(const EncodingTally& others);

private:
    /// A frame in the encoder.
    struct Asked {
        int base;
        double work; ///< forecast since the frame before
    };
    std::size_t frameAt(double seconds) const;
    double workUntil(double seconds) const;
    double wanted() const;

    double rate;
    double length; ///< of the film
    Part part;
    std::vector<double> work; ///< forecast from the part's begin up to each frame, in seconds of an even film
    std::vector<int> offsets;
    double now;
    double asked = 0; ///< work up to the frame asked for last
    double spent = 0; ///< bits
    std::deque<Asked> encoding;
    // Bits times step size are about the same whatever the quantiser.
    double cost = 0;       ///< so far
    double done = 0;       ///< work so far
    double recentCost = 0; ///< fading
    double recentDone = 0; ///< fading alike
    EncodingTally elsewhere;
    int current;
};

} // namespace RecordCore::X264
