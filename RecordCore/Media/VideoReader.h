#pragma once

#include "RecordCore/Model/PictureView.h"
#include "RecordCore/Model/SourceInfo.h"

#include <memory>
#include <optional>
#include <vector>

namespace RecordCore {

/// One decoded frame. The picture lives as long as `owner` (or a copy of it) is held.
struct VideoFrame {
    double time = 0; ///< presentation time in seconds; 0 is the track's first frame
    PlanarView picture;
    std::shared_ptr<const void> owner;
};

/// Reads the frames of one video file in presentation order, converted to the engine's pixel format:
/// upright (rotation applied), square pixels, BT.709 video range, planar 8-bit 4:2:0. A frame that already
/// is so is handed on without copying. One thread at a time; decoding may run ahead on threads of its own.
class VideoReader {
public:
    virtual ~VideoReader() = default;

    virtual const SourceInfo& info() const = 0;

    /// The next frame, none at the end. Frames that are damaged are skipped; throws RecordingError naming the
    /// file when reading fails for good.
    virtual std::optional<VideoFrame> next() = 0;

    /// Makes `next` go on with the last frame whose time is at most `seconds` + 1e-6 (the first frame when
    /// there is none).
    virtual void seek(double seconds) = 0;

    /// Tells that no frame before the one shown at `seconds` (as in `seek`) will be asked for any more; the
    /// reader may skip decoding what cannot be shown. Frames before it may still be returned by `next`.
    virtual void skipTo(double seconds) { static_cast<void>(seconds); }

    /// What it takes to show the frame of a time after a jump to it.
    struct SeekCost {
        double keyTime = 0; ///< of the frame that decoding begins with; at or before the time
        int frames = 0;     ///< to decode from there on, the wanted one included
    };
    /// As the file's index tells, without reading it; none where there is no such index. Cheap.
    virtual std::optional<SeekCost> seekCost(double seconds) const {
        static_cast<void>(seconds);
        return std::nullopt;
    }

    /// A frame as the file holds it.
    struct Stored {
        double time = 0; ///< seconds, about the one it is shown at
        double bits = 0;
        bool key = false; ///< complete in itself
    };
    /// The frames in order as the file's index tells, without reading it; empty where there is none. Cheap.
    virtual std::vector<Stored> stored() const { return {}; }
};

} // namespace RecordCore
