#pragma once

#include "RecordCore/Media/VideoEncoder.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

namespace RecordCore {

/// What the ranges of a film that are encoded side by side tell each other, so that the film keeps its bit
/// rate as if it were made in one go. Each range is made in steps (a key interval each) and enters after
/// every one of them what it has taken so far.
///
/// Which entries count is fixed, so that the film is the same however the ranges happen to run. Of the first
/// range all do: the others begin when it is whole and the forecast's scale is known. Else range k goes,
/// before its step s, by those of range k − 1 up to a few steps (the lead) after s, of range k − 2 up to
/// twice as many after s, and so on back to those that are whole by then; it waits where one is still
/// missing. So ranges run side by side when each is a lead behind the one before, and one after the other
/// they never wait. The lead is as long as lets all ranges of a short film run at the same time, and never
/// less than one step. (Simulated with what real films took: so the rate is kept as by one encoder for all,
/// and quantisers vary no more.) Usable from any thread.
class RateLedger {
public:
    /// `steps` of each range, at least 1.
    explicit RateLedger(const std::vector<int>& steps);

    /// Range `range` has come to the end of one more step; of its last one when its encoder is finished.
    void enter(std::size_t range, const EncodingTally& tally);

    /// What range `range` is to know of those before it when it begins `step`. Throws RecordingError
    /// "stopped" after `stop`.
    EncodingTally before(std::size_t range, int step);

    /// Lets nobody wait any more.
    void stop();

private:
    struct Range {
        std::size_t steps = 1;
        std::vector<EncodingTally> entries; ///< after each step, from its begin on
    };
    std::size_t wanted(std::size_t of, std::size_t range, int step) const;

    std::size_t longest = 1; ///< steps
    std::size_t lead = 1;    ///< steps
    std::mutex mutex;        ///< guards all that follows
    std::condition_variable entered;
    std::vector<Range> ranges;
    std::vector<EncodingTally> whole; ///< of the first ranges together: none, one, two …
    bool stopped = false;
};

} // namespace RecordCore
