#include "RecordCore/Rendering/RgbPlanes.h"

#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/ScaleTable.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

/// What exceeds the whole part, of numbers from 0 on; a cast, because `floor` keeps loops from becoming
/// vectors.
float fraction(float value) {
    return value - static_cast<float>(static_cast<int>(value));
}

/// Interleaved gradient noise (Jimenez 2014): even like an ordered pattern but without its grid, 0…1.
float noise(int x, int y) {
    const float t = 0.06711056F * static_cast<float>(x) + 0.00583715F * static_cast<float>(y);
    return fraction(52.9829189F * fraction(t));
}

/// Rounds to 8 bits; where the samples change from one to the next, the fraction decides how often the
/// higher value is taken.
void quantize(const FloatPlane& plane, int seed, int index, Picture& picture) {
    constexpr float even = 1e-4F;
    const int width = plane.width;
    // A row with its edge samples repeated on both sides.
    std::vector<float> line(static_cast<std::size_t>(width) + 2);
    for (int y = 0; y < plane.height; ++y) {
        const float* middle = line.data() + 1;
        std::copy_n(plane.row(y), width, line.data() + 1);
        line.front() = middle[0];
        line.back() = middle[width - 1];
        const float* above = plane.row(std::max(y - 1, 0));
        const float* below = plane.row(std::min(y + 1, plane.height - 1));
        std::uint8_t* out = picture.row(index, y);
        for (int x = 0; x < width; ++x) {
            const float value = middle[x];
            const float change =
                std::max(std::max(std::abs(value - middle[x - 1]), std::abs(value - middle[x + 1])),
                         std::max(std::abs(value - above[x]), std::abs(value - below[x])));
            const float threshold = change < even ? 0.5F : noise(x + 37 * seed, y + 91 * seed);
            out[x] = static_cast<std::uint8_t>(
                static_cast<int>(std::min(std::max(value + threshold, 0.0F), 255.0F)));
        }
    }
}

} // namespace

RgbPlanes::RgbPlanes(int width, int height, const Rgb& color) :
    red(width, height, static_cast<float>(color.r)), green(width, height, static_cast<float>(color.g)),
    blue(width, height, static_cast<float>(color.b)) {}

RgbPlanes RgbPlanes::covering(const RgbImage& image, int width, int height) {
    const double scale =
        std::max(static_cast<double>(width) / image.width, static_cast<double>(height) / image.height);
    // The canvas' centre shows the image's centre.
    ScaleTable across;
    ScaleTable down;
    across.make(1 / scale, image.width / 2.0 - width / 2.0 / scale, image.width, 0, width);
    down.make(1 / scale, image.height / 2.0 - height / 2.0 / scale, image.height, 0, height);

    RgbPlanes planes(width, height);
    const ScaleTable::Span rows = down.inputs(0, height);
    FloatPlane narrow(width, rows.high - rows.low);
    for (int component = 0; component < 3; ++component) {
        for (int y = rows.low; y < rows.high; ++y) {
            const std::uint8_t* in = image.at(0, y) + component;
            float* out = narrow.row(y - rows.low);
            for (int x = 0; x < width; ++x) {
                const std::int16_t* weights = across.weights(x);
                const std::uint8_t* from = in + static_cast<std::ptrdiff_t>(across.start(x)) * 3;
                int sum = 0;
                for (int t = 0; t < across.taps(); ++t)
                    sum += from[3 * t] * weights[t];
                out[x] = static_cast<float>(sum);
            }
        }
        FloatPlane& plane = component == 0 ? planes.red : component == 1 ? planes.green : planes.blue;
        constexpr float unit = 1.0F / (255.0F * ScaleTable::unit * ScaleTable::unit);
        for (int y = 0; y < height; ++y) {
            float* out = plane.row(y);
            for (int t = 0; t < down.taps(); ++t) {
                const float weight = static_cast<float>(down.weights(y)[t]) * unit;
                const float* in = narrow.row(down.start(y) + t - rows.low);
                for (int x = 0; x < width; ++x)
                    out[x] += weight * in[x];
            }
            for (int x = 0; x < width; ++x)
                out[x] = std::clamp(out[x], 0.0F, 1.0F);
        }
    }
    return planes;
}

void RgbPlanes::blur(double sigma, const std::function<void()>& check) {
    for (FloatPlane* plane : {&red, &green, &blue}) {
        plane->blur(sigma);
        if (check) check();
    }
}

void RgbPlanes::lay(const Rgb& color, double alpha, const FloatPlane& mask, int left, int top) {
    const int x0 = std::max(left, 0);
    const int x1 = std::min(left + mask.width, width());
    const int y0 = std::max(top, 0);
    const int y1 = std::min(top + mask.height, height());
    const auto mix = [&](FloatPlane& plane, double value) {
        const float target = static_cast<float>(value);
        const float strength = static_cast<float>(alpha);
        for (int y = y0; y < y1; ++y) {
            float* out = plane.row(y);
            const float* cover = mask.row(y - top) - left;
            for (int x = x0; x < x1; ++x)
                out[x] += (target - out[x]) * (strength * cover[x]);
        }
    };
    mix(red, color.r);
    mix(green, color.g);
    mix(blue, color.b);
}

void RgbPlanes::lay(const Bitmap& drawing, int left, int top) {
    const int x0 = std::max(left, 0);
    const int x1 = std::min(left + drawing.width, width());
    for (int y = std::max(top, 0); y < std::min(top + drawing.height, height()); ++y)
        for (int x = x0; x < x1; ++x) {
            const std::uint8_t* pixel = drawing.at(x - left, y - top);
            constexpr float unit = 1.0F / 255;
            const float rest = 1 - static_cast<float>(pixel[3]) * unit;
            red.row(y)[x] = red.row(y)[x] * rest + static_cast<float>(pixel[2]) * unit;
            green.row(y)[x] = green.row(y)[x] * rest + static_cast<float>(pixel[1]) * unit;
            blue.row(y)[x] = blue.row(y)[x] * rest + static_cast<float>(pixel[0]) * unit;
        }
}

double RgbPlanes::luma(int left, int top, int partWidth, int partHeight) const {
    const int x0 = std::max(left, 0);
    const int x1 = std::min(left + partWidth, width());
    const int y0 = std::max(top, 0);
    const int y1 = std::min(top + partHeight, height());
    if (x0 >= x1 || y0 >= y1) return 0;
    double sum = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            sum += Bt709::kr * red.row(y)[x] + Bt709::kg * green.row(y)[x] + Bt709::kb * blue.row(y)[x];
    return sum / (static_cast<double>(x1 - x0) * (y1 - y0));
}

Picture RgbPlanes::picture() const {
    const int w = width();
    const int h = height();
    FloatPlane luma(w, h);
    FloatPlane cb((w + 1) / 2, (h + 1) / 2);
    FloatPlane cr((w + 1) / 2, (h + 1) / 2);
    std::vector<float> blueRow(static_cast<std::size_t>(w));
    std::vector<float> redRow(static_cast<std::size_t>(w));
    for (int y = 0; y < h; ++y) {
        const float* r = red.row(y);
        const float* g = green.row(y);
        const float* b = blue.row(y);
        float* out = luma.row(y);
        for (int x = 0; x < w; ++x) {
            const auto samples = Bt709::fromRgb<float>(r[x], g[x], b[x]);
            out[x] = samples.y;
            blueRow[static_cast<std::size_t>(x)] = samples.cb;
            redRow[static_cast<std::size_t>(x)] = samples.cr;
        }
        // Left siting: 1 2 1 across the even column, the mean of two rows down.
        const auto gather = [w](const std::vector<float>& line, float* sum) {
            for (int x = 0; x < w; x += 2) {
                const std::size_t left = static_cast<std::size_t>(std::max(x - 1, 0));
                const std::size_t right = static_cast<std::size_t>(std::min(x + 1, w - 1));
                sum[x / 2] += (line[left] + 2 * line[static_cast<std::size_t>(x)] + line[right]) * 0.125F;
            }
        };
        gather(blueRow, cb.row(y / 2));
        gather(redRow, cr.row(y / 2));
    }
    Picture picture(w, h);
    quantize(luma, 0, 0, picture);
    quantize(cb, 1, 1, picture);
    quantize(cr, 2, 2, picture);
    return picture;
}

} // namespace RecordCore
