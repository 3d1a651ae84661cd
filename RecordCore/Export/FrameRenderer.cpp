#include "RecordCore/Export/FrameRenderer.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

namespace RecordCore {

CameraSource::CameraSource(std::unique_ptr<VideoReader> reader, const Plan& plan, double offset) :
    frames(std::move(reader)),
    composition(Timeline::composition(plan, Timeline::CameraFootage{frames.info().duration, offset})) {}

const PlanarView* CameraSource::at(double outputSeconds) {
    shownBefore = shown;
    shown = false;
    const std::optional<double> time = composition.cameraTime(outputSeconds);
    const VideoFrame* frame = time ? frames.at(*time) : nullptr;
    shown = frame != nullptr;
    return frame ? &frame->picture : nullptr;
}

const Picture& composeFrame(const Scene& scene, Canvas& canvas, FrameCursor& source, CameraSource* camera,
                            double seconds) {
    const double sourceTime = scene.times().sourceTime(seconds);
    const VideoFrame* frame = source.at(sourceTime);
    if (!frame) throw RecordingError("the video has no frames");
    const PlanarView* cameraPicture = camera ? camera->at(seconds) : nullptr;
    SourceHints hints;
    hints.sameSource = source.same();
    hints.sameCamera = cameraPicture && camera->same();
    return canvas.frame(frame->picture, scene.drawn(seconds), cameraPicture, hints);
}

FrameRenderer::FrameRenderer(const Parts& parts, std::int64_t begin, std::int64_t end) :
    parts(parts), begin(begin), end(end), index(begin) {}

bool FrameRenderer::appendNext() {
    if (failure || index >= end) return false;
    try {
        append();
    } catch (const RecordingError& error) {
        failure = error;
    } catch (const std::exception& error) {
        failure = RecordingError(fmt::format("append failed at frame {}: {}", index, error.what()));
    }
    if (failure) return false;
    ++index;
    return index < end;
}

void FrameRenderer::append() {
    const double seconds = static_cast<double>(index) / parts.fps;
    const Picture& picture = composeFrame(parts.scene, parts.canvas, parts.source, parts.camera, seconds);
    if (index > begin && !parts.canvas.changed()) {
        parts.encoder.repeat(picture.view(), index);
        ++repeated;
    } else {
        FrameHints hints;
        if (index > begin) hints.changedBlocks = parts.canvas.changedBlocks();
        parts.encoder.encode(picture.view(), index, hints);
    }
}

} // namespace RecordCore
