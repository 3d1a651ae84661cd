#include "RecordCore/Rendering/Wallpapers/Stage.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace RecordCore {

namespace {

struct Weights {
    std::array<float, 4> of;
};

/// The uniform cubic B-spline's weights of four neighbouring nodes, f of the way from the second to the
/// third.
Weights spline(float f) {
    const float e = 1 - f;
    return {{e * e * e / 6, (3 * f * f * f - 6 * f * f + 4) / 6, (3 * e * e * e - 6 * e * e + 4) / 6,
             f * f * f / 6}};
}

Weights splineSlope(float f) {
    const float e = 1 - f;
    return {{-e * e / 2, (3 * f * f - 4 * f) / 2, (-3 * e * e + 4 * e) / 2, f * f / 2}};
}

} // namespace

Stage Stage::of(int width, int height) {
    const double w = width;
    const double h = height;
    const double side = std::sqrt(w * h);
    return {w / side / 2, h / side / 2, 1 / side};
}

Field::Field(const Stage& stage, double step, const std::function<double(double, double)>& value,
             double margin) {
    const int acrossHalf = static_cast<int>(std::ceil((stage.halfU + margin) / step)) + 2;
    const int downHalf = static_cast<int>(std::ceil((stage.halfV + margin) / step)) + 2;
    columns = 2 * acrossHalf + 1;
    rows = 2 * downHalf + 1;
    left = static_cast<float>(-acrossHalf * step);
    top = static_cast<float>(-downHalf * step);
    perStep = static_cast<float>(1 / step);
    nodes.reserve(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < columns; ++i)
            nodes.push_back(static_cast<float>(value((i - acrossHalf) * step, (j - downHalf) * step)));
}

void Field::blend(float v, bool slope, float* line) const {
    const float place = std::clamp((v - top) * perStep, 1.0F, static_cast<float>(rows) - 2.001F);
    const int j = static_cast<int>(place);
    const float f = place - static_cast<float>(j);
    Weights weights = slope ? splineSlope(f) : spline(f);
    if (slope)
        for (float& weight : weights.of)
            weight *= perStep;
    const float* first = nodes.data() + static_cast<std::ptrdiff_t>(j - 1) * columns;
    for (int i = 0; i < columns; ++i)
        line[i] = weights.of[0] * first[i] + weights.of[1] * first[i + columns] +
                  weights.of[2] * first[i + 2 * columns] + weights.of[3] * first[i + 3 * columns];
}

void Field::row(const ShadeRow& row, float* values) const {
    Field::row(row, values, nullptr, nullptr);
}

void Field::row(const ShadeRow& row, float* values, float* slopesU, float* slopesV) const {
    std::vector<float> line(static_cast<std::size_t>(columns));
    // Within one step of the grid a row is one polynomial; `degree` 3 for values, 2 for slopes along u.
    const auto run = [&](float* out, bool slopeU) {
        const float perPixel = row.stepU * perStep;
        const float start = (row.firstU - left) * perStep;
        int x = 0;
        while (x < row.width) {
            const float place = start + perPixel * static_cast<float>(x);
            const int i = std::clamp(static_cast<int>(place), 1, columns - 3);
            const float* p = line.data() + i - 1;
            const float c0 = (p[0] + 4 * p[1] + p[2]) / 6;
            const float c1 = (p[2] - p[0]) / 2;
            const float c2 = (p[0] - 2 * p[1] + p[2]) / 2;
            const float c3 = (p[3] - p[0] + 3 * (p[1] - p[2])) / 6;
            const int end =
                std::clamp(static_cast<int>(std::ceil((static_cast<float>(i + 1) - start) / perPixel)), x + 1,
                           row.width);
            const float base = start - static_cast<float>(i);
            if (slopeU)
                for (; x < end; ++x) {
                    const float f = base + perPixel * static_cast<float>(x);
                    out[x] = perStep * (c1 + f * (2 * c2 + f * 3 * c3));
                }
            else
                for (; x < end; ++x) {
                    const float f = base + perPixel * static_cast<float>(x);
                    out[x] = c0 + f * (c1 + f * (c2 + f * c3));
                }
        }
    };
    blend(row.v, false, line.data());
    run(values, false);
    if (!slopesU) return;
    run(slopesU, true);
    blend(row.v, true, line.data());
    run(slopesV, false);
}

float Field::at(float u, float v) const {
    const float x = std::clamp((u - left) * perStep, 1.0F, static_cast<float>(columns) - 2.001F);
    const float y = std::clamp((v - top) * perStep, 1.0F, static_cast<float>(rows) - 2.001F);
    const int i = static_cast<int>(x);
    const int j = static_cast<int>(y);
    const Weights across = spline(x - static_cast<float>(i));
    const Weights down = spline(y - static_cast<float>(j));
    float sum = 0;
    for (int k = 0; k < 4; ++k) {
        const float* p = nodes.data() + static_cast<std::ptrdiff_t>(j - 1 + k) * columns + i - 1;
        sum += down.of[static_cast<std::size_t>(k)] *
               (across.of[0] * p[0] + across.of[1] * p[1] + across.of[2] * p[2] + across.of[3] * p[3]);
    }
    return sum;
}

ColorField::ColorField(const Stage& stage, double step, const std::function<LinearRgb(double, double)>& value,
                       double margin) {
    // The function gives three values at a time, a field takes one: they are laid down in between.
    std::vector<LinearRgb> all;
    const auto keep = [&](double u, double v) {
        all.push_back(value(u, v));
        return static_cast<double>(all.back().r);
    };
    red = Field(stage, step, keep, margin);
    std::size_t next = 0;
    green = Field(
        stage, step, [&](double, double) { return static_cast<double>(all[next++].g); }, margin);
    next = 0;
    blue = Field(
        stage, step, [&](double, double) { return static_cast<double>(all[next++].b); }, margin);
}

void ColorField::row(ShadeRow& row) const {
    red.row(row, row.r);
    green.row(row, row.g);
    blue.row(row, row.b);
}

} // namespace RecordCore
