#pragma once

#include "RecordCore/Rendering/Wallpapers/LinearRgb.h"

#include <functional>
#include <vector>

namespace RecordCore {

/// The place a wallpaper is composed on, whatever its size in pixels. Coordinates start at the centre, u to
/// the right and v downwards; the unit is the side of the square of equal area, so that shapes take the same
/// share of a wide, a square and a tall picture.
struct Stage {
    double halfU = 0.5; ///< u of the right edge
    double halfV = 0.5; ///< v of the lower edge
    double pixel = 0;   ///< the side of a pixel in units

    static Stage of(int width, int height);
    double wide() const { return halfU / halfV; }
};

/// One row of pixels in preparation, in linear light.
struct ShadeRow {
    int width = 0;
    float firstU = 0; ///< u of the first pixel's centre
    float stepU = 0;  ///< to the next pixel
    float v = 0;
    float* r = nullptr;
    float* g = nullptr;
    float* b = nullptr;

    float u(int x) const { return firstU + stepU * static_cast<float>(x); }
};

/// A wallpaper ready to be drawn at one size. `shade` may be called for rows in any order by any thread.
class Shader {
public:
    virtual ~Shader() = default;
    /// Sets the row's colours.
    virtual void shade(ShadeRow& row) const = 0;
};

/// A smooth function of the place, sampled on a grid that is coarse and the same for every size in pixels,
/// and interpolated by cubic B-splines: however costly the function, a pixel costs next to nothing, and
/// slopes are smooth too. What changes within fewer than about three steps is smoothed away.
class Field {
public:
    Field() = default;
    /// `margin` is how far beyond the edges it can be asked.
    Field(const Stage& stage, double step, const std::function<double(double u, double v)>& value,
          double margin = 0);

    void row(const ShadeRow& row, float* values) const;
    /// Also the slopes along u and v.
    void row(const ShadeRow& row, float* values, float* slopesU, float* slopesV) const;
    /// The value at one place; beyond the margin that of the edge.
    float at(float u, float v) const;

private:
    void blend(float v, bool slope, float* line) const;

    int columns = 0;
    int rows = 0;
    float left = 0;
    float top = 0;
    float perStep = 0; ///< grid steps per unit
    std::vector<float> nodes;
};

/// Three fields: a smooth picture.
class ColorField {
public:
    ColorField() = default;
    ColorField(const Stage& stage, double step, const std::function<LinearRgb(double u, double v)>& value,
               double margin = 0);

    void row(ShadeRow& row) const;
    LinearRgb at(float u, float v) const { return {red.at(u, v), green.at(u, v), blue.at(u, v)}; }

private:
    Field red;
    Field green;
    Field blue;
};

} // namespace RecordCore
