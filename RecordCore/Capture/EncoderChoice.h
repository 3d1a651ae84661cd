#pragma once

#include "RecordCore/Media/MediaBackend.h"

#include <functional>
#include <memory>
#include <string>

namespace RecordCore {

/// Average bit rate of a recording: integer part of width × height × fps × 0.022, at least 6000000.
std::int64_t recordingBitrate(int width, int height, int fps);

/// Picks the encoder that keeps up with this screen on this machine: HEVC in hardware where it opens, else
/// HEVC in software when a short trial shows that it holds the frame rate at this size, else H.264, at the
/// slowest of the fast presets that does. Keeping every frame is worth more than a codec's name. Trials take
/// some tenths of a second; their outcome is remembered for the process. Throws RecordingError when not even
/// H.264 can be made. `log` receives what was chosen and why.
std::unique_ptr<VideoEncoder> chooseEncoder(const MediaBackend& media, int width, int height, int fps,
                                            PacketSink sink,
                                            const std::function<void(const std::string&)>& log);

/// Time base of a recording's picture.
inline constexpr TimeBase recordingTimeBase{1, 90000};

} // namespace RecordCore
