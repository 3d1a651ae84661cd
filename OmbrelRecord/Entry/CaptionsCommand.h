#pragma once

#include "RecordCore/Media/MediaBackend.h"

#include <filesystem>
#include <optional>
#include <string>

namespace OmbrelRecord::Commands {

/// The verb `captions`: recognises what is said in a recording, puts the words into its project and shows
/// them; on request it also writes the film's captions to files. A recording in which nothing is said is a
/// failure and leaves the project as it was. Throws RecordingError, also when it is interrupted.
struct Captions {
    std::filesystem::path folder;
    std::optional<std::string> language; ///< the user's own when not given
    bool retime = false; ///< keep the project's words, which were corrected, and find their times anew
    std::optional<std::filesystem::path> srt;
    std::optional<std::filesystem::path> vtt;
};
void run(const Captions& options, const RecordCore::MediaBackend& media);

} // namespace OmbrelRecord::Commands
