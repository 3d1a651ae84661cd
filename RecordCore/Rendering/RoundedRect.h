#pragma once

#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Rendering/FloatPlane.h"

namespace RecordCore {

/// A rectangle with circular corners in canvas pixels, origin top-left. The radius is limited to half the
/// shorter side.
struct RoundedRect {
    CanvasRect rect;
    double radius = 0;

    static RoundedRect make(CanvasRect rect, double radius);
    /// Larger by `margin` on every side, the radius too.
    RoundedRect grown(double margin) const;

    /// How much of the pixel (x, y) it covers, 0…1: exact along the sides and sampled 16 × 16 at corners.
    double coverage(int x, int y) const;
    /// Adds nothing outside; fills a plane whose sample (0, 0) is the canvas pixel (left, top).
    FloatPlane mask(int left, int top, int width, int height) const;
    /// Whether the pixels [x0, x1) × [y0, y1) are covered wholly.
    bool covers(int x0, int y0, int x1, int y1) const;
};

} // namespace RecordCore
