#pragma once

#include "RecordCore/Model/Backdrop.h"
#include "RecordCore/Rendering/Bitmap.h"
#include "RecordCore/Rendering/FloatPlane.h"
#include "RecordCore/Rendering/Picture.h"
#include "RecordCore/Rendering/RgbImage.h"

#include <functional>

namespace RecordCore {

/// An opaque picture in preparation: gamma-encoded R, G, B in floating point, 0…1.
struct RgbPlanes {
    FloatPlane red;
    FloatPlane green;
    FloatPlane blue;

    RgbPlanes() = default;
    RgbPlanes(int width, int height, const Rgb& color = {});

    int width() const { return red.width; }
    int height() const { return red.height; }

    /// An image scaled to cover the size, centred.
    static RgbPlanes covering(const RgbImage& image, int width, int height);

    /// `check` is called between the planes; what it throws goes through.
    void blur(double sigma, const std::function<void()>& check = {});
    /// Mixes in one colour: alpha × mask, where mask sample (0, 0) stands at (left, top).
    void lay(const Rgb& color, double alpha, const FloatPlane& mask, int left, int top);
    void lay(const Bitmap& drawing, int left, int top);
    /// The mean luma (0.2126 R + 0.7152 G + 0.0722 B) of a part.
    double luma(int left, int top, int width, int height) const;

    /// The planar picture. Smooth gradients are dithered (always in the same way) so that they show no bands;
    /// even areas are rounded plainly. The size must be even.
    Picture picture() const;
};

} // namespace RecordCore
