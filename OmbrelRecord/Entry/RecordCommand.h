#pragma once

#include "OmbrelRecord/Entry/CaptureServices.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace OmbrelRecord::Commands {

struct Record {
    std::filesystem::path folder;
    /// A display's id, or its place in the list of displays counted from 1; none: the main one.
    std::optional<std::uint32_t> display;
    std::optional<std::uint32_t> window; ///< wins over the display
    std::optional<double> seconds;       ///< none: until interrupted
    int fps = 60;
    bool systemSound = false;
    bool microphone = false;
    std::string microphoneID; ///< empty: the default one
    bool camera = false;
};

/// Records until the time is over or `interrupted` turns true, and prints what became of it. What the user
/// should know meanwhile goes to standard error. Throws RecordingError, also when the recording ended by
/// itself (what there is of it is kept then).
void run(const Record& options, const RecordCore::MediaBackend& media, const CaptureServices& services,
         const std::atomic<bool>& interrupted);

} // namespace OmbrelRecord::Commands
