#pragma once

#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/Styles.h"
#include "RecordCore/Rendering/RoundedRect.h"

#include <optional>
#include <string_view>

namespace RecordCore {

/// A point in canvas pixels, origin top-left.
struct CanvasPoint {
    double x = 0;
    double y = 0;
    bool operator==(const CanvasPoint&) const = default;
};

/// Where things stand on a canvas: pure arithmetic, in canvas pixels with the origin at the top-left.
struct Placement {
    OutputFormat format = OutputFormat::wide;
    double scale = 1; ///< canvas pixels per base unit
    int width = 0;    ///< even
    int height = 0;   ///< even
    RoundedRect window;
    double band = 0; ///< height of the header text's band; 0 when it is not shown

    static Placement make(OutputFormat format, double sourceAspect, double padding, double radius,
                          bool header, double scale);

    /// The camera bubble; nothing when it is smaller than a pixel.
    std::optional<RoundedRect> bubble(const CameraStyle& style) const;

    /// Base size of the pointer for a state's view height and pointer scale.
    double pointerSize(double pointerScale, double viewHeight) const;
    /// Where a normalised source point lies under a view.
    CanvasPoint point(double x, double y, const NRect& view) const;
    /// Side of a click glyph as a multiple of the pointer size.
    static double rippleFactor(std::string_view effect, double progress);
};

/// What of the source fills the window: a canvas point (x, y) shows the source pixel position
/// (left + (x − window.x) / s, bottom − (window.maxY − y) / s). Steps smaller than 1/64 of a canvas pixel are
/// rounded away, so that a camera that comes to rest comes to rest in pixels, too.
struct SourceMapping {
    double left = 0;   ///< source pixels at the window's left edge
    double bottom = 0; ///< source pixels (from the top) at the window's bottom edge
    double width = 1;  ///< source pixels across the window
    bool operator==(const SourceMapping&) const = default;

    static SourceMapping make(const NRect& view, const std::optional<NRect>& crop, int sourceWidth,
                              int sourceHeight, double windowWidth);
};

} // namespace RecordCore
