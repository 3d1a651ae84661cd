#pragma once

#include "RecordCore/Media/VideoEncoder.h"

#include <memory>

namespace RecordCore::X264 {

/// H.264 (High profile with every preset but "ultrafast") by libx264, average bit rate.
///
/// In real time every packet is delivered at once, key frames come by time (keyInterval / frameRate
/// seconds), nothing is reordered. For a film with `freeStills` repeated frames cost next to nothing: they
/// are written as skipped pictures, blocks known to be unchanged are not analysed, and a picture that stands
/// is sent once more after a moment so that stills are as sharp as the rate allows. Without `freeStills` the
/// preset's own choices hold (B frames, references) and a repeat is encoded like any frame.
///
/// Presets are the encoder's own; "superfast" when none is asked for.
std::unique_ptr<VideoEncoder> makeEncoder(const VideoSettings& settings, PacketSink sink);

} // namespace RecordCore::X264
