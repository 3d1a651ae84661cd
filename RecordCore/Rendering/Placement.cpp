#include "RecordCore/Rendering/Placement.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

/// The canvas is at most 7680 pixels long (four times the base), at least 16.
constexpr double largestScale = 4;
constexpr double smallestScale = 1.0 / 64;

int even(double length) {
    return std::max(2 * static_cast<int>(std::lround(length / 2)), 2);
}

double finite(double value, double fallback) {
    return std::isfinite(value) ? value : fallback;
}

} // namespace

Placement Placement::make(OutputFormat format, double sourceAspect, double padding, double radius,
                          bool header, double scale) {
    Placement placement;
    placement.format = format;
    placement.scale = std::isnan(scale) ? 1 : std::clamp(scale, smallestScale, largestScale);
    const double s = placement.scale;
    const Size base = canvas(format);
    placement.width = even(base.width * s);
    placement.height = even(base.height * s);

    const CanvasRect rect = RecordCore::window(format, sourceAspect, padding);
    placement.window = RoundedRect::make({s * rect.x, s * rect.y, s * rect.width, s * rect.height},
                                         std::max(0.0, s * referenceLength(format) * radius));
    if (header && format != OutputFormat::wide) placement.band = headerHeight(format) * s;
    return placement;
}

std::optional<RoundedRect> Placement::bubble(const CameraStyle& style) const {
    const double m = std::min(width, height);
    const double d = std::trunc(std::clamp(finite(style.size, 0.24), 0.0, 1.0) * m);
    if (d < 1) return std::nullopt;
    const double margin = 0.035 * m;
    const char vertical = style.corner.empty() ? 'b' : style.corner.front();
    const char horizontal = style.corner.empty() ? 'r' : style.corner.back();

    const double x = horizontal == 'l' ? margin : horizontal == 'c' ? (width - d) / 2 : width - d - margin;
    // Bottom-up, as distances from the lower edge, then turned over.
    const double fromBottom = vertical == 't'   ? height - band - d - margin
                              : vertical == 'm' ? (height - d) / 2
                                                : margin;
    const double fraction = style.shape == "circle" ? 0.5 : style.shape == "square" ? 0.07 : 0.22;
    return RoundedRect::make({x, height - fromBottom - d, d, d}, d * fraction);
}

double Placement::pointerSize(double pointerScale, double viewHeight) const {
    const double size = window.rect.height * (pointerScale * 0.026 / viewHeight);
    // A pointer larger than the canvas is a mistake in the numbers, not a wish.
    return std::isfinite(size) ? std::clamp(size, 0.0, 1.0 * std::max(width, height)) : 0;
}

CanvasPoint Placement::point(double x, double y, const NRect& view) const {
    return {window.rect.x + ((x - view.x) / view.w) * window.rect.width,
            window.rect.y + ((y - view.y) / view.h) * window.rect.height};
}

double Placement::rippleFactor(std::string_view effect, double progress) {
    if (effect == "ring") return progress * 0.3 + 1.1;
    if (effect == "spotlight") return 2.6;
    return progress * 1.6 + 0.6;
}

SourceMapping SourceMapping::make(const NRect& view, const std::optional<NRect>& crop, int sourceWidth,
                                  int sourceHeight, double windowWidth) {
    NRect mapped = view;
    if (crop)
        mapped = {view.x * crop->w + crop->x, view.y * crop->h + crop->y, view.w * crop->w, view.h * crop->h};
    // At least a pixel is shown, at most 64 sources side by side.
    const double width = std::clamp(finite(mapped.w, 1) * sourceWidth, 1.0, 64.0 * sourceWidth);
    const double left =
        std::clamp(finite(mapped.x, 0) * sourceWidth, -64.0 * sourceWidth, 64.0 * sourceWidth);
    const double bottom =
        std::clamp(finite(mapped.y + mapped.h, 1) * sourceHeight, -64.0 * sourceHeight, 64.0 * sourceHeight);

    // The step is a power of two, so whole pixels and simple fractions of them stay exactly as they are.
    const double step = std::exp2(std::floor(std::log2(width / (64 * std::max(windowWidth, 1.0)))));
    const auto snapped = [step](double value) { return std::round(value / step) * step; };
    return {snapped(left), snapped(bottom), std::max(snapped(width), step)};
}

} // namespace RecordCore
