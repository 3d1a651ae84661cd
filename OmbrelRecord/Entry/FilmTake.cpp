#include "OmbrelRecord/Entry/FilmTake.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "RecordCore/Export/Exporter.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

std::optional<CameraSource> openCamera(const MediaBackend& media, const LoadedRecording& recording,
                                       const Plan& plan, bool wanted) {
    const auto file = recording.camera();
    if (!wanted || !file || !recording.project.cameraShow) return std::nullopt;
    return CameraSource(media.openVideo(*file), plan,
                        recording.log ? recording.log->cameraOffset.value_or(0) : 0);
}

} // namespace

FilmTake::FilmTake(const MediaBackend& media, const std::filesystem::path& video,
                   const LoadedRecording& recording, bool withCamera, double scale) :
    filmPlan(recording.plan()),
    frames(media.openVideo(video)), camera(openCamera(media, recording, filmPlan, withCamera)),
    canvas(std::make_shared<const Compositor>(
        Exporter::compositorSettings(filmPlan, recording.project, recording.info, scale, false,
                                     camera.has_value(), recording.files.folder))),
    scene(filmPlan, recording.project, recording.log, fps) {
    requireFilm(filmPlan, fps);
}

QImage FilmTake::frame(double seconds) {
    const double index =
        std::clamp(std::floor(seconds * fps + 1e-6), 0.0, static_cast<double>(scene.frameCount() - 1));
    return imageOf(composeFrame(scene, canvas, frames, camera ? &*camera : nullptr, index / fps).view());
}

} // namespace OmbrelRecord
