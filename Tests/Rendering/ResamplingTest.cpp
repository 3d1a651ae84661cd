#include "RecordCore/Rendering/PictureScaler.h"
#include "Tests/Rendering/SamplePictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

using namespace RecordCore;
using SamplePictures::Random;

namespace {

double lanczos3(double x) {
    if (std::abs(x) < 1e-12) return 1;
    if (std::abs(x) >= 3) return 0;
    const double t = std::numbers::pi * x;
    return 3 * std::sin(t) * std::sin(t / 3) / (t * t);
}

double keys(double x) {
    x = std::abs(x);
    if (x < 1) return 1.5 * x * x * x - 2.5 * x * x + 1;
    if (x < 2) return -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2;
    return 0;
}

/// One axis of the plain reference: the weighted mean about `center` (input sample j has its centre at j +
/// 0.5).
double weighed(double center, double ratio, int size, const std::function<double(int)>& sample) {
    const bool reduces = ratio * 0.999 > 1;
    const double width = reduces ? ratio : 1;
    const int reach = static_cast<int>(std::ceil(3 * width)) + 2;
    const int middle = static_cast<int>(std::floor(center));
    double sum = 0;
    double weights = 0;
    for (int j = middle - reach; j <= middle + reach; ++j) {
        const double weight = reduces ? lanczos3((j + 0.5 - center) / width) : keys(j + 0.5 - center);
        weights += weight;
        sum += weight * sample(std::clamp(j, 0, size - 1));
    }
    return sum / weights;
}

TEST(Resampling, matchesAPlainReference) {
    struct Case {
        const char* name;
        int width, height;
        AxisMapping across, down;
    };
    const Case cases[] = {
        {"same size", 96, 80, {1, 0}, {1, 0}},
        {"moved by a fraction", 96, 80, {1, 0.37}, {1, -0.81}},
        {"reduced a little", 120, 100, {1.27, 3.1}, {1.27, 0.4}},
        {"reduced much", 400, 333, {4.1, 0.6}, {4.1, 1.7}},
        {"enlarged", 64, 50, {0.41, 5.2}, {0.41, 8.9}},
        {"just below the border of reducing", 96, 80, {1 / 0.9995, 0.2}, {1 / 0.9995, 0.2}},
        {"mirrored, odd size", 61, 47, {-0.7, 58.3}, {0.7, 2.5}},
        {"beyond all edges", 24, 20, {0.9, -30}, {0.9, -25}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Picture source = SamplePictures::screen(c.width, c.height, 3);
        const PixelRect area{16, 2, 64, 54};
        PictureScaler scaler;
        scaler.make(c.across, c.down, c.width, c.height, area);
        Picture out(80, 60);
        PictureScaler::Scratch scratch;
        double worst = 0;
        for (int plane = 0; plane < 3; ++plane) {
            scaler.scale(source.view(), plane, area, out, 0, 0, scratch);
            const bool luma = plane == 0;
            for (int y = area.y0 / (luma ? 1 : 2); y < area.y1 / (luma ? 1 : 2); ++y)
                for (int x = area.x0 / (luma ? 1 : 2); x < area.x1 / (luma ? 1 : 2); ++x) {
                    // Where the output sample lies on the canvas, and that place in the source's plane.
                    const double cx = luma ? x + 0.5 : 2 * x + 0.5;
                    const double cy = luma ? y + 0.5 : 2 * y + 1.0;
                    const double sx = c.across.a * cx + c.across.b;
                    const double sy = c.down.a * cy + c.down.b;
                    const double u = luma ? sx : (sx - 0.5) / 2 + 0.5;
                    const double v = luma ? sy : (sy - 1) / 2 + 0.5;
                    const double exact =
                        weighed(v, std::abs(c.down.a), source.planeHeight(plane), [&](int j) {
                            return weighed(u, std::abs(c.across.a), source.planeWidth(plane), [&](int i) {
                                return static_cast<double>(source.row(plane, j)[i]);
                            });
                        });
                    worst = std::max(worst, std::abs(out.row(plane, y)[x] - std::clamp(exact, 0.0, 255.0)));
                }
        }
        EXPECT_LE(worst, 0.75);
    }
}

TEST(Resampling, leavesAWholeNumberOfPixelsUntouched) {
    const Picture source = SamplePictures::screen(64, 48);
    const PixelRect area{0, 0, 40, 32};
    PictureScaler scaler;
    scaler.make({1, 8}, {1, 6}, 64, 48, area);
    Picture out(40, 32);
    PictureScaler::Scratch scratch;
    for (int plane = 0; plane < 3; ++plane) {
        scaler.scale(source.view(), plane, area, out, 0, 0, scratch);
        for (int y = 0; y < out.planeHeight(plane); ++y)
            for (int x = 0; x < out.planeWidth(plane); ++x)
                ASSERT_EQ(out.row(plane, y)[x], source.row(plane, y + (plane ? 3 : 6))[x + (plane ? 4 : 8)]);
    }
}

TEST(Resampling, keepsFlatAreasFlat) {
    for (const double a : {0.13, 0.77, 1.0, 1.0009, 1.0011, 1.639, 7.7, 900.0}) {
        const Picture source = SamplePictures::plain(301, 203, {0.31, 0.62, 0.47});
        const PixelRect area{0, 0, 64, 48};
        PictureScaler scaler;
        scaler.make({a, 0.3}, {a, 0.7}, 301, 203, area);
        Picture out(64, 48);
        PictureScaler::Scratch scratch;
        for (int plane = 0; plane < 3; ++plane) {
            scaler.scale(source.view(), plane, area, out, 0, 0, scratch);
            for (int y = 0; y < out.planeHeight(plane); ++y)
                for (int x = 0; x < out.planeWidth(plane); ++x)
                    ASSERT_EQ(out.row(plane, y)[x], source.row(plane, 0)[0]) << a;
        }
    }
}

TEST(Resampling, blursLikeAGaussian) {
    // A step blurred by a Gaussian is the error function; the reduced copy of wide blurs must not show.
    for (const double sigma : {0.8, 3.0, 5.9, 6.1, 20.0, 42.24, 60.0}) {
        const int size = 600;
        FloatPlane plane(size, 8);
        for (int y = 0; y < 8; ++y)
            std::fill(plane.row(y) + size / 2, plane.row(y) + size, 1.0F);
        plane.blur(sigma);
        double worst = 0;
        for (int x = 0; x < size; ++x) {
            const double exact = 0.5 * (1 + std::erf((x + 0.5 - size / 2.0) / (sigma * std::sqrt(2.0))));
            worst = std::max(worst, std::abs(plane.row(4)[x] - exact));
        }
        EXPECT_LT(worst, 0.004) << sigma; // one step of 255
    }
}

} // namespace
