#include "RecordCore/Rendering/Placement.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace RecordCore;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double huge = 1e300;

void expectRect(const CanvasRect& actual, double x, double y, double width, double height) {
    EXPECT_NEAR(actual.x, x, 1e-9);
    EXPECT_NEAR(actual.y, y, 1e-9);
    EXPECT_NEAR(actual.width, width, 1e-9);
    EXPECT_NEAR(actual.height, height, 1e-9);
}

TEST(Placement, placesTheWindow) {
    struct Case {
        OutputFormat format;
        double scale;
        int width, height;
        CanvasRect window;
        double radius;
    };
    // Padding 0.011 and a 16:9 source: 2 × 0.011 × 1920 = 42.24 are kept free.
    const double w = 16.0 / 9 * (1080 - 42.24);
    const Case cases[] = {
        {OutputFormat::wide, 1, 1920, 1080, {(1920 - w) / 2, 21.12, w, 1037.76}, 0.0124 * 1920},
        {OutputFormat::wide, 2, 3840, 2160, {1920 - w, 42.24, 2 * w, 2075.52}, 0.0248 * 1920},
        {OutputFormat::portrait, 1, 1080, 1350, {8.91, 150, 1062.18, 1160}, 0.0124 * 1080},
        {OutputFormat::tall, 1, 1080, 1920, {8.91, 300, 1062.18, 1380}, 0.0124 * 1080},
        {OutputFormat::square, 2, 2160, 2160, {17.82, 220, 2124.36, 1880}, 0.0248 * 1080},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(rawValue(c.format)));
        const Placement place = Placement::make(c.format, 16.0 / 9, 0.011, 0.0124, true, c.scale);
        EXPECT_EQ(place.width, c.width);
        EXPECT_EQ(place.height, c.height);
        expectRect(place.window.rect, c.window.x, c.window.y, c.window.width, c.window.height);
        EXPECT_NEAR(place.window.radius, c.radius, 1e-9);
        EXPECT_EQ(place.band, headerHeight(c.format) * c.scale);
    }
    const Placement odd = Placement::make(OutputFormat::wide, 1.5, 0.02, 0, false, 0.333);
    EXPECT_EQ(odd.width % 2, 0);
    EXPECT_EQ(odd.height % 2, 0);
}

TEST(Placement, placesTheBubble) {
    const Placement wide = Placement::make(OutputFormat::wide, 16.0 / 9, 0, 0, true, 1);
    const Placement tall = Placement::make(OutputFormat::tall, 16.0 / 9, 0, 0, true, 1);
    struct Case {
        const char* corner;
        double x, y;         // on the wide canvas: side 259, margin 37.8
        double tallX, tallY; // on the tall one, with a band of 300
    };
    const Case cases[] = {
        {"br", 1920 - 259 - 37.8, 1080 - 259 - 37.8, 1080 - 259 - 37.8, 1920 - 259 - 37.8},
        {"", 1920 - 259 - 37.8, 1080 - 259 - 37.8, 1080 - 259 - 37.8, 1920 - 259 - 37.8},
        {"tl", 37.8, 37.8, 37.8, 337.8},
        {"tc", 830.5, 37.8, 410.5, 337.8},
        {"mr", 1920 - 259 - 37.8, 410.5, 1080 - 259 - 37.8, 830.5},
        {"xy", 1920 - 259 - 37.8, 1080 - 259 - 37.8, 1080 - 259 - 37.8, 1920 - 259 - 37.8},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.corner);
        CameraStyle style;
        style.corner = c.corner;
        expectRect(wide.bubble(style)->rect, c.x, c.y, 259, 259);
        expectRect(tall.bubble(style)->rect, c.tallX, c.tallY, 259, 259);
    }
    CameraStyle style;
    EXPECT_NEAR(wide.bubble(style)->radius, 129.5, 1e-9);
    style.shape = "square";
    EXPECT_NEAR(wide.bubble(style)->radius, 0.07 * 259, 1e-9);
    style.shape = "rounded";
    EXPECT_NEAR(wide.bubble(style)->radius, 0.22 * 259, 1e-9);
    for (const double size : {0.0, -5.0, 0.0001}) {
        style.size = size;
        EXPECT_FALSE(wide.bubble(style)) << size;
    }
    for (const double size : {5.0, huge, nan}) {
        style.size = size;
        EXPECT_LE(wide.bubble(style)->rect.width, 1080) << size;
    }
}

TEST(Placement, mapsPointsAndSizes) {
    const Placement place = Placement::make(OutputFormat::wide, 16.0 / 9, 0, 0, false, 1);
    const NRect view{0.25, 0.5, 0.5, 0.5};
    const CanvasPoint corner = place.point(0.25, 0.5, view);
    const CanvasPoint middle = place.point(0.5, 0.75, view);
    EXPECT_EQ(corner, (CanvasPoint{0, 0}));
    EXPECT_EQ(middle, (CanvasPoint{960, 540}));
    EXPECT_NEAR(place.pointerSize(1.6, 0.5), 1080 * 1.6 * 0.026 / 0.5, 1e-9);
    EXPECT_NEAR(Placement::rippleFactor("ripple", 0.5), 1.4, 1e-12);
    EXPECT_NEAR(Placement::rippleFactor("ring", 0.5), 1.25, 1e-12);
    EXPECT_EQ(Placement::rippleFactor("spotlight", 0.5), 2.6);
}

TEST(Placement, mapsTheSource) {
    // The whole source fills the window exactly; a crop is applied to the view.
    const SourceMapping all = SourceMapping::make(NRect::full(), {}, 3024, 1964, 1844.9);
    EXPECT_EQ(all, (SourceMapping{0, 1964, 3024}));
    const SourceMapping part =
        SourceMapping::make({0.5, 0.25, 0.25, 0.5}, NRect{0.1, 0.2, 0.5, 0.5}, 2000, 1000, 1000);
    EXPECT_NEAR(part.left, (0.5 * 0.5 + 0.1) * 2000, 0.005);
    EXPECT_NEAR(part.width, 0.25 * 0.5 * 2000, 0.005);
    EXPECT_NEAR(part.bottom, (0.75 * 0.5 + 0.2) * 1000, 0.005);

    // A move of far less than 1/64 of a canvas pixel is none; one of 1/16 is one.
    const double window = 1844.9;
    const auto at = [&](double shift) {
        return SourceMapping::make({0.2 + shift / window * 0.4, 0.2, 0.4, 0.4}, {}, 1920, 1080, window);
    };
    EXPECT_EQ(at(0), at(1e-6));
    EXPECT_FALSE(at(0) == at(1.0 / 16));
}

TEST(Placement, survivesAbsurdNumbers) {
    for (const double value : {nan, huge, -huge, -5.0, 0.0}) {
        SCOPED_TRACE(value);
        const Placement place = Placement::make(OutputFormat::wide, value, value, value, true, value);
        EXPECT_GE(place.width, 2);
        EXPECT_LE(place.width, 7680);
        EXPECT_TRUE(std::isfinite(place.window.rect.x + place.window.rect.width + place.window.radius));
        EXPECT_LE(place.window.radius, place.window.rect.height / 2 + 1e-9);
        EXPECT_TRUE(std::isfinite(place.pointerSize(value, value)));
        const SourceMapping mapping = SourceMapping::make(
            {value, value, value, value}, NRect{value, 0, 1, value}, 1920, 1080, place.window.rect.width);
        EXPECT_TRUE(std::isfinite(mapping.left + mapping.bottom + mapping.width));
        EXPECT_GT(mapping.width, 0);
    }
}

TEST(RoundedRect, coversExactly) {
    const RoundedRect rect = RoundedRect::make({2.25, 3.5, 10, 8}, 0);
    EXPECT_DOUBLE_EQ(rect.coverage(2, 5), 0.75);
    EXPECT_DOUBLE_EQ(rect.coverage(2, 3), 0.375);
    EXPECT_DOUBLE_EQ(rect.coverage(12, 11), 0.25 * 0.5);
    EXPECT_DOUBLE_EQ(rect.coverage(5, 5), 1);
    EXPECT_DOUBLE_EQ(rect.coverage(1, 5), 0);
    // The area of the mask is the area of the shape.
    const RoundedRect round = RoundedRect::make({5.3, 4.7, 61.5, 43.2}, 12.4);
    const FloatPlane mask = round.mask(0, 0, 80, 60);
    double area = 0;
    for (const float sample : mask.samples)
        area += sample;
    EXPECT_NEAR(area, 61.5 * 43.2 - (4 - 3.14159265358979) * 12.4 * 12.4, 0.5);
}

} // namespace
