#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace RecordCore {

/// What the user did during a recording. Times are seconds where 0 is the first frame of the screen video;
/// positions are normalised to the captured region (0…1, y down) and may lie outside it.
struct InputLog {
    struct CursorSample {
        double t = 0;
        double x = 0;
        double y = 0;
        bool operator==(const CursorSample&) const = default;
    };

    struct Event {
        enum class Kind { click, rightClick, key, scroll };

        double t = 0;
        Kind kind = Kind::click;
        std::optional<double> x; ///< mouse events only
        std::optional<double> y; ///< mouse events only
        bool operator==(const Event&) const = default;
    };

    std::vector<CursorSample> cursor;   ///< in time order
    std::vector<Event> events;          ///< in time order
    std::optional<bool> keysTracked;    ///< whether key presses could be observed; absent: unknown
    std::optional<bool> cursorInVideo;  ///< whether the pointer is part of the picture; absent: unknown
    std::optional<double> cameraOffset; ///< seconds by which the camera's first frame follows the screen's

    /// Reads "input.json". Throws RecordingError that names the file and the cause when it cannot be read,
    /// lacks a required key, holds a wrong type or an unknown kind of event. Unknown keys are ignored.
    static InputLog load(const std::filesystem::path& file);

    /// Writes the log compactly and atomically. Throws RecordingError; an old file stays on failure.
    void save(const std::filesystem::path& file) const;

    /// Whether the user did anything in [from, to): any event, or a pointer sample that lies more than
    /// `moveThreshold` (strictly, per axis, normalised units) from the window's first pointer sample.
    bool userActive(double from, double to, double moveThreshold) const;

    bool operator==(const InputLog&) const = default;
};

} // namespace RecordCore
