#include "RecordCore/Preview/Preview.h"

#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Rendering/Placement.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace RecordCore::Preview {

namespace {

constexpr int screenTrack = 1;
constexpr int cameraTrack = 2;

} // namespace

CompositorSettings compositorSettings(const Plan& plan, const Project& project, const SourceInfo& source,
                                      bool camera, const std::filesystem::path& folder, double scale) {
    return Exporter::compositorSettings(plan, project, source, scale, false, camera, folder);
}

std::shared_ptr<const Compositor> compositor(const Plan& plan, const Project& project,
                                             const SourceInfo& source, bool camera,
                                             const std::filesystem::path& folder, double scale) {
    return std::make_shared<const Compositor>(
        compositorSettings(plan, project, source, camera, folder, scale));
}

VideoComposition videoComposition(double duration, int trackID, std::optional<int> cameraTrackID,
                                  OutputFormat format, std::shared_ptr<PreviewRenderer> renderer) {
    VideoComposition video;
    video.renderSize = canvas(format);
    video.frameDuration = 1 / fps;
    video.instruction = {{0, duration}, trackID, cameraTrackID, std::move(renderer)};
    return video;
}

std::optional<Timeline::CameraFootage> cameraFootage(const MediaBackend& media, const Project& project,
                                                     const std::optional<InputLog>& log,
                                                     const std::optional<std::filesystem::path>& camera) {
    if (!camera || !project.cameraShow) return std::nullopt;
    return Timeline::CameraFootage{media.sourceInfo(*camera).duration,
                                   log ? log->cameraOffset.value_or(0) : 0};
}

Built build(const MediaBackend& media, const std::filesystem::path& source, const Plan& plan,
            const Project& project, const std::optional<InputLog>& log,
            const std::optional<std::filesystem::path>& camera, double scale,
            std::shared_ptr<PreviewRenderer> renderer) {
    const SourceInfo info = media.sourceInfo(source);
    const auto footage = cameraFootage(media, project, log, camera);
    Built built;
    built.item.source = source;
    built.item.camera = camera;
    built.item.composition = Timeline::composition(plan, footage);
    built.item.hasSound = info.hasAudio;
    built.videoTrackID = screenTrack;
    if (footage) built.cameraTrackID = cameraTrack;
    built.duration = built.item.composition.duration;
    built.renderer = renderer ? std::move(renderer) : std::make_shared<PreviewRenderer>();
    built.renderer->update(std::make_shared<const Scene>(plan, project, log, fps),
                           compositor(plan, project, info, footage.has_value(), source.parent_path(), scale));
    built.item.video = videoComposition(built.duration, built.videoTrackID, built.cameraTrackID,
                                        project.outputFormat(), built.renderer);
    return built;
}

double fittingScale(OutputFormat format, int width, int height) {
    const Size base = canvas(format);
    // Canvas sides are rounded to even numbers, which may make them too long by one.
    for (int less = 0; less < 4; ++less) {
        const double scale = std::min((width - less) / base.width, (height - less) / base.height);
        if (!(scale > 0)) return 0;
        const Placement place = Placement::make(format, base.width / base.height, 0, 0, false, scale);
        if (place.width <= width && place.height <= height) return scale;
    }
    return 0;
}

} // namespace RecordCore::Preview
