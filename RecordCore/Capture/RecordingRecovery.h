#pragma once

#include "RecordCore/Media/MediaBackend.h"

#include <filesystem>
#include <functional>
#include <string>

namespace RecordCore {

/// Makes a whole recording of one that was cut off by a crash or a kill: its movies become plain files, and
/// input.json and activity.json are made of the journal, which is then removed. Files that are whole already
/// stay as they are; doing it twice, or a crash in the middle of it, does no harm. True when something had to
/// be done.
///
/// Throws RecordingError when the recording is still running in another process, or when not even the
/// screen's movie can be read (everything is left as it was then). `log` may be empty.
bool recoverRecording(const std::filesystem::path& folder, const MediaBackend& media,
                      const std::function<void(const std::string&)>& log);

} // namespace RecordCore
