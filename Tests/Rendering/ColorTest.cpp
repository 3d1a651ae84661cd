#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/Overlay.h"
#include "RecordCore/Rendering/RgbImage.h"
#include "RecordCore/Rendering/RgbPlanes.h"
#include "RecordCore/Rendering/WallpaperFile.h"
#include "Tests/Rendering/SamplePictures.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>

using namespace RecordCore;

namespace {

TEST(Color, knowsThePrimaries) {
    // The well-known 8-bit values of BT.709 bars at 100 %.
    struct Case {
        Rgb color;
        int y, cb, cr;
    };
    const Case cases[] = {{{1, 1, 1}, 235, 128, 128}, {{0, 0, 0}, 16, 128, 128}, {{1, 0, 0}, 63, 102, 240},
                          {{0, 1, 0}, 173, 42, 26},   {{0, 0, 1}, 32, 240, 118}, {{1, 1, 0}, 219, 16, 138},
                          {{0, 1, 1}, 188, 154, 16},  {{1, 0, 1}, 78, 214, 230}};
    for (const Case& c : cases) {
        const auto samples = Bt709::fromRgb(c.color);
        EXPECT_EQ(std::lround(samples.y), c.y);
        EXPECT_EQ(std::lround(samples.cb), c.cb);
        EXPECT_EQ(std::lround(samples.cr), c.cr);
        const Rgb back = Bt709::toRgb(samples.y, samples.cb, samples.cr);
        EXPECT_NEAR(back.r, c.color.r, 1e-9);
        EXPECT_NEAR(back.g, c.color.g, 1e-9);
        EXPECT_NEAR(back.b, c.color.b, 1e-9);
    }
}

TEST(Color, survivesThePicture) {
    SamplePictures::Random random(5);
    for (int i = 0; i < 200; ++i) {
        const Rgb color{random.below(256) / 255.0, random.below(256) / 255.0, random.below(256) / 255.0};
        const Picture picture = RgbPlanes(8, 8, color).picture();
        const RgbImage image = RgbImage::of(picture.view());
        std::vector<std::uint8_t> screen(8 * 8 * 4);
        toBgra(picture.view(), screen.data(), 32, 0, 8);
        const double expected[] = {color.r * 255, color.g * 255, color.b * 255};
        for (int component = 0; component < 3; ++component) {
            EXPECT_NEAR(image.at(3, 5)[component], expected[component], 2);
            EXPECT_NEAR(screen[(5 * 8 + 3) * 4 + static_cast<std::size_t>(2 - component)],
                        image.at(3, 5)[component], 1);
        }
    }
}

TEST(Color, interpolatesChromaAtItsSite) {
    // Chroma that rises evenly across and down is read back evenly: sample i stands at (2 i, 2 i + 0.5).
    Picture picture(64, 64);
    for (int y = 0; y < 64; ++y)
        std::fill_n(picture.row(0, y), 64, std::uint8_t{126});
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) {
            picture.row(1, y)[x] = static_cast<std::uint8_t>(96 + 2 * x);
            picture.row(2, y)[x] = static_cast<std::uint8_t>(96 + 2 * y);
        }
    const RgbImage image = RgbImage::of(picture.view());
    for (int y = 4; y < 60; ++y)
        for (int x = 4; x < 60; ++x) {
            const Rgb exact = Bt709::toRgb(126, 96 + x, 96 + (y - 0.5));
            EXPECT_NEAR(image.at(x, y)[0], exact.r * 255, 0.51);
            EXPECT_NEAR(image.at(x, y)[1], exact.g * 255, 0.51);
            EXPECT_NEAR(image.at(x, y)[2], exact.b * 255, 0.51);
        }
}

TEST(Color, laysDrawingsOverAtAnyPlace) {
    // A half transparent orange square over grey, at even and odd places, whole and faded.
    Bitmap square(9, 7);
    for (std::size_t i = 0; i < square.pixels.size(); i += 4) {
        square.pixels[i] = 16;     // blue  0.125 × 0.5
        square.pixels[i + 1] = 64; // green 0.5 × 0.5
        square.pixels[i + 2] = 128;
        square.pixels[i + 3] = 128;
    }
    for (const int x : {4, 5, -3, 26})
        for (const int fade : {255, 120}) {
            Picture picture = SamplePictures::plain(32, 32, {0.4, 0.4, 0.4});
            const Overlay overlay(square, x, 11);
            overlay.drawOn(picture, {0, 0, 32, 32}, fade);
            const RgbImage image = RgbImage::of(picture.view());
            const double a = 128 / 255.0 * fade / 255.0;
            const double f = fade / 255.0;
            const int inside = std::clamp(x + 4, 2, 29);
            EXPECT_NEAR(image.at(inside, 14)[0], 102 * (1 - a) + 128 * f, 3);
            EXPECT_NEAR(image.at(inside, 14)[1], 102 * (1 - a) + 64 * f, 3);
            EXPECT_NEAR(image.at(inside, 14)[2], 102 * (1 - a) + 16 * f, 3);
            EXPECT_EQ(image.at(inside, 4)[0], image.at(1, 1)[0]);
            // Luma has the drawing's exact edge.
            for (int column = 0; column < 32; ++column)
                EXPECT_EQ(picture.row(0, 14)[column] != picture.row(0, 2)[column],
                          column >= x && column < x + 9)
                    << column;
        }
}

TEST(Color, dithersGradientsWithoutBandsAndLeavesFlatAreasAlone) {
    RgbPlanes ramp(512, 64);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 512; ++x)
            ramp.red.row(y)[x] = ramp.green.row(y)[x] = ramp.blue.row(y)[x] =
                0.2F + 4.0F * static_cast<float>(x) / 512 / 219; // four steps of luma across
    const Picture picture = ramp.picture();
    EXPECT_TRUE(picture == ramp.picture());
    for (int x = 16; x < 496; x += 32) {
        double mean = 0;
        for (int y = 0; y < 64; ++y)
            for (int i = -16; i < 16; ++i)
                mean += picture.row(0, y)[x + i];
        mean /= 64 * 32;
        EXPECT_NEAR(mean, 16 + 219 * (0.2 + 4.0 * (x - 0.5) / 512 / 219), 0.08);
    }
    const Picture flat = RgbPlanes(64, 64, {0.237, 0.5, 0.111}).picture();
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ(flat.row(0, y)[x], flat.row(0, 0)[0]);
}

TEST(Stills, areWrittenWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const RgbImage image = RgbImage::of(SamplePictures::screen(37, 21).view());
    writePng(folder / "a.png", image);
    writePng(folder / "a.png", image); // over an old one
    const auto back = WallpaperFile::load(folder / "a.png", 37, 21);
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, image);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);

    std::filesystem::create_directory(folder / "b.png");
    for (const char* name : {"missing/c.png", "b.png"})
        try {
            writePng(folder / name, image);
            FAIL() << name;
        } catch (const RecordingError& error) {
            EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
        }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
    EXPECT_THROW(writePng(folder / "d.png", {}), RecordingError);
}

TEST(Wallpapers, areReadOnlyWhenTheyAreWhatTheySay) {
    const TemporaryFolder folder;
    std::ofstream(folder / "text.png") << "this is not a picture";
    writePng(folder / "whole.png", RgbImage::of(SamplePictures::screen(64, 48).view()));
    {
        const std::string bytes = readFile(folder / "whole.png");
        std::ofstream(folder / "cut.png", std::ios::binary) << bytes.substr(0, 60);
    }
    EXPECT_TRUE(WallpaperFile::load(folder / "whole.png", 10, 10));
    for (const char* name : {"text.png", "cut.png", "missing.png", ""})
        EXPECT_FALSE(WallpaperFile::load(folder / name, 10, 10)) << name;
    EXPECT_FALSE(WallpaperFile::load("/dev/zero", 10, 10));
}

} // namespace
