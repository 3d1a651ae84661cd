#pragma once

#include "RecordCore/Media/VideoReader.h"
#include "RecordCore/Motion/Scene.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace RecordCore {

/// How the work of making a film is spread over its frames, foreseen before any is made, so that the share
/// that is done tells honestly how long the rest takes: a frame that stands costs next to nothing, one under
/// a moving camera thirty times as much. Immutable.
class WorkForecast {
public:
    /// `stored`: the recording's frames (VideoReader::stored); may be empty.
    WorkForecast(const Scene& scene, double fps, const std::vector<VideoReader::Stored>& stored);

    /// Of one frame, in about milliseconds of one processor at 1920 × 1080; above 0.
    double of(std::int64_t frame) const { return work[static_cast<std::size_t>(frame)]; }
    double total() const { return sum; }

private:
    std::vector<float> work;
    double sum = 0;
};

} // namespace RecordCore
