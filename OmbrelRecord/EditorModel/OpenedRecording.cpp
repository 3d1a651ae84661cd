#include "OmbrelRecord/EditorModel/OpenedRecording.h"

#include "OmbrelRecord/AppModel/Diag.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

bool present(const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

} // namespace

OpenedRecording OpenedRecording::open(const MediaBackend& media, const std::filesystem::path& video,
                                      std::optional<InputLog> log, const std::filesystem::path& folder,
                                      const std::function<void(double)>& progress) {
    OpenedRecording recording;
    recording.video = video;
    recording.files.folder = folder;
    recording.log = std::move(log);
    recording.info = media.sourceInfo(video);
    if (!(recording.info.duration > 0))
        throw RecordingError(fmt::format("{}: the video has no length", video.string()));
    if (present(recording.files.camera())) {
        try {
            static_cast<void>(media.sourceInfo(recording.files.camera()));
        } catch (const RecordingError& error) {
            recording.cameraBroken = true;
            Diag::log(fmt::format("editor: {}; going on without the camera", error.what()));
        }
    }
    try {
        recording.samples = loadActivity(recording.files.activity());
        return recording;
    } catch (const RecordingError&) {
        // Missing or broken: the video itself tells.
    }
    recording.samples = analyzeVideo(media, video, progress);
    // Beside a movie from elsewhere nothing is left that would be taken for the activity of another one.
    if (video != recording.files.video()) return recording;
    try {
        saveActivity(recording.samples, recording.files.activity());
    } catch (const RecordingError&) {
        // A folder that cannot be written: it is computed again the next time.
    }
    return recording;
}

std::optional<std::filesystem::path> OpenedRecording::camera() const {
    return !cameraBroken && present(files.camera()) ? std::optional(files.camera()) : std::nullopt;
}

std::string OpenedRecording::name() const {
    const std::filesystem::path name = video == files.video() ? files.folder.filename() : video.stem();
    return name.empty() ? "Recording" : name.string();
}

} // namespace OmbrelRecord
