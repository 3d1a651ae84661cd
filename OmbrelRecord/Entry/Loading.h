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

} // namespace OmbrelRecord
