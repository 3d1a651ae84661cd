#include "RecordCore/Model/OutputFormat.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace RecordCore {

namespace {

struct Facts {
    std::string_view rawValue;
    std::string_view label;
    Size canvas;
    double header;
    double bottomMargin;      ///< least margin below the window (not used by the wide format)
    bool bottomFollowsMargin; ///< the bottom margin grows with the side margins
};

constexpr std::array<Facts, 4> table{{
    {"16:9", "YouTube", {1920, 1080}, 0, 0, false},
    {"4:5", "X", {1080, 1350}, 150, 40, true},
    {"9:16", "Shorts", {1080, 1920}, 300, 240, false},
    {"1:1", "Square", {1080, 1080}, 110, 30, true},
}};

const Facts& facts(OutputFormat format) {
    return table[static_cast<std::size_t>(format)];
}

/// The least side of the window in base pixels; a larger padding is limited to this.
constexpr double leastWindow = 16;

} // namespace

std::string_view rawValue(OutputFormat format) {
    return facts(format).rawValue;
}

std::optional<OutputFormat> outputFormat(std::string_view rawValue) {
    for (const OutputFormat format : allOutputFormats)
        if (facts(format).rawValue == rawValue) return format;
    return std::nullopt;
}

std::string_view label(OutputFormat format) {
    return facts(format).label;
}

Size canvas(OutputFormat format) {
    return facts(format).canvas;
}

double headerHeight(OutputFormat format) {
    return facts(format).header;
}

double referenceLength(OutputFormat format) {
    return format == OutputFormat::wide ? 1920 : 1080;
}

CanvasRect window(OutputFormat format, double sourceAspect, double padding) {
    const auto& [raw, title, size, header, bottomMargin, bottomFollowsMargin] = facts(format);
    const double p = std::isfinite(padding) ? std::max(padding, 0.0) : 0.0;

    if (format == OutputFormat::wide) {
        const double a =
            std::isfinite(sourceAspect) && sourceAspect > 0 ? sourceAspect : size.width / size.height;
        const double m = std::min(2 * p * size.width, size.height - leastWindow);
        double w = std::min(a * (size.height - m), size.width - m);
        double h = w / a;
        // Extreme strips keep a side that can be drawn.
        w = std::max(w, 1.0);
        h = std::max(h, 1.0);
        return {(size.width - w) * 0.5, (size.height - h) * 0.5, w, h};
    }

    const double widestMargin = (size.width - leastWindow) * 0.5;
    const double tallestMargin =
        bottomFollowsMargin ? (size.height - header - leastWindow) * 0.5 : widestMargin;
    const double s = std::min(p * size.width * 0.75, std::min(widestMargin, tallestMargin));
    const double bottom = bottomFollowsMargin ? std::max(2 * s, bottomMargin) : bottomMargin;
    return {s, header, size.width - 2 * s, size.height - header - bottom};
}

} // namespace RecordCore
