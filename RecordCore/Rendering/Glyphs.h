#pragma once

#include "RecordCore/Rendering/Bitmap.h"
#include "RecordCore/Rendering/Ink.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace RecordCore {

/// The small drawings of a film, and its texts. What draws them is a library of its own (RecordCoreDrawing),
/// or stands in for one that is loaded at the first call and throws RecordingError where it cannot be had.
/// Otherwise pure functions, callable from any thread. Everything is drawn from outlines
/// at the size asked for. Lengths are canvas pixels; `scale` is canvas pixels per base unit.
namespace Glyphs {

/// The pointer is designed on a sheet of 110 × 150 (the dot: 150 × 150); its hot spot is what points.
inline constexpr double pointerWidth = 110;
inline constexpr double pointerHeight = 150;
inline constexpr double pointerUnit = 118; ///< sheet units that make up the pointer's base size
struct PointerSheet {
    double width;
    double height;
    double hotX;
    double hotY;
};
inline PointerSheet pointerSheet(std::string_view style) {
    if (style == "dot") return {150, 150, 75, 75};
    return {pointerWidth, pointerHeight, 14, 10};
}
/// Draws the sheet of a pointer style with its corner at (x, y) of the bitmap, `k` pixels for a unit.
void paintPointer(Bitmap& bitmap, std::string_view style, double x, double y, double k);

/// Click glyphs are designed on a sheet of 200 × 200.
inline constexpr double rippleSheet = 200;
/// Draws the sheet of a click effect ("ring", "spotlight", else the ripple) in the same way.
void paintClick(Bitmap& bitmap, std::string_view effect, double x, double y, double k);

/// The sheets as drawings, `k` pixels for a unit.
Bitmap pointer(std::string_view style, double k = 1);
Bitmap ripple(bool thick, double k = 1);
Bitmap spotlight(double k = 1);

/// A line of caption words; `active` is the word to highlight, -1 for none.
Bitmap captionLine(const std::vector<std::string>& words, int active, std::string_view style, double size,
                   double maxWidth);

Bitmap pill(std::int64_t speed, std::string_view label, double scale);
Bitmap clockBadge(std::string_view text, double scale);

/// A title with an optional subtitle, centred, wrapped at `width`; made smaller until it fits `maxHeight`
/// when that is given. With a shadow, to stand on a picture, it is larger by the shadow's reach all round.
Bitmap textBlock(std::string_view title, std::string_view subtitle, double width, double titleSize,
                 const Ink& ink, double maxHeight = 0, bool shadow = false);

Bitmap endCard(std::string_view title, std::string_view subtitle, double scale, double maxWidth);
Bitmap watermarkBadge(double scale);

} // namespace Glyphs

} // namespace RecordCore
