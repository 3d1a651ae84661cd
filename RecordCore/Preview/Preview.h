#pragma once

#include "RecordCore/Export/Timeline.h"
#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/TimeRange.h"
#include "RecordCore/Planning/Plan.h"
#include "RecordCore/Preview/PreviewRenderer.h"
#include "RecordCore/Rendering/Compositor.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace RecordCore {

/// Which tracks a stretch of a film is composed of, and by whom.
struct OmbrelInstruction {
    TimeRange timeRange; ///< output seconds
    int trackID = 0;     ///< of the screen video
    std::optional<int> cameraTrackID;
    std::shared_ptr<PreviewRenderer> renderer;
};

/// How a player makes the frames of an item.
struct VideoComposition {
    Size renderSize;                ///< canvas pixels at scale 1
    double frameDuration = 1. / 60; ///< output seconds
    OmbrelInstruction instruction;
};

/// What a `Player` plays: the files, which stretches of them, and how they are composed.
struct PlayerItem {
    std::filesystem::path source;
    std::optional<std::filesystem::path> camera;
    Composition composition;
    VideoComposition video;
    bool hasSound = false;
};

/// The planned film of an editor, played with the look of the export.
namespace Preview {

inline constexpr double fps = 60; ///< output frames a second of a preview

struct Built {
    PlayerItem item;
    std::shared_ptr<PreviewRenderer> renderer;
    int videoTrackID = 0;
    std::optional<int> cameraTrackID;
    double duration = 0; ///< output seconds
};

/// Prepares the film of a project for playing, at `scale` (canvas pixels per base unit). A `renderer` that is
/// given is used again. Takes as long as making a compositor; any thread. Throws RecordingError when the
/// videos cannot be read.
Built build(const MediaBackend& media, const std::filesystem::path& source, const Plan& plan,
            const Project& project, const std::optional<InputLog>& log,
            const std::optional<std::filesystem::path>& camera, double scale = 1,
            std::shared_ptr<PreviewRenderer> renderer = nullptr);

VideoComposition videoComposition(double duration, int trackID, std::optional<int> cameraTrackID,
                                  OutputFormat format, std::shared_ptr<PreviewRenderer> renderer);

/// The compositor's recipe for a project at preview scale, the same as for its export.
CompositorSettings compositorSettings(const Plan& plan, const Project& project, const SourceInfo& source,
                                      bool camera, const std::filesystem::path& folder, double scale);
std::shared_ptr<const Compositor> compositor(const Plan& plan, const Project& project,
                                             const SourceInfo& source, bool camera,
                                             const std::filesystem::path& folder, double scale);

/// The largest scale at which the canvas of a format fits into so many pixels; 0 when none does.
double fittingScale(OutputFormat format, int width, int height);

/// The camera footage of a recording, as the timeline takes it; none when the project does not show it.
std::optional<Timeline::CameraFootage> cameraFootage(const MediaBackend& media, const Project& project,
                                                     const std::optional<InputLog>& log,
                                                     const std::optional<std::filesystem::path>& camera);

} // namespace Preview
} // namespace RecordCore
