#include "RecordCore/Rendering/CairoSurface.h"

#include "RecordCore/Rendering/FloatPlane.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace RecordCore {

CairoSurface::CairoSurface(Bitmap& bitmap) :
    surface(cairo_image_surface_create_for_data(bitmap.pixels.data(), CAIRO_FORMAT_ARGB32, bitmap.width,
                                                bitmap.height, bitmap.stride())),
    context(cairo_create(surface)) {
    cairo_set_antialias(context, CAIRO_ANTIALIAS_BEST);
}

CairoSurface::~CairoSurface() {
    cairo_destroy(context);
    cairo_surface_flush(surface);
    cairo_surface_destroy(surface);
}

void roundedRectanglePath(cairo_t* cairo, double x, double y, double width, double height, double radius) {
    const double r = std::clamp(radius, 0.0, std::min(width, height) / 2);
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x + width - r, y + r, r, -quarter, 0);
    cairo_arc(cairo, x + width - r, y + height - r, r, 0, quarter);
    cairo_arc(cairo, x + r, y + height - r, r, quarter, 2 * quarter);
    cairo_arc(cairo, x + r, y + r, r, 2 * quarter, 3 * quarter);
    cairo_close_path(cairo);
}

void setInk(cairo_t* cairo, const Ink& ink) {
    cairo_set_source_rgba(cairo, ink.color.r, ink.color.g, ink.color.b, ink.alpha);
}

Bitmap blurredShadow(const Bitmap& shape, double sigma, const Ink& ink, double density) {
    FloatPlane alpha(shape.width, shape.height);
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x)
            alpha.row(y)[x] = shape.at(x, y)[3];
    alpha.blur(sigma);
    Bitmap shadow(shape.width, shape.height);
    for (int y = 0; y < shape.height; ++y)
        for (int x = 0; x < shape.width; ++x) {
            const double a = std::clamp(alpha.row(y)[x] * density, 0.0, 255.0) * ink.alpha;
            std::uint8_t* pixel = shadow.pixels.data() + (shadow.at(x, y) - shadow.pixels.data());
            pixel[0] = static_cast<std::uint8_t>(std::lround(a * ink.color.b));
            pixel[1] = static_cast<std::uint8_t>(std::lround(a * ink.color.g));
            pixel[2] = static_cast<std::uint8_t>(std::lround(a * ink.color.r));
            pixel[3] = static_cast<std::uint8_t>(std::lround(a));
        }
    return shadow;
}

void draw(Bitmap& bottom, const Bitmap& top, int x, int y) {
    const CairoSurface target(bottom);
    Bitmap& source = const_cast<Bitmap&>(top); // Cairo only reads it
    cairo_surface_t* surface = cairo_image_surface_create_for_data(
        source.pixels.data(), CAIRO_FORMAT_ARGB32, source.width, source.height, source.stride());
    cairo_set_source_surface(target, surface, x, y);
    cairo_paint(target);
    cairo_surface_destroy(surface);
}

} // namespace RecordCore
