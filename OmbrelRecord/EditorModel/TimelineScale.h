#pragma once

#include <QtCore/QString>
#include <vector>

namespace OmbrelRecord {

/// How the time of a recording lies on a line of the screen. Plain value, pure: every change makes a new one.
/// Times are seconds of the source, positions pixels from the left edge.
struct TimelineScale {
    /// Free at both ends, so that what lies at the very ends can be taken hold of.
    static constexpr double inset = 14;
    /// One frame of 60 in a second is no wider than this.
    static constexpr double widestFrame = 10;

    double duration = 0;
    double width = 0;
    double start = 0; ///< time at the inset
    double secondsPerPixel = 1;

    /// The whole recording.
    static TimelineScale fitting(double duration, double width);

    double x(double time) const { return inset + (time - start) / secondsPerPixel; }
    double time(double x) const { return start + (x - inset) * secondsPerPixel; }
    /// As `time`, within the recording.
    double timeInside(double x) const;

    double coarsest() const; ///< seconds per pixel at which the whole recording shows
    double finest() const;
    bool fits() const { return secondsPerPixel >= coarsest() * (1 - 1e-9); }
    /// Seconds that show between the insets.
    double shown() const;

    /// Magnified `factor` times; what stands at `atX` stays there, as far as the ends allow.
    TimelineScale magnified(double factor, double atX) const;
    TimelineScale scrolled(double pixels) const;
    /// For a line of another width: a recording that was shown whole stays so.
    TimelineScale resized(double newWidth) const;
    /// A stretch of time made to fill the line, with a little room at its sides.
    TimelineScale showing(double from, double to) const;
    /// Moved as little as it takes to show `time`; `ahead` keeps that share of the width free after it.
    TimelineScale revealing(double time, double ahead = 0) const;

    struct Tick {
        double time = 0;
        bool major = false; ///< carries a label
        bool operator==(const Tick&) const = default;
    };
    /// The marks of a ruler in [fromX, toX]; labels stand at least `labelRoom` pixels apart.
    std::vector<Tick> ticks(double fromX, double toX, double labelRoom = 84) const;
    /// Seconds from one label to the next.
    double labelStep(double labelRoom = 84) const;

    bool operator==(const TimelineScale&) const = default;

private:
    TimelineScale limited() const;
};

/// "0:07", "3:10", "1:02:03"; with tenths or hundredths when `step`, the distance of two such times, asks
/// for it.
QString timeText(double seconds, double step = 1);

/// "40×", "2.5×", "0.5×".
QString speedText(double speed);

} // namespace OmbrelRecord
