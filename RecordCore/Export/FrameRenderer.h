#pragma once

#include "RecordCore/Export/Timeline.h"
#include "RecordCore/Media/FrameCursor.h"
#include "RecordCore/Media/VideoEncoder.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Motion/Scene.h"
#include "RecordCore/Rendering/Canvas.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace RecordCore {

/// The camera video beside a screen video. One thread at a time.
class CameraSource {
public:
    /// `offset` as in Timeline::CameraFootage.
    CameraSource(std::unique_ptr<VideoReader> reader, const Plan& plan, double offset);

    /// The camera's picture at an output time; none where there is no footage. Valid until the next call.
    const PlanarView* at(double outputSeconds);
    /// Whether the last `at` returned the same picture as the one before it.
    bool same() const { return frames.same() && shownBefore; }

private:
    FrameCursor frames;
    Composition composition;
    bool shown = false;
    bool shownBefore = false;
};

/// The export's frame pump: for every output frame of a range it finds the source frame on show, composes it
/// and hands it to the encoder. One thread.
class FrameRenderer {
public:
    struct Parts {
        const Scene& scene;
        Canvas& canvas;
        FrameCursor& source;
        CameraSource* camera; ///< may be null
        VideoEncoder& encoder;
        double fps;
    };

    /// For the output frames from `begin` on, `end` not included. The canvas is to be new: nothing of what
    /// was drawn before may matter.
    FrameRenderer(const Parts& parts, std::int64_t begin, std::int64_t end);

    /// Appends one output frame; true while more may follow. After a failure false, with `error` set.
    bool appendNext();

    const std::optional<RecordingError>& error() const { return failure; }
    /// The number of the frame appended next.
    std::int64_t next() const { return index; }
    /// Frames that equalled the one before and cost (next to) nothing.
    std::int64_t framesRepeated() const { return repeated; }

private:
    void append();

    Parts parts;
    std::int64_t begin;
    std::int64_t end;
    std::int64_t index;
    std::int64_t repeated = 0;
    std::optional<RecordingError> failure;
};

/// Composes the frame on show at output time `seconds` on the canvas. The one place that joins scene, source,
/// camera and canvas, for film, still and preview alike. Throws RecordingError when the source has no frames.
const Picture& composeFrame(const Scene& scene, Canvas& canvas, FrameCursor& source, CameraSource* camera,
                            double seconds);

} // namespace RecordCore
