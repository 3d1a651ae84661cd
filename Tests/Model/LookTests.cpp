#include "RecordCore/Model/Look.h"

#include "RecordCore/Model/OutputFormat.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/Styles.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace RecordCore;

namespace {

TEST(OutputFormat, TableOfTheFour) {
    const struct {
        const char* raw;
        const char* label;
        Size canvas;
        double header;
    } cases[]{{"16:9", "YouTube", {1920, 1080}, 0},
              {"4:5", "X", {1080, 1350}, 150},
              {"9:16", "Shorts", {1080, 1920}, 300},
              {"1:1", "Square", {1080, 1080}, 110}};
    std::size_t i = 0;
    for (const auto& c : cases) {
        const auto format = outputFormat(c.raw);
        ASSERT_TRUE(format);
        EXPECT_EQ(*format, allOutputFormats.at(i++));
        EXPECT_EQ(label(*format), c.label);
        EXPECT_EQ(canvas(*format), c.canvas);
        EXPECT_EQ(headerHeight(*format), c.header);
    }
    EXPECT_FALSE(outputFormat("21:9"));
    EXPECT_FALSE(outputFormat(""));
}

TEST(OutputFormat, Window) {
    const struct {
        const char* format;
        double aspect, padding;
        CanvasRect window;
    } cases[]{
        {"16:9", 16.0 / 9, 0, {0, 0, 1920, 1080}},
        {"16:9", 1, 0, {420, 0, 1080, 1080}},
        {"16:9", 4, 0, {0, 300, 1920, 480}},
        // The margin of 0.05 is 192 pixels of width and of height in all: 888 high, and 1578.7 of 1728 wide.
        {"16:9", 16.0 / 9, 0.05, {(1920 - 888 * 16 / 9.0) / 2, 96, 888 * 16 / 9.0, 888}},
        {"16:9", 4, 0.05, {96, 324, 1728, 432}},
        {"4:5", 1.5, 0.011, {8.91, 150, 1062.18, 1160}},
        {"4:5", 0.2, 0.05, {40.5, 150, 999, 1119}}, // 2 × 40.5 is more than 40
        {"9:16", 1.5, 0.011, {8.91, 300, 1062.18, 1380}},
        {"9:16", 1.5, 0.2, {162, 300, 756, 1380}},
        {"1:1", 1.5, 0.011, {8.91, 110, 1062.18, 940}},
        {"1:1", 1.5, 0.05, {40.5, 110, 999, 889}},
    };
    for (const auto& [raw, aspect, padding, expected] : cases) {
        const CanvasRect found = window(*outputFormat(raw), aspect, padding);
        EXPECT_NEAR(found.x, expected.x, 1e-9) << raw << ' ' << aspect << ' ' << padding;
        EXPECT_NEAR(found.y, expected.y, 1e-9) << raw << ' ' << aspect << ' ' << padding;
        EXPECT_NEAR(found.width, expected.width, 1e-9) << raw << ' ' << aspect << ' ' << padding;
        EXPECT_NEAR(found.height, expected.height, 1e-9) << raw << ' ' << aspect << ' ' << padding;
    }
}

TEST(OutputFormat, WindowStaysOnTheCanvasWhateverTheNumbers) {
    const double wild[]{0, -1, -1e300, 0.49, 0.5, 1, 1e300, 1e-300, INFINITY, -INFINITY, NAN};
    for (const OutputFormat format : allOutputFormats) {
        const Size size = canvas(format);
        for (const double aspect : wild) {
            for (const double padding : wild) {
                const CanvasRect w = window(format, aspect, padding);
                EXPECT_TRUE(w.width >= 1 && w.height >= 1 && w.x >= 0 && w.y >= 0 &&
                            w.maxX() <= size.width + 1e-9 && w.maxY() <= size.height + 1e-9)
                    << rawValue(format) << ' ' << aspect << ' ' << padding << ": " << w.x << ' ' << w.y << ' '
                    << w.width << ' ' << w.height;
            }
        }
    }
}

TEST(Look, ColourTexts) {
    const struct {
        const char* text;
        std::optional<Rgb> colour;
    } cases[]{
        {"#ff8000", Rgb{1, 128 / 255.0, 0}},
        {"FF8000", Rgb{1, 128 / 255.0, 0}},
        {"#f80", Rgb{1, 136 / 255.0, 0}},
        {"#000000", Rgb{0, 0, 0}},
        {"", {}},
        {"#", {}},
        {"f80", {}},
        {"#ff80000", {}},
        {"#ff80 0", {}},
        {"#gg0000", {}},
        {"##ff800", {}},
        {"#+f-f 1", {}},
        {"0xff80", {}},
        {"red", {}},
        {"#ff8000 ", {}},
    };
    for (const auto& [text, colour] : cases)
        EXPECT_EQ(Look::rgb(text), colour) << '"' << text << '"';
}

TEST(Look, LightOrDark) {
    Look look;
    EXPECT_FALSE(look.isLight());
    for (const std::string_view name : Backdrop::names()) {
        look.backdrop = *Backdrop::preset(name);
        EXPECT_EQ(look.isLight(), name == "paper" || name == "snow") << name;
    }
    look.wallpaper = "x.png";
    EXPECT_FALSE(look.isLight()) << "a wallpaper hides the light backdrop";
    const struct {
        Rgb colour;
        bool light;
    } solids[]{{{1, 1, 1}, true},
               {{0, 0, 0}, false},
               {{0, 1, 0}, false},
               {{0, 1, 0.125}, true},
               {{1, 0.5, 0}, false}};
    for (const auto& [colour, light] : solids) {
        look.solid = colour;
        EXPECT_EQ(look.isLight(), light) << colour.r << ' ' << colour.g << ' ' << colour.b;
    }
}

TEST(Look, OfAProject) {
    Project p;
    Look look = Look::of(p);
    EXPECT_EQ(look.backdrop, Backdrop::standard());
    EXPECT_EQ(look.wallpaperPreset, "orbit");
    EXPECT_FALSE(look.wallpaper);
    EXPECT_FALSE(look.solid);
    EXPECT_DOUBLE_EQ(look.radius, 0.0124);
    EXPECT_DOUBLE_EQ(look.blur, 4.8);

    p.backdrop = "no such backdrop";
    p.wallpaperPreset = "";
    p.wallpaper = "hills.png";
    p.solidColor = "not a colour";
    look = Look::of(p, "/a/recording");
    EXPECT_EQ(look.backdrop, *Backdrop::preset("night"));
    EXPECT_FALSE(look.wallpaperPreset);
    EXPECT_EQ(look.wallpaper, "/a/recording/hills.png");
    EXPECT_FALSE(look.solid);
    p.wallpaper = "/b/hills.png";
    EXPECT_EQ(Look::of(p, "/a/recording").wallpaper, "/b/hills.png");
    EXPECT_FALSE(Backdrop::preset("Night"));
}

TEST(Styles, OfAProject) {
    Project p;
    p.cameraShape = "rounded";
    p.cameraCorner = "tl";
    p.cameraSize = 0.3;
    p.cameraMirror = false;
    p.cameraBorder = true;
    EXPECT_EQ(CameraStyle::of(p), (CameraStyle{"rounded", 0.3, "tl", false, true}));
    p.cameraShow = false;
    EXPECT_FALSE(CameraStyle::of(p));

    p.cursorStyle = "dot";
    p.clickEffect = "ring";
    EXPECT_EQ(PointerStyle::of(p), (PointerStyle{"dot", "ring"}));

    p.title = "T";
    p.endSubtitle = "e";
    EXPECT_EQ(Cards::of(p), (Cards{"T", "", "Made with Dallowby", "e", false}));
    p.showTitle = true;
    EXPECT_TRUE(Cards::of(p).header);
    p.title = "";
    EXPECT_FALSE(Cards::of(p).header);
}

} // namespace
