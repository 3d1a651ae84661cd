#include "OmbrelRecord/Entry/Loading.h"

#include "OmbrelRecord/Entry/ProgressBar.h"
#include "RecordCore/Capture/RecordingRecovery.h"

#include <fmt/format.h>

#include <cstdio>

namespace OmbrelRecord {

using namespace RecordCore;

LoadedRecording loadForCommand(const std::filesystem::path& folder, const std::optional<std::string>& format,
                               const MediaBackend& media) {
    recoverRecording(folder, media,
                     [](const std::string& line) { fmt::print(stderr, "ombrel-record: {}\n", line); });
    std::optional<LoadedRecording> recording;
    {
        ProgressBar bar("Watching the recording");
        recording = LoadedRecording::load(media, folder, [&](double share) { bar.update(share); });
    }
    for (const std::string& note : recording->notes)
        fmt::print(stderr, "ombrel-record: {}\n", note);
    if (format) recording->project.format = *format;
    return std::move(*recording);
}

} // namespace OmbrelRecord
