#pragma once

#include "RecordCore/Media/VideoReader.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>

namespace RecordCore {

/// Finds which frame of a video is on show at a time, in any order of asking: the same frames that a
/// `FrameCursor` gives. It works a frame at a time, so that whoever asks can look up in between, and show
/// what has been found so far. Decoded frames are kept for a while, so that going back a little is free; it
/// goes on from where it is when that is nearer than the key frame before the time. One thread at a time.
class FrameSeeker {
public:
    /// Keeps up to `keptBytes` of decoded pictures besides those in use.
    FrameSeeker(std::unique_ptr<VideoReader> reader, std::size_t keptBytes);

    /// Looks for the frame of that time from now on. Decodes nothing.
    void want(double seconds);
    /// Decodes a frame, unless the wanted one is found. Whether it is (none of a video without frames counts
    /// as found, too). Throws RecordingError.
    bool step();
    bool found() const { return isFound; }
    /// Frames that `step` has to decode yet, as far as is known; at least 1 until it is found.
    int remaining() const;

    /// The wanted frame when it is found; until then the latest one known that is not after it.
    std::optional<VideoFrame> best() const;

    const SourceInfo& info() const { return reader->info(); }

private:
    struct Known {
        VideoFrame frame;
        double until; ///< time of the frame after it
    };

    void look();
    void keepCurrent();

    std::unique_ptr<VideoReader> reader;
    std::size_t keptMost;
    double target = 0;
    bool isFound = false;
    std::optional<VideoFrame> result;
    std::optional<double> jumpTo; ///< the next step begins there

    std::optional<VideoFrame> current; ///< as the reader gave them
    std::optional<VideoFrame> next;
    bool ended = false; ///< there is nothing after these
    std::deque<Known> kept;
};

} // namespace RecordCore
