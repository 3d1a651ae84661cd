#pragma once

#include <filesystem>

namespace RecordCore {

/// The files of a recording folder.
struct RecordingFiles {
    std::filesystem::path folder;

    std::filesystem::path video() const { return folder / "recording.mp4"; }
    std::filesystem::path camera() const { return folder / "camera.mp4"; }
    std::filesystem::path input() const { return folder / "input.json"; }
    std::filesystem::path activity() const { return folder / "activity.json"; }
    std::filesystem::path project() const { return folder / "project.json"; }
    /// Only there while a recording runs, or when one was cut off.
    std::filesystem::path journal() const { return folder / "recording.journal"; }
};

} // namespace RecordCore
