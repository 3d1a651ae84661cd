#pragma once

#include "RecordCore/Media/VideoEncoder.h"
#include "RecordCore/Media/VideoReader.h"
#include "RecordCore/Motion/Scene.h"

#include <vector>

namespace RecordCore {

/// What each frame of a film will about cost to encode beside the others, before any is decoded: how much the
/// recording changes from frame to frame is told by the sizes of its frames as they are stored, and what it
/// takes to move the camera over it by those of its key frames. `stored` may be empty: then only the camera
/// counts. Frames on which many others build are to be finer than those that are gone at once. `keyInterval`:
/// frames from key frame to key frame of the film.
std::vector<FrameForecast> costForecast(const Scene& scene, double fps,
                                        const std::vector<VideoReader::Stored>& stored, int keyInterval);

} // namespace RecordCore
