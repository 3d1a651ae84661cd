#pragma once

#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/SourceInfo.h"
#include "RecordCore/Model/SpeedSegment.h"
#include "RecordCore/Model/TimeRange.h"
#include "RecordCore/Model/Uuid.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// A stretch that plays at a speed of its own. The id is made afresh whenever a block comes into being,
/// also by decoding; it is not stored, but it takes part in equality.
struct SpeedBlock {
    Uuid id = Uuid::fresh();
    double start = 0; ///< source seconds
    double end = 0;   ///< source seconds
    double speed = 1; ///< source seconds per output second
    SpeedSegment::Reason reason = SpeedSegment::Reason::manual;

    static SpeedBlock make(double start, double end, double speed, SpeedSegment::Reason reason);
    bool operator==(const SpeedBlock&) const = default;
};

/// A stretch during which the camera is zoomed in. The id behaves as a speed block's.
struct ZoomBlock {
    Uuid id = Uuid::fresh();
    double start = 0; ///< source seconds
    double end = 0;   ///< source seconds
    double x = 0.5;   ///< centre of the view, normalised source coordinates
    double y = 0.5;
    double zoom = 1; ///< 1 shows the whole frame, 2 half its width

    static ZoomBlock make(double start, double end, double x, double y, double zoom);
    bool operator==(const ZoomBlock&) const = default;
};

/// One recognised word, timed in source seconds.
struct CaptionWord {
    std::string text;
    double start = 0;
    double end = 0;
    bool operator==(const CaptionWord&) const = default;
};

/// Everything the user decides about one recording; stored as "project.json". The raw material is never
/// changed. All times are seconds of the source recording. Slider positions are stored as they stand on
/// the slider; `Look::of` turns them into what the compositor uses.
struct Project {
    std::string format = "16:9";
    std::optional<std::string> wallpaperPreset = "orbit";
    std::optional<std::string> wallpaper;
    std::optional<std::string> solidColor;
    std::string backdrop = "night";
    double backgroundBlur = 0.08;
    double padding = 0.011;
    double radius = 0.62;
    double shadow = 0;
    double cursorSize = 1.6;
    bool cursorSmooth = true;
    bool clickRipples = true; ///< older switch; see `load`
    bool hideIdleCursor = true;
    std::string cursorStyle = "arrow";
    std::string clickEffect = "ripple";
    double clickBounce = 0.6;
    bool cameraShow = true;
    bool cameraCircle = true; ///< older switch; see `load`
    double cameraSize = 0.24;
    std::string cameraCorner = "br";
    bool cameraMirror = true;
    std::string cameraShape = "circle";
    bool cameraBorder = false;
    bool cameraMakeRoom = true;
    bool showTitle = false;
    std::string title;
    std::string subtitle;
    bool showEnd = false;
    std::string endTitle = "Made with Dallowby";
    std::string endSubtitle;
    bool showClock = false;
    bool skipWaiting = true;
    bool followAction = true;
    double maxZoom = 1.7;
    double maxSpeed = 40;
    std::string motion = "focused";                   ///< "smooth" glides more slowly
    std::optional<std::vector<CaptionWord>> captions; ///< absent: never transcribed
    bool showCaptions = false;
    std::string captionStyle = "highlight";
    double captionSize = 0.045;
    double captionBottom = 0.08;
    std::optional<NRect> crop;
    double trimStart = 0;
    std::optional<double> trimEnd; ///< absent: the end of the source
    std::vector<TimeRange> cuts;
    std::vector<double> splits;
    std::optional<std::vector<SpeedBlock>> speedBlocks; ///< absent: the automatic ones
    std::optional<std::vector<ZoomBlock>> zoomBlocks;   ///< absent: the automatic ones

    /// Reads "project.json": missing keys take their defaults, older switches are brought forward
    /// ("cameraCircle": false makes the shape "rounded", "clickRipples": false the click effect "none",
    /// each only where the newer key is missing). None when the file cannot be read as a project;
    /// `problem`, when given, then receives the cause.
    static std::optional<Project> load(const std::filesystem::path& file, std::string* problem = nullptr);

    /// Writes the project, pretty-printed with sorted keys, atomically. Throws RecordingError; an old file
    /// stays as it was on failure.
    void save(const std::filesystem::path& file) const;

    /// The format that `format` names; the wide one when it names none.
    OutputFormat outputFormat() const;

    /// Width over height of the source after the crop.
    double sourceAspect(const SourceInfo& info) const;

    /// The cuts in order, joined where they touch or overlap, without those of 1e-6 s or less.
    std::vector<TimeRange> mergedCuts() const;

    /// What remains of a source of `duration` seconds after trims and cuts; slivers of 0.01 s or less vanish.
    std::vector<TimeRange> kept(double duration) const;

    /// What trims and cuts remove, merged.
    std::vector<TimeRange> removed(double duration) const;

    /// The kept stretches divided at the splits that lie more than 0.02 s inside them.
    std::vector<TimeRange> pieces(double duration) const;

    /// The crop when it is large enough to count (more than 0.01 either way).
    std::optional<NRect> cropInForce() const;

    struct Cropped {
        SourceInfo info;
        std::vector<ActivitySample> samples;
        std::optional<InputLog> log;
    };

    /// The source facts, activity and input re-expressed in the cropped frame.
    Cropped cropped(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                    const std::optional<InputLog>& log) const;

    /// The input log alone, re-expressed in the cropped frame.
    InputLog cropped(InputLog log) const;

    bool operator==(const Project&) const = default;
};

} // namespace RecordCore
