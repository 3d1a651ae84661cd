#pragma once

#include "RecordCore/Activity/ActivityAnalyzer.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/PictureView.h"

#include <array>
#include <cstdint>
#include <deque>
#include <vector>

namespace RecordCore {

/// Collects the activity of frames as they come, one object per recording or analysed file. Work per frame is
/// bounded by the grid, whatever the picture's size; at most 15 frames a second are looked at. Not locked:
/// one thread adds, and reads when it is done.
class LiveActivity {
public:
    LiveActivity();

    /// Offers a frame of time `t` seconds; times rise. True when it was sampled.
    bool add(const PlanarView& frame, double t);
    bool add(const BgraView& frame, double t);

    /// Whether a frame of time `t` would be sampled.
    bool wants(double t) const;

    /// What changed in one sampled frame: a word for each row of cells, bit c for column c.
    using PackedMask = std::array<std::uint64_t, ActivityAnalyzer::rows>;
    static_assert(ActivityAnalyzer::cols == 64);

    /// The mask of the frame sampled last.
    const PackedMask& lastMask() const { return masks.back(); }

    /// Takes a mask as it was once sampled, in the order of times (recovery of a recording that was cut off).
    void restore(double t, const PackedMask& mask);

    /// The summary of all frames added so far, computed afresh.
    std::vector<ActivitySample> samples() const;

private:
    template <typename View>
    bool sample(const View& frame, double t);

    std::vector<std::uint8_t> previous; ///< luma grid of the sampled frame before; empty: none
    std::vector<std::uint8_t> current;
    std::vector<double> times;
    /// Packed, an hour of a busy screen holds 54000 of them: 17 MB. Grows without being copied.
    std::deque<PackedMask> masks;
    ActivityAnalyzer::Mask scratch;
    double nextT = 0; ///< earliest time at which a frame is sampled
};

} // namespace RecordCore
