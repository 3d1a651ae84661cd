#pragma once

#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Rendering/Canvas.h"

#include <QtGui/QImage>
#include <memory>
#include <optional>

namespace OmbrelRecord {

/// One film of a recording, frame by frame, drawn by the same engine that exports it. One thread.
class FilmTake {
public:
    static constexpr double fps = 30;

    /// `media` outlives the object. Throws RecordingError.
    FilmTake(const RecordCore::MediaBackend& media, const std::filesystem::path& video,
             const RecordCore::LoadedRecording& recording, bool withCamera, double scale = 1);

    double duration() const { return scene.outputDuration(); }
    const RecordCore::Scene& film() const { return scene; }
    const RecordCore::Plan& plan() const { return filmPlan; }
    bool hasCamera() const { return camera.has_value(); }

    /// The frame on show at an output time, which is brought into the film.
    QImage frame(double seconds);

private:
    RecordCore::Plan filmPlan;
    RecordCore::FrameCursor frames;
    std::optional<RecordCore::CameraSource> camera;
    RecordCore::Canvas canvas;
    RecordCore::Scene scene;
};

} // namespace OmbrelRecord
