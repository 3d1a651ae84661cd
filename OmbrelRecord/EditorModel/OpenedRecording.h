#pragma once

#include "RecordCore/Media/MediaBackend.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/RecordingFiles.h"
#include "RecordCore/Model/SourceInfo.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace OmbrelRecord {

/// What an editor works on: the raw material of a recording, which it never changes.
struct OpenedRecording {
    std::filesystem::path video;
    RecordCore::RecordingFiles files; ///< of the folder; its video may be another one than `video`
    RecordCore::SourceInfo info;
    std::vector<RecordCore::ActivitySample> samples;
    std::optional<RecordCore::InputLog> log;
    bool cameraBroken = false; ///< there is a camera video that cannot be read

    /// Reads the video's facts and the activity beside it. Activity that is missing or broken is computed
    /// from the video, which takes as long as decoding it (`progress`, 0…1, on this thread), and kept for the
    /// next time. A broken camera video is done without. Blocks; any thread. Throws RecordingError.
    static OpenedRecording open(const RecordCore::MediaBackend& media, const std::filesystem::path& video,
                                std::optional<RecordCore::InputLog> log, const std::filesystem::path& folder,
                                const std::function<void(double)>& progress = {});

    /// The camera's video, when there is one that can be read.
    std::optional<std::filesystem::path> camera() const;

    /// What the recording is called: its folder's name, or the file's where that is a movie of its own.
    std::string name() const;
};

} // namespace OmbrelRecord
