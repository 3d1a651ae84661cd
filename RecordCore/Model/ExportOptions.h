#pragma once

#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/Project.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace RecordCore {

/// What to export and how.
struct ExportOptions {
    Project project;
    std::optional<InputLog> log;         ///< as recorded (not cropped); for the drawn pointer and clicks
    double fps = 60;                     ///< output frames per second
    double scale = 1;                    ///< factor on the canvas size
    std::optional<std::int64_t> bitrate; ///< video bits per second; absent: chosen by size and rate
    bool watermark = false;
    bool hardware = true;                        ///< let a hardware encoder make the film where one opens
    std::optional<std::filesystem::path> camera; ///< the camera video to put in the bubble

    OutputFormat format() const { return project.outputFormat(); }
    bool operator==(const ExportOptions&) const = default;
};

} // namespace RecordCore
