#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/Overlay.h"
#include "RecordCore/Rendering/PngFile.h"
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

// 24 × 16 pixels, blue on the left half and red on the right.
constexpr unsigned char jpegBytes[] = {
    0xff, 0xd8, 0xff, 0xe0, 0x00, 0x10, 0x4a, 0x46, 0x49, 0x46, 0x00, 0x01, 0x02, 0x00, 0x00, 0x01, 0x00,
    0x01, 0x00, 0x00, 0xff, 0xfe, 0x00, 0x10, 0x4c, 0x61, 0x76, 0x63, 0x35, 0x39, 0x2e, 0x33, 0x37, 0x2e,
    0x31, 0x30, 0x30, 0x00, 0xff, 0xdb, 0x00, 0x43, 0x00, 0x08, 0x06, 0x06, 0x07, 0x06, 0x07, 0x08, 0x08,
    0x08, 0x08, 0x08, 0x08, 0x09, 0x09, 0x09, 0x0a, 0x0a, 0x0a, 0x09, 0x09, 0x09, 0x09, 0x0a, 0x0a, 0x0a,
    0x0a, 0x0a, 0x0a, 0x0c, 0x0c, 0x0c, 0x0a, 0x0a, 0x0a, 0x0a, 0x0a, 0x0a, 0x0a, 0x0c, 0x0c, 0x0c, 0x0c,
    0x0d, 0x0e, 0x0d, 0x0d, 0x0d, 0x0c, 0x0d, 0x0e, 0x0e, 0x0f, 0x0f, 0x0f, 0x12, 0x12, 0x11, 0x11, 0x15,
    0x15, 0x15, 0x19, 0x19, 0x1f, 0xff, 0xc4, 0x00, 0x59, 0x00, 0x01, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x05, 0x00, 0x07, 0x01, 0x01, 0x01, 0x01, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x07, 0x05, 0x08, 0x10, 0x01,
    0x00, 0x03, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x05,
    0x43, 0xc2, 0x83, 0x11, 0x00, 0x01, 0x05, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x36, 0x84, 0xb4, 0x03, 0x05, 0x07, 0x06, 0xff, 0xc0, 0x00, 0x11, 0x08, 0x00,
    0x10, 0x00, 0x18, 0x03, 0x01, 0x22, 0x00, 0x02, 0x11, 0x00, 0x03, 0x11, 0x00, 0xff, 0xda, 0x00, 0x0c,
    0x03, 0x01, 0x00, 0x02, 0x11, 0x03, 0x11, 0x00, 0x3f, 0x00, 0xc7, 0x0c, 0x41, 0xdf, 0xcf, 0x61, 0xcc,
    0x41, 0xdf, 0xcf, 0x65, 0x5e, 0x90, 0x92, 0xd3, 0x6b, 0x36, 0x82, 0x8f, 0x80, 0x53, 0xe7, 0xb9, 0x89,
    0x70, 0xba, 0x49, 0x9f, 0xc6, 0xe3, 0xff, 0xd9,
};
constexpr unsigned char webpBytes[] = {
    0x52, 0x49, 0x46, 0x46, 0x5e, 0x00, 0x00, 0x00, 0x57, 0x45, 0x42, 0x50, 0x56, 0x50, 0x38, 0x4c, 0x51,
    0x00, 0x00, 0x00, 0x2f, 0x17, 0xc0, 0x03, 0x00, 0x5f, 0x40, 0x26, 0x6d, 0x93, 0xde, 0xf3, 0xaf, 0x77,
    0x36, 0x14, 0xb4, 0x6d, 0xc3, 0xb4, 0xdd, 0xc3, 0x33, 0xb0, 0x83, 0x3b, 0x55, 0x51, 0xdb, 0x46, 0x4c,
    0x17, 0xff, 0x7f, 0x89, 0x1c, 0xba, 0xa1, 0xf9, 0x0f, 0xf8, 0x08, 0x08, 0x81, 0xee, 0xe3, 0x03, 0x84,
    0x21, 0xd1, 0x67, 0xd9, 0xb1, 0x2b, 0x18, 0x86, 0x6c, 0xe5, 0x2b, 0x7c, 0x85, 0x6f, 0x90, 0x43, 0x0a,
    0x8f, 0xa6, 0x7b, 0x2e, 0xc9, 0x76, 0x8e, 0xe8, 0x7f, 0xa4, 0xe5, 0xba, 0x59, 0x80, 0x9f, 0x01, 0x00,
};

TEST(Wallpapers, areReadFromEveryKindOfFileAndTurnedUpright) {
    const TemporaryFolder folder;
    const auto write = [&](const char* name, const std::string& bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
        return WallpaperFile::load(folder / name, 24, 16);
    };
    const std::string jpeg(reinterpret_cast<const char*>(jpegBytes), sizeof jpegBytes);
    const auto plain = write("a.jpg", jpeg);
    const auto webp =
        write("a.webp", std::string(reinterpret_cast<const char*>(webpBytes), sizeof webpBytes));
    for (const auto& image : {plain, webp}) {
        ASSERT_TRUE(image);
        EXPECT_EQ(image->width, 24);
        EXPECT_GT(image->at(3, 8)[2], 200);
        EXPECT_GT(image->at(20, 8)[0], 200);
    }
    // An APP1 segment with the one EXIF entry "orientation" (0x0112): 6 = turned clockwise.
    const auto oriented = [&](char orientation) {
        std::string segment("\xff\xe1\x00\x22"
                            "Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0",
                            28);
        segment += orientation;
        segment += std::string(7, '\0');
        return jpeg.substr(0, 2) + segment + jpeg.substr(2);
    };
    const auto turned = write("b.jpg", oriented(6));
    ASSERT_TRUE(turned);
    EXPECT_EQ(turned->width, 16);
    EXPECT_EQ(turned->height, 24);
    EXPECT_GT(turned->at(8, 3)[2], 200); // what was left is now above
    EXPECT_GT(turned->at(8, 20)[0], 200);
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
