#include "OmbrelRecord/Entry/Commands.h"
#include "OmbrelRecord/Entry/Loading.h"
#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Rendering/PngFile.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

namespace OmbrelRecord::Commands {

using namespace RecordCore;

void run(const Still& options, const MediaBackend& media) {
    const std::filesystem::path output = outputFile({options.folder}, options.output);
    const LoadedRecording recording = loadForCommand(options.folder, options.format, media);
    const RecordCore::Plan plan = recording.plan();
    requireFilm(plan, options.fps);

    FrameCursor frames(media.openVideo(recording.files.video()));
    std::optional<CameraSource> camera;
    if (const auto file = recording.camera(); options.camera && file && recording.project.cameraShow)
        camera.emplace(media.openVideo(*file), plan,
                       recording.log ? recording.log->cameraOffset.value_or(0) : 0);
    Canvas canvas(std::make_shared<const Compositor>(
        Exporter::compositorSettings(plan, recording.project, recording.info, options.scale, false,
                                     camera.has_value(), recording.files.folder)));
    const Scene scene(plan, recording.project, recording.log, options.fps);

    // The frame of the film that is on show at the wanted time.
    const double wanted = std::floor(options.at * options.fps + 1e-6);
    const double index = std::clamp(wanted, 0.0, static_cast<double>(scene.frameCount() - 1));
    const Picture& picture =
        composeFrame(scene, canvas, frames, camera ? &*camera : nullptr, index / options.fps);
    writePng(output, RgbImage::of(picture.view()));
}

} // namespace OmbrelRecord::Commands
