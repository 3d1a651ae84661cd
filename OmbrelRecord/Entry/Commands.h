#pragma once

#include "RecordCore/Media/MediaBackend.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace OmbrelRecord {

/// What the verbs do, apart from reading the command line. All throw RecordingError; notes and progress go to
/// standard error, results to standard output.
namespace Commands {

struct Analyze {
    std::filesystem::path folder;
};
void run(const Analyze& options, const RecordCore::MediaBackend& media);

struct Plan {
    std::filesystem::path folder;
    std::optional<double> frames; ///< with this many frames a second, every frame's state is printed too
};
void run(const Plan& options, const RecordCore::MediaBackend& media);

struct Still {
    std::filesystem::path folder;
    double at = 0; ///< output seconds; the frame on show then is drawn
    double fps = 60;
    std::optional<std::string> format;
    double scale = 1;
    bool camera = false;
    std::filesystem::path output;
};
void run(const Still& options, const RecordCore::MediaBackend& media);

struct Export {
    std::filesystem::path folder;
    std::optional<std::string> format;
    double scale = 1;
    double fps = 60;
    std::optional<std::int64_t> bitrate;
    bool watermark = false;
    bool software = false; ///< use no hardware encoder
    bool json = false;     ///< print the statistics as JSON
    std::filesystem::path output;
};
void run(const Export& options, const RecordCore::MediaBackend& media);

} // namespace Commands
} // namespace OmbrelRecord
