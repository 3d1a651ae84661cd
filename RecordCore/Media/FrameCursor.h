#pragma once

#include "RecordCore/Media/VideoReader.h"

#include <memory>
#include <optional>
#include <vector>

namespace RecordCore {

/// Answers which frame of a video is on show at a time: the last whose time is at most that (a millionth of
/// a second is forgiven), before the first frame the first. Asked in rising order it decodes each frame at
/// most once; going back seeks. One thread at a time.
class FrameCursor {
public:
    explicit FrameCursor(std::unique_ptr<VideoReader> reader);

    /// The frame on show; none when the video has no frames. It stays valid until the next call.
    const VideoFrame* at(double seconds);

    /// Whether the last `at` returned the same frame as the one before it.
    bool same() const { return unchanged; }

    const SourceInfo& info() const { return reader->info(); }
    /// As of VideoReader.
    std::vector<VideoReader::Stored> stored() const { return reader->stored(); }

private:
    std::unique_ptr<VideoReader> reader;
    std::optional<VideoFrame> current;
    std::optional<VideoFrame> next;
    bool started = false;
    bool unchanged = false;
};

} // namespace RecordCore
