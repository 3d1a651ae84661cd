#pragma once

#include "RecordCore/Model/NRect.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace RecordCore {

/// How much the screen changed around one instant.
struct ActivitySample {
    double t = 0;               ///< seconds of the source
    double energy = 0;          ///< share of the screen that changed, 0…1
    std::optional<NRect> focus; ///< where the main change happened

    bool operator==(const ActivitySample&) const = default;
};

/// Reads "activity.json" (a bare array). Throws RecordingError that names the file and the cause.
std::vector<ActivitySample> loadActivity(const std::filesystem::path& file);

/// Writes "activity.json", atomically. Throws RecordingError; an old file is left as it was on failure.
void saveActivity(const std::vector<ActivitySample>& samples, const std::filesystem::path& file);

} // namespace RecordCore
