#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Preview/Preview.h"
#include "RecordCore/Preview/PreviewRenderer.h"
#include "RecordCore/Rendering/RgbImage.h"
#include "Tests/Rendering/SamplePictures.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace RecordCore;

namespace {

/// A recording of which the picture below is every frame, with a moving pointer and a zoom.
struct Film {
    Film(double scale, OutputFormat format = OutputFormat::wide) {
        project.format = std::string(rawValue(format));
        plan.source = {320, 200, 4, 30, false};
        plan.segments = {{0, 4, 1, SpeedSegment::Reason::normal}};
        plan.shots = {{0, NRect::full()}, {1, NRect{0.2, 0.2, 0.5, 0.5}}};
        log.cursorInVideo = false;
        for (int i = 0; i <= 40; ++i)
            log.cursor.push_back({i * 0.1, 0.1 + 0.02 * i, 0.5});
        renderer.update(std::make_shared<const Scene>(plan, project, log, 60),
                        Preview::compositor(plan, project, plan.source, false, {}, scale));
    }
    Project project;
    Plan plan;
    InputLog log;
    PreviewRenderer renderer;
};

Picture pattern() {
    return SamplePictures::screen(320, 200);
}

} // namespace

TEST(PreviewRenderer, DrawsOnlyWhatChangedAndThatRight) {
    Film film(0.3);
    const Picture source = pattern();
    const auto width = film.renderer.compositor()->width();
    const auto height = film.renderer.compositor()->height();
    // Three images taken in an order that lets each miss some frames.
    std::vector<PreviewImage> images(3, PreviewImage(width, height));
    for (int i = 0; i < 90; ++i) {
        ASSERT_TRUE(film.renderer.compose(source.view(), nullptr, i / 30.0));
        PreviewImage& image = images[static_cast<std::size_t>(i * i % 3)];
        film.renderer.draw(image);
        PreviewImage whole(width, height);
        toBgra(film.renderer.picture()->view(), whole.pixels.data(), whole.stride(), 0, height);
        ASSERT_EQ(image.pixels, whole.pixels) << "frame " << i;
    }
}

TEST(PreviewRenderer, FitsTheCanvasIntoAnyImageWithBlackAround) {
    // Smooth, so that it may be compared at any size.
    Picture source(320, 200);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < source.planeHeight(plane); ++y)
            for (int x = 0; x < source.planeWidth(plane); ++x)
                source.row(plane, y)[x] = static_cast<std::uint8_t>(40 + x / 2 + y / 4);
    const struct {
        int width;
        int height;
        PixelRect area;
    } cases[] = {
        {576, 324, {0, 0, 576, 324}},    // as large as the canvas
        {700, 324, {62, 0, 638, 324}},   // wider
        {576, 500, {0, 88, 576, 412}},   // higher
        {300, 300, {0, 65, 300, 234}},   // smaller, scaled
        {1001, 700, {0, 68, 1001, 631}}, // larger, scaled
    };
    for (const auto& c : cases) {
        Film film(0.3);
        PreviewImage image(c.width, c.height);
        bool announced = false;
        film.renderer.onNextFrame([&] { announced = true; });
        ASSERT_TRUE(film.renderer.render(source.view(), nullptr, 0.5, image));
        EXPECT_TRUE(announced);
        const Picture& canvas = *film.renderer.picture();
        PreviewImage whole(canvas.width(), canvas.height());
        toBgra(canvas.view(), whole.pixels.data(), whole.stride(), 0, canvas.height());
        double error = 0;
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < c.width; ++x) {
                const std::uint8_t* pixel = image.pixels.data() + image.stride() * y + x * 4;
                ASSERT_EQ(pixel[3], 255);
                if (x < c.area.x0 || x >= c.area.x1 || y < c.area.y0 || y >= c.area.y1) {
                    ASSERT_EQ(pixel[0] + pixel[1] + pixel[2], 0) << x << "," << y;
                    continue;
                }
                const int u = (x - c.area.x0) * canvas.width() / (c.area.x1 - c.area.x0);
                const int v = (y - c.area.y0) * canvas.height() / (c.area.y1 - c.area.y0);
                error += std::abs(pixel[1] -
                                  whole.pixels[static_cast<std::size_t>(whole.stride() * v + u * 4 + 1)]);
            }
        error /= (c.area.x1 - c.area.x0) * (c.area.y1 - c.area.y0);
        EXPECT_LE(error, c.area.x1 - c.area.x0 == canvas.width() ? 0 : 3) << c.width << "x" << c.height;
    }
}

TEST(PreviewRenderer, SwapsSceneAndCompositorTogether) {
    PreviewRenderer renderer;
    const Picture source = pattern();
    PreviewImage image(64, 36);
    EXPECT_FALSE(renderer.render(source.view(), nullptr, 0, image)) << "nothing to draw by";
    const Film wide(0.1);
    const Film tall(0.1, OutputFormat::tall);
    for (const Film* film : {&wide, &tall, &wide}) {
        renderer.update(film->renderer.scene(), film->renderer.compositor());
        ASSERT_TRUE(renderer.render(source.view(), nullptr, 0, image));
        EXPECT_EQ(renderer.picture()->width(), film->renderer.compositor()->width());
    }
}

TEST(Preview, FittingScaleFillsTheRoomAndNoMore) {
    for (const OutputFormat format : allOutputFormats)
        for (int width = 40; width < 2000; width += 37)
            for (int height = 40; height < 1200; height += 53) {
                const double scale = Preview::fittingScale(format, width, height);
                const Placement place = Placement::make(format, 1.6, 0.05, 0.01, false, scale);
                ASSERT_LE(place.width, width);
                ASSERT_LE(place.height, height);
                ASSERT_TRUE(place.width >= width - 4 || place.height >= height - 4)
                    << width << "x" << height << ": " << place.width << "x" << place.height;
            }
    EXPECT_EQ(Preview::fittingScale(OutputFormat::wide, 0, 100), 0);
}
