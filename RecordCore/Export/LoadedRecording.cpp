#include "RecordCore/Export/LoadedRecording.h"

#include "RecordCore/Activity/LiveActivity.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Planning/Planner.h"

#include <fmt/format.h>

#include <algorithm>

namespace RecordCore {

namespace {

constexpr double longestFilm = 24 * 60 * 60; ///< seconds

bool present(const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::exists(file, ignored);
}

/// Whether the project leaves anything to the automatic planner, which is what activity is needed for.
bool plansAutomatically(const Project& project) {
    return (!project.speedBlocks && project.skipWaiting) || (!project.zoomBlocks && project.followAction);
}

} // namespace

std::vector<ActivitySample> analyzeVideo(const MediaBackend& media, const std::filesystem::path& video,
                                         const std::function<void(double)>& progress) {
    const std::unique_ptr<VideoReader> reader = media.openVideo(video);
    const double duration = reader->info().duration;
    LiveActivity activity;
    while (const auto frame = reader->next())
        if (activity.add(frame->picture, frame->time) && progress && duration > 0)
            progress(std::min(1.0, frame->time / duration));
    return activity.samples();
}

LoadedRecording LoadedRecording::load(const MediaBackend& media, const std::filesystem::path& folder,
                                      const std::function<void(double)>& progress) {
    LoadedRecording recording;
    recording.files.folder = folder;
    if (!present(folder)) throw RecordingError(fmt::format("{}: no such folder", folder.string()));
    const std::filesystem::path video = recording.files.video();
    if (!present(video)) throw RecordingError(fmt::format("{}: there is no recording here", video.string()));
    recording.info = media.sourceInfo(video);
    if (!(recording.info.duration > 0))
        throw RecordingError(fmt::format("{}: the video has no length", video.string()));

    const auto note = [&recording](const std::string& problem, const char* consequence) {
        recording.notes.push_back(fmt::format("{}; {}", problem, consequence));
    };

    if (present(recording.files.project())) {
        std::string problem;
        if (auto project = Project::load(recording.files.project(), &problem))
            recording.project = std::move(*project);
        else
            note(problem, "using the default project");
    }
    if (present(recording.files.input())) {
        try {
            recording.log = InputLog::load(recording.files.input());
        } catch (const RecordingError& error) {
            note(error.what(), "going on without pointer and clicks");
        }
    }

    if (recording.project.cameraShow && present(recording.files.camera())) {
        try {
            static_cast<void>(media.sourceInfo(recording.files.camera()));
        } catch (const RecordingError& error) {
            recording.cameraBroken = true;
            note(error.what(), "going on without the camera");
        }
    }

    bool haveActivity = false;
    if (present(recording.files.activity())) {
        try {
            recording.samples = loadActivity(recording.files.activity());
            haveActivity = true;
        } catch (const RecordingError& error) {
            note(error.what(), "looking at the video instead");
        }
    }
    if (!haveActivity && plansAutomatically(recording.project))
        recording.samples = analyzeVideo(media, video, progress);
    return recording;
}

Plan LoadedRecording::plan() const {
    return Planner::plan(info, samples, log, project, Planner::viewportAspect(project, info));
}

std::optional<std::filesystem::path> LoadedRecording::camera() const {
    return !cameraBroken && present(files.camera()) ? std::optional(files.camera()) : std::nullopt;
}

void requireReasonableLength(const Plan& plan, double fps) {
    if (!(fps >= 1 && fps <= 240))
        throw RecordingError(fmt::format("{} frames a second is not between 1 and 240", fps));
    const double length = plan.outputDuration();
    if (!(length <= longestFilm))
        throw RecordingError(
            fmt::format("the film would be {:.0f} hours long; a day is the most", length / 3600));
}

void requireFilm(const Plan& plan, double fps) {
    requireReasonableLength(plan, fps);
    if (!(plan.outputDuration() > 0))
        throw RecordingError("the film would be empty: everything has been cut");
}

} // namespace RecordCore
