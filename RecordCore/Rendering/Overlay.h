#pragma once

#include "RecordCore/Model/Backdrop.h"
#include "RecordCore/Rendering/Bitmap.h"
#include "RecordCore/Rendering/FloatPlane.h"
#include "RecordCore/Rendering/Picture.h"

#include <array>
#include <cstdint>
#include <vector>

namespace RecordCore {

/// A rectangle of whole canvas pixels [x0, x1) × [y0, y1).
struct PixelRect {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;
    bool empty() const { return x0 >= x1 || y0 >= y1; }
    PixelRect intersected(const PixelRect& other) const;
    bool operator==(const PixelRect&) const = default;
};

/// A colour with an opacity.
struct Tint {
    Rgb color;
    double alpha = 0;
    bool operator==(const Tint&) const = default;
};

/// The samples of an even layer of a tint, premultiplied as in an overlay.
struct TintSamples {
    std::array<std::uint8_t, 3> color{};
    std::uint8_t alpha = 0;
    explicit TintSamples(const Tint& tint);
    /// Lays the layer over a part of the picture (even coordinates inside it); `fade` 0…255.
    void layOver(Picture& picture, const PixelRect& part, int fade) const;
};

/// A drawing with transparency at its place on a canvas, in the engine's pixel format: Y', Cb, Cr
/// premultiplied by their alpha, one alpha for luma and one, averaged to the chroma siting, for chroma.
/// Its rectangle starts and ends on even pixels. A value; `set` reuses the memory.
class Overlay {
public:
    Overlay() = default;
    Overlay(const Bitmap& bitmap, int x, int y) { set(bitmap, x, y); }

    /// Converts a drawing whose upper left pixel stands at (x, y) of the canvas. `shift` (0…1) moves it down
    /// by a fraction of a pixel. All of the overlay's rectangle is filled with `ground` under the drawing.
    void set(const Bitmap& bitmap, int x, int y, double shift = 0, const Tint& ground = {});
    void clear() { area = {}; }

    bool empty() const { return area.empty(); }
    const PixelRect& rect() const { return area; }

    /// Lays the part inside `clip` (even coordinates, inside the picture) over the picture; `fade` 0…255.
    void drawOn(Picture& picture, const PixelRect& clip, int fade) const;

    /// The first sample: of a transparent drawing, its ground.
    std::array<std::uint8_t, 3> groundColor() const;
    std::uint8_t groundAlpha() const;

    std::size_t bytes() const { return samples.capacity(); }

private:
    int width() const { return area.x1 - area.x0; }
    int height() const { return area.y1 - area.y0; }
    const std::uint8_t* plane(std::size_t index) const { return samples.data() + offsets[index]; }
    std::uint8_t* plane(std::size_t index) { return samples.data() + offsets[index]; }

    PixelRect area;
    std::vector<std::uint8_t> samples;
    std::array<std::size_t, 5> offsets{}; ///< of Y' and alpha; of Cb, Cr and alpha at half size
};

/// Alpha for the two kinds of planes, from an alpha in 0…1 whose sample (0, 0) is the canvas pixel (left,
/// top).
class AlphaMask {
public:
    AlphaMask() = default;
    /// `area` has even edges; samples outside the plane count as 0.
    /// `inverted` keeps 1 − alpha.
    AlphaMask(const FloatPlane& alpha, int left, int top, const PixelRect& area, bool inverted = false);

    const PixelRect& rect() const { return area; }
    const std::uint8_t* row(int plane, int y) const; ///< y of the plane; points at the area's left edge

private:
    PixelRect area;
    std::vector<std::uint8_t> luma;
    std::vector<std::uint8_t> chroma;
};

} // namespace RecordCore
