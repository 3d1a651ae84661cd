#include "RecordCore/Export/FrameRenderer.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

namespace RecordCore {

namespace {
constexpr std::int64_t framesPerReport = 30;
}

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

FrameRenderer::FrameRenderer(const Parts& parts, std::function<void(double)> progress) :
    parts(parts), progress(std::move(progress)), count(parts.scene.frameCount()) {}

bool FrameRenderer::appendNext() {
    if (failure || index >= count) return false;
    try {
        append();
    } catch (const RecordingError& error) {
        failure = error;
    } catch (const std::exception& error) {
        failure = RecordingError(fmt::format("append failed at frame {}: {}", index, error.what()));
    }
    if (failure) return false;
    ++index;
    if (progress && index % framesPerReport == 0)
        progress(static_cast<double>(index) / static_cast<double>(count));
    return index < count;
}

void FrameRenderer::append() {
    const double seconds = static_cast<double>(index) / parts.fps;
    const Picture& picture = composeFrame(parts.scene, parts.canvas, parts.source, parts.camera, seconds);
    if (index > 0 && !parts.canvas.changed()) {
        parts.encoder.repeat(index);
        ++repeated;
    } else {
        FrameHints hints;
        if (index > 0) hints.changedBlocks = parts.canvas.changedBlocks();
        parts.encoder.encode(picture.view(), index, hints);
    }
}

} // namespace RecordCore
