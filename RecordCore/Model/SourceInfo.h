#pragma once

#include <cstdint>

namespace RecordCore {

/// Facts about the screen video. Computed from the file when a recording is opened, never stored.
struct SourceInfo {
    std::int64_t width = 0;  ///< pixels, as shown (after rotation)
    std::int64_t height = 0; ///< pixels, as shown (after rotation)
    double duration = 0;     ///< seconds; the video track's length
    double fps = 0;          ///< average frame rate; variable-rate files are normal
    bool hasAudio = false;   ///< whether the file has at least one sound track

    /// Width over height; infinite or undefined for a height of 0.
    double aspect() const { return static_cast<double>(width) / static_cast<double>(height); }

    bool operator==(const SourceInfo&) const = default;
};

} // namespace RecordCore
