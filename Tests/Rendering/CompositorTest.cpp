#include "RecordCore/Rendering/Compositor.h"

#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/Fonts.h"
#include "RecordCore/Rendering/Glyphs.h"
#include "RecordCore/Rendering/PngFile.h"
#include "Tests/Rendering/SamplePictures.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <thread>

using namespace RecordCore;

namespace {

class CompositorTest : public ::testing::Test {
protected:
    void SetUp() override { Fonts::useOnlyCarriedFonts(true); }
    void TearDown() override { Fonts::useOnlyCarriedFonts(false); }
};

void expectColor(const RgbImage& image, int x, int y, const Rgb& expected, double tolerance = 2.5) {
    EXPECT_NEAR(image.at(x, y)[0], expected.r * 255, tolerance) << x << ' ' << y;
    EXPECT_NEAR(image.at(x, y)[1], expected.g * 255, tolerance) << x << ' ' << y;
    EXPECT_NEAR(image.at(x, y)[2], expected.b * 255, tolerance) << x << ' ' << y;
}

TEST_F(CompositorTest, drawsTheGradientAndItsGlow) {
    for (const OutputFormat format : allOutputFormats)
        for (const char* name : {"night", "snow"}) {
            SCOPED_TRACE(std::string(rawValue(format)) + name);
            CompositorSettings settings;
            settings.format = format;
            settings.look.padding = 0.1;
            settings.look.backdrop = *Backdrop::preset(name);
            settings.scale = 0.5;
            const Compositor compositor(settings);
            EXPECT_EQ(compositor.brightBackdrop(), settings.look.backdrop.light);
            const RgbImage image = RgbImage::of(compositor.backdrop().view());
            const double w = compositor.width();
            const double h = compositor.height();
            const CanvasRect window = compositor.placement().window.rect;
            const Backdrop& b = settings.look.backdrop;
            for (const auto& [px, py] :
                 {std::pair{0.001, 0.001}, {0.01, 0.97}, {0.98, 0.02}, {0.5, 0.995}, {0.99, 0.99}}) {
                const int x = static_cast<int>(px * w);
                const int y = static_cast<int>(py * h);
                // In the coordinates of the description: origin below, y up.
                const double up = h - (y + 0.5);
                const double ax = 0.3 * w;
                const double t = std::clamp(((x + 0.5) * ax + (h - up) * h) / (ax * ax + h * h), 0.0, 1.0);
                const double gx = x + 0.5 - (window.x + window.width / 2);
                const double gy = up - (h - window.y - window.height / 2 + 0.1 * window.height);
                const double reach = 0.75 * std::max(window.width, window.height);
                const double a = (b.light ? 0.5 : 0.22) * std::max(0.0, 1 - std::hypot(gx, gy) / reach);
                const auto mix = [&](double top, double bottom, double glow) {
                    const double base = top + (bottom - top) * t;
                    return base * (1 - a) + glow * a;
                };
                expectColor(image, x, y,
                            {mix(b.top.r, b.bottom.r, b.glow.r), mix(b.top.g, b.bottom.g, b.glow.g),
                             mix(b.top.b, b.bottom.b, b.glow.b)});
            }
        }
}

TEST_F(CompositorTest, castsTheShadowDownwards) {
    CompositorSettings settings;
    settings.look.padding = 0.1;
    settings.look.solid = Rgb{0.5, 0.5, 0.5};
    settings.scale = 0.5;
    const Compositor without(settings);
    settings.look.shadow = 0.01; // not more than the least
    EXPECT_TRUE(Compositor(settings).backdrop() == without.backdrop());
    settings.look.shadow = 0.8;
    const Compositor with(settings);
    const CanvasRect window = with.placement().window.rect;
    const double sigma = 0.022 * with.width();
    const double drop = 0.018 * with.height();
    const auto shade = [&](const CanvasRect& rect, double x, double y) {
        const auto side = [&](double low, double high, double at) {
            const double s = sigma * std::sqrt(2.0);
            return 0.5 * (std::erf((high - at) / s) - std::erf((low - at) / s));
        };
        return side(rect.x, rect.maxX(), x) * side(rect.y + drop, rect.maxY() + drop, y);
    };
    const RgbImage image = RgbImage::of(with.backdrop().view());
    for (const double distance : {4.0, 12.0, 30.0, 45.0})
        for (const int direction : {-1, 1}) {
            const int x = with.width() / 2;
            const int y = static_cast<int>(direction > 0 ? window.maxY() + distance : window.y - distance);
            const double grey = 0.5 * (1 - 0.8 * shade(window, x + 0.5, y + 0.5));
            expectColor(image, x, y, {grey, grey, grey}, 1.6);
        }
    // On a light backdrop it is weaker, and a strength above 1 counts as 1.
    settings.look.solid = Rgb{1, 1, 1};
    settings.look.shadow = 50;
    const Compositor light(settings);
    EXPECT_TRUE(light.brightBackdrop());
    const int x = light.width() / 2;
    const int y = static_cast<int>(window.maxY() + 6);
    const double grey = 1 - shade(window, x + 0.5, y + 0.5);
    expectColor(RgbImage::of(light.backdrop().view()), x, y, {grey, grey, grey}, 1.6);
}

TEST_F(CompositorTest, drawsTheRing) {
    CompositorSettings settings;
    settings.look.padding = 0.1;
    settings.sourceAspect = 1.5;
    settings.scale = 2;
    for (const double grey : {0.0, 0.5, 1.0}) {
        settings.look.solid = Rgb{grey, grey, grey};
        const Compositor compositor(settings);
        const RgbImage image = RgbImage::of(compositor.backdrop().view());
        const CanvasRect window = compositor.placement().window.rect;
        const double edge = compositor.brightBackdrop() ? grey * (1 - 0.12) : grey + (1 - grey) * 0.14;
        const int y = compositor.height() / 2;
        expectColor(image, static_cast<int>(window.x - 1.5), y, {edge, edge, edge});
        expectColor(image, static_cast<int>(window.x - 5.5), y, {grey, grey, grey});
        EXPECT_EQ(compositor.brightBackdrop(), grey > 0.6);
    }
}

TEST_F(CompositorTest, takesTheFirstBackdropThatApplies) {
    const TemporaryFolder folder;
    RgbImage light = RgbImage::of(SamplePictures::plain(400, 100, {0.8, 0.9, 0.7}).view());
    // The outer quarters are dark: cover cuts them off.
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 400; ++x)
            if (x < 100 || x >= 300)
                std::fill_n(light.pixels.begin() + (y * 400 + x) * 3, 3, std::uint8_t{0});
    writePng(folder / "light.png", light);
    std::ofstream(folder / "broken.png") << "no";

    CompositorSettings settings;
    settings.scale = 0.25;
    settings.look.padding = 0.1;
    settings.look.wallpaper = folder / "light.png";
    settings.look.solid = Rgb{0.1, 0.2, 0.3};
    settings.look.wallpaperPreset = "no such wallpaper";
    const Compositor first(settings);
    EXPECT_TRUE(first.brightBackdrop());
    const RgbImage image = RgbImage::of(first.backdrop().view());
    expectColor(image, 10, 10, {0.8, 0.9, 0.7});
    expectColor(image, 470, 260, {0.8, 0.9, 0.7});

    for (const char* name : {"broken.png", "missing.png"}) {
        settings.look.wallpaper = folder / name;
        const Compositor second(settings);
        EXPECT_FALSE(second.brightBackdrop());
        expectColor(RgbImage::of(second.backdrop().view()), 10, 10, {0.1, 0.2, 0.3});
    }
    settings.look.solid.reset();
    settings.look.backdrop = *Backdrop::preset("paper");
    const Compositor third(settings);
    EXPECT_TRUE(third.brightBackdrop());
    settings.look.wallpaper.reset();
    EXPECT_TRUE(Compositor(settings).backdrop() == third.backdrop());
}

TEST_F(CompositorTest, canBeGivenUpWhileItIsMade) {
    CompositorSettings settings;
    settings.look.blur = 20;
    settings.look.shadow = 0.5;
    for (const bool wallpaper : {false, true}) {
        if (wallpaper) settings.look.wallpaperPreset = "orbit";
        int checks = 0;
        const Compositor whole(settings, [&] { ++checks; });
        EXPECT_GE(checks, wallpaper ? 15 : 7) << "it takes a tenth of a second";
        EXPECT_TRUE(whole.backdrop() == Compositor(settings).backdrop());
        for (int last = 1; last <= checks; ++last) {
            int done = 0;
            const auto giveUp = [&] {
                if (++done == last) throw std::runtime_error("given up");
            };
            EXPECT_THROW(Compositor(settings, giveUp), std::runtime_error);
            EXPECT_EQ(done, last) << "nothing is done after that";
        }
    }
}

TEST_F(CompositorTest, writesTheHeaderInAnInkThatShows) {
    for (const OutputFormat format : allOutputFormats)
        for (const double grey : {0.1, 0.9}) {
            SCOPED_TRACE(std::string(rawValue(format)) + (grey > 0.5 ? " light" : " dark"));
            CompositorSettings settings;
            settings.format = format;
            settings.scale = 0.5;
            settings.look.solid = Rgb{grey, grey, grey};
            const Compositor plain(settings);
            settings.cards = {"A title that is long enough to need more than a single line of the band",
                              "Subtitle", "", "", true};
            const Compositor titled(settings);
            const Picture& a = plain.backdrop();
            const Picture& b = titled.backdrop();
            if (format == OutputFormat::wide) {
                EXPECT_TRUE(a == b);
                continue;
            }
            int extreme = grey > 0.5 ? 255 : 0;
            int lowest = 0;
            double mean = 0;
            int count = 0;
            for (int y = 0; y < a.height(); ++y)
                for (int x = 0; x < a.width(); ++x)
                    if (a.row(0, y)[x] != b.row(0, y)[x]) {
                        lowest = y;
                        mean += x + 0.5;
                        ++count;
                        extreme = grey > 0.5 ? std::min<int>(extreme, b.row(0, y)[x])
                                             : std::max<int>(extreme, b.row(0, y)[x]);
                    }
            ASSERT_GT(count, 100);
            EXPECT_LT(lowest, titled.placement().band) << "the text leaves its band";
            EXPECT_NEAR(mean / count, a.width() / 2.0, a.width() * 0.04);
            EXPECT_NEAR(extreme, grey > 0.5 ? 16 + 219 * 0.07 : 235, 3);
        }
}

TEST_F(CompositorTest, placesTexts) {
    for (const double scale : {1.0, 2.0}) {
        CompositorSettings settings;
        settings.scale = scale;
        settings.look.padding = 0.05;
        settings.captions = CaptionLook{{{"words", "here"}}, "boxed", 0.05, 0.1};
        settings.watermark = true;
        const Compositor compositor(settings);
        const CanvasRect window = compositor.placement().window.rect;
        // Overlays carry up to two transparent pixels on the right and below.
        const auto pill = compositor.pill(4, "fast-forward");
        EXPECT_NEAR(pill->rect().x1, window.maxX() - 22 * scale, 2.6);
        EXPECT_NEAR(pill->rect().y0, window.y + 22 * scale, 1.5);
        const auto clock = compositor.clock("12:34");
        EXPECT_NEAR(clock->rect().x0, window.x + 22 * scale, 1.5);
        EXPECT_NEAR(clock->rect().y1, window.maxY() - 22 * scale, 1.6);
        const auto caption = compositor.caption(0, -1);
        EXPECT_NEAR((caption->rect().x0 + caption->rect().x1) / 2.0, compositor.width() / 2.0, 2.1);
        EXPECT_NEAR(caption->rect().y1, compositor.height() * 0.9, 1.6);
        EXPECT_NEAR(compositor.watermark().rect().x1, compositor.width() - 24 * scale, 2.6);
        EXPECT_NEAR(compositor.watermark().rect().y1, compositor.height() - 24 * scale, 1.6);
    }
}

TEST_F(CompositorTest, keepsTextsUntilThereAreTooMany) {
    CompositorSettings settings;
    settings.scale = 0.1;
    settings.captions = CaptionLook{{{"a", "b"}, {"c"}}, "clean", 0.05, 0.1};
    const Compositor compositor(settings);
    const auto first = compositor.clock("0");
    EXPECT_EQ(compositor.clock("0"), first);
    for (int i = 1; i <= 4000; ++i)
        compositor.clock(std::to_string(i));
    EXPECT_EQ(compositor.cachedTexts(), 4001U);
    EXPECT_EQ(compositor.clock("0"), first);
    compositor.pill(2, "x");
    EXPECT_EQ(compositor.cachedTexts(), 1U);
    // Only the highlighting style tells words apart.
    EXPECT_EQ(compositor.caption(0, 0), compositor.caption(0, 1));
    settings.captions->style = "highlight";
    const Compositor highlighting(settings);
    EXPECT_NE(highlighting.caption(0, 0), highlighting.caption(0, 1));
    EXPECT_EQ(highlighting.caption(2, 0), nullptr);
}

TEST_F(CompositorTest, drawsTextsFromSeveralThreads) {
    CompositorSettings settings;
    settings.captions = CaptionLook{};
    for (int i = 0; i < 20; ++i)
        settings.captions->lines.push_back({"line", std::to_string(i), "of many"});
    settings.captions->style = "highlight";
    const Compositor compositor(settings);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 20; ++i) {
                EXPECT_FALSE(compositor.caption((i + 5 * t) % 20, i % 3)->empty());
                EXPECT_FALSE(compositor.clock(std::to_string(i))->empty());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(CompositorTest, laysOutCaptions) {
    const std::vector<std::string> words{"Hello", "wide", "world"};
    for (const char* style : {"highlight", "clean", "boxed", "bold"}) {
        SCOPED_TRACE(style);
        const double size = 50;
        const Bitmap image = Glyphs::captionLine(words, 1, style, size, 2000);
        // One line of this typeface is 1.26 of its size high; 0.3 of the size stand above and below.
        EXPECT_NEAR(image.height, 0.6 * size + 1.26 * size, 2);
        int lit = 0;
        int firstColumn = image.width;
        int lastColumn = 0;
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x) {
                const std::uint8_t* p = image.at(x, y);
                if (p[3] == 255 && p[2] == 255 && p[1] == 209 && p[0] == 102) ++lit;
                if (p[2] > 200) {
                    firstColumn = std::min(firstColumn, x);
                    lastColumn = std::max(lastColumn, x);
                }
            }
        EXPECT_GT(lit, 200); // the builder itself lights whatever word it is told to
        const double padding = size * (std::string(style) == "boxed" ? 0.55 : 0.35);
        EXPECT_NEAR(firstColumn, padding, 0.12 * size);
        EXPECT_NEAR(image.width - lastColumn, padding, 0.12 * size);
        if (std::string(style) == "boxed")
            EXPECT_NEAR(image.at(image.width / 2, 3)[3], 0.78 * 255, 1);
        else
            EXPECT_LT(image.at(image.width / 2, 0)[3], 80);
    }
    const Bitmap narrow = Glyphs::captionLine(words, -1, "bold", 50, 240);
    EXPECT_LE(narrow.width, 240);
    EXPECT_GT(narrow.height, 150);
}

TEST_F(CompositorTest, drawsGlyphsOnTheirSheets) {
    EXPECT_EQ(Glyphs::pointer("arrow").width, 110);
    EXPECT_EQ(Glyphs::pointer("arrow").height, 150);
    EXPECT_EQ(Glyphs::pointer("dot").height, 150);
    for (const char* style : {"arrow", "light", "outline"}) {
        const Bitmap image = Glyphs::pointer(style, 2);
        // The tip is at (14, 10); left of and above it is at most shadow.
        EXPECT_GT(image.at(2 * 17, 2 * 16)[3], 200) << style;
        for (int y = 0; y < image.height; ++y)
            EXPECT_LT(image.at(2 * 8, y)[3], 60) << style;
    }
    // Inside: dark, light, nothing.
    EXPECT_EQ(Glyphs::pointer("arrow").at(32, 60)[1], 15);
    EXPECT_EQ(Glyphs::pointer("light").at(32, 60)[1], 255);
    EXPECT_EQ(Glyphs::pointer("outline").at(32, 60)[3], 0);

    // Thin: a filled circle with a line; thick: a line alone.
    const Bitmap thin = Glyphs::ripple(false);
    const Bitmap thick = Glyphs::ripple(true);
    EXPECT_NEAR(thin.at(100, 100)[3], 0.22 * 255, 1);
    EXPECT_EQ(thick.at(100, 100)[3], 0);
    EXPECT_GT(thin.at(100, 14)[3], 240);
    EXPECT_GT(thick.at(100, 18)[3], 240);
    EXPECT_EQ(thin.at(100, 7)[3], 0);
    EXPECT_EQ(Glyphs::spotlight().at(0, 0)[3], 0);
    EXPECT_GT(Glyphs::spotlight().at(100, 100)[3], 50);
}

} // namespace
