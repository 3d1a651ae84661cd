#pragma once

#include "RecordCore/Rendering/Bitmap.h"
#include "RecordCore/Rendering/Ink.h"

// Cairo's own declarations, repeated so that its headers stay inside the drawing code.
using cairo_t = struct _cairo;
using cairo_surface_t = struct _cairo_surface;

namespace RecordCore {

/// A Cairo drawing context on the pixels of a bitmap, which must outlive it and keep its size.
/// Included only by the drawing code of this folder.
class CairoSurface {
public:
    explicit CairoSurface(Bitmap& bitmap);
    ~CairoSurface();
    CairoSurface(const CairoSurface&) = delete;
    CairoSurface& operator=(const CairoSurface&) = delete;

    operator cairo_t*() const { return context; }

private:
    cairo_surface_t* surface;
    cairo_t* context;
};

/// Adds the path of a rounded rectangle.
void roundedRectanglePath(cairo_t* cairo, double x, double y, double width, double height, double radius);

void setInk(cairo_t* cairo, const Ink& ink);

/// Blurs the bitmap's alpha and returns it as a drawing of that colour, of the same size. A `density` above 1
/// makes the shadow of thin shapes fuller, up to the ink's alpha.
Bitmap blurredShadow(const Bitmap& shape, double sigma, const Ink& ink, double density = 1);

/// Lays `top` over `bottom` with its upper left corner at (x, y).
void draw(Bitmap& bottom, const Bitmap& top, int x, int y);

} // namespace RecordCore
