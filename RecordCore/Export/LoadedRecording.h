#pragma once

#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/RecordingFiles.h"
#include "RecordCore/Model/SourceInfo.h"
#include "RecordCore/Planning/Plan.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// A recording as read from its folder, with everything that planning needs.
struct LoadedRecording {
    RecordingFiles files;
    SourceInfo info;
    std::vector<ActivitySample> samples;
    std::optional<InputLog> log;
    Project project;
    /// What could not be read and is gone on without: one line each, naming the file and the cause.
    std::vector<std::string> notes;
    /// There is a camera video that cannot be read.
    bool cameraBroken = false;

    /// Reads a recording folder. A side file that is missing or broken is done without: activity is then
    /// computed from the video (only when the project's plan depends on it; `progress` hears of that, 0…1).
    /// Throws RecordingError when there is no video that can be read, or none that can be planned.
    static LoadedRecording load(const MediaBackend& media, const std::filesystem::path& folder,
                                const std::function<void(double)>& progress = {});

    /// The plan of the project in the aspect of its format's window.
    Plan plan() const;

    /// The camera video, when there is one that can be read.
    std::optional<std::filesystem::path> camera() const;
};

/// Computes the activity of a whole video by decoding it. `progress` is called on this thread, once per
/// sampled frame. Throws RecordingError.
std::vector<ActivitySample> analyzeVideo(const MediaBackend& media, const std::filesystem::path& video,
                                         const std::function<void(double)>& progress = {});

/// Throws RecordingError when a film of this plan would be absurdly long (over a day) or the rate is absurd.
void requireReasonableLength(const Plan& plan, double fps);

/// Likewise, and when there would be no film at all because everything is cut.
void requireFilm(const Plan& plan, double fps);

} // namespace RecordCore
