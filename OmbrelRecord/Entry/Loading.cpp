#include "OmbrelRecord/Entry/Loading.h"

#include "OmbrelRecord/Entry/ProgressBar.h"
#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Capture/RecordingRecovery.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>

#include <cstdio>

namespace OmbrelRecord {

using namespace RecordCore;

namespace fs = std::filesystem;

LoadedRecording loadForCommand(const std::filesystem::path& folder, const std::optional<std::string>& format,
                               const MediaBackend& media) {
    recoverRecording(folder, media, [](const std::string& line) { tell("{}", line); });
    std::optional<LoadedRecording> recording;
    {
        ProgressBar bar("Watching the recording");
        recording = LoadedRecording::load(media, folder, [&](double share) { bar.update(share); });
    }
    for (const std::string& note : recording->notes)
        tell("{}", note);
    if (format) recording->project.format = *format;
    return std::move(*recording);
}

fs::path outputFile(const RecordingFiles& recording, const fs::path& wanted) {
    std::error_code error;
    const fs::file_status status = fs::status(wanted, error);
    if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status))
        throw RecordingError(fmt::format("{}: cannot be written: not a plain file", wanted.string()));

    const fs::path folder = wanted.has_parent_path() ? wanted.parent_path() : ".";
    for (const fs::path& own : {recording.video(), recording.camera(), recording.input(),
                                recording.activity(), recording.project(), recording.journal()}) {
        const bool same = fs::equivalent(own, wanted, error);
        const bool becomes =
            own.filename() == wanted.filename() && fs::equivalent(recording.folder, folder, error);
        if (same || becomes)
            throw RecordingError(
                fmt::format("{}: belongs to the recording and is not written over", wanted.string()));
    }
    const fs::path target = fs::canonical(wanted, error);
    return error ? wanted : target;
}

} // namespace OmbrelRecord
