#pragma once

#include "RecordCore/Export/LoadedRecording.h"

#include <filesystem>
#include <optional>
#include <string>

namespace OmbrelRecord {

/// Loads a recording for a verb: recovers it if it was cut off, shows progress while the video is analysed
/// and prints what is gone on without. `format`, when given, replaces the project's.
RecordCore::LoadedRecording loadForCommand(const std::filesystem::path& folder,
                                           const std::optional<std::string>& format,
                                           const RecordCore::MediaBackend& media);

/// Where a verb writes what was asked for as `wanted`: there, or what a link there points to. Throws
/// RecordingError for a file that belongs to the recording (raw material cannot be had again) and for what is
/// no plain file: output is moved to its place when it is whole, which would replace a device or pipe.
std::filesystem::path outputFile(const RecordCore::RecordingFiles& recording,
                                 const std::filesystem::path& wanted);

} // namespace OmbrelRecord
