#include "RecordCore/Capture/Kernels/ScreenConversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace RecordCore;

namespace {

struct Bgra {
    Bgra(int width, int height) :
        width(width), height(height),
        bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4) {}

    std::uint8_t* pixel(int x, int y) {
        return bytes.data() + (static_cast<std::ptrdiff_t>(y) * width + x) * 4;
    }
    const std::uint8_t* pixel(int x, int y) const {
        return bytes.data() + (static_cast<std::ptrdiff_t>(y) * width + x) * 4;
    }

    /// The patch of a rectangle, in memory of its own: reading outside of it is caught by the sanitizers.
    Bgra cut(int x, int y, int w, int h) const {
        Bgra part(w, h);
        for (int row = 0; row < h; ++row)
            std::copy_n(pixel(x, y + row), w * 4, part.pixel(0, row));
        return part;
    }
    BgraView view() const { return {bytes.data(), static_cast<std::ptrdiff_t>(width) * 4, width, height}; }

    int width;
    int height;
    std::vector<std::uint8_t> bytes;
};

Bgra noise(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    Bgra picture(width, height);
    for (auto& byte : picture.bytes) {
        const auto value = static_cast<unsigned>(random());
        // Extremes are where arithmetic overflows.
        byte = static_cast<std::uint8_t>(value % 4 == 0 ? 255 : value % 4 == 1 ? 0 : value >> 8);
    }
    return picture;
}

struct Exact {
    double y, cb, cr;
};

/// BT.709 in doubles, video range.
Exact convert(double r, double g, double b) {
    const double luma = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    return {16 + luma * 219 / 255, 128 + (b - luma) / 1.8556 * 224 / 255,
            128 + (r - luma) / 1.5748 * 224 / 255};
}

double worstError(const Bgra& screen, const CapturePicture& picture) {
    const PlanarView view = picture.view();
    double worst = 0;
    const auto at = [&](int plane, int x, int y) {
        return static_cast<double>(view.planes[static_cast<std::size_t>(plane)]
                                              [y * view.strides[static_cast<std::size_t>(plane)] + x]);
    };
    for (int y = 0; y < view.height; ++y)
        for (int x = 0; x < view.width; ++x) {
            const std::uint8_t* p = screen.pixel(x, y);
            worst = std::max(worst, std::abs(at(0, x, y) - convert(p[2], p[1], p[0]).y));
        }
    for (int y = 0; y < view.height / 2; ++y)
        for (int x = 0; x < view.width / 2; ++x) {
            double sum[3] = {0, 0, 0};
            for (int row = 0; row < 2; ++row)
                for (int tap = -1; tap <= 1; ++tap) {
                    const std::uint8_t* p = screen.pixel(std::max(2 * x + tap, 0), 2 * y + row);
                    for (int i = 0; i < 3; ++i)
                        sum[i] += p[i] * (tap == 0 ? 2 : 1) / 8.0;
                }
            const Exact exact = convert(sum[2], sum[1], sum[0]);
            worst = std::max({worst, std::abs(at(1, x, y) - exact.cb), std::abs(at(2, x, y) - exact.cr)});
        }
    return worst;
}

void convertRect(const Bgra& screen, int x, int y, int w, int h, CapturePicture& picture, BlockMap& changed) {
    const int left = std::max(x - 2, 0);
    const int right = std::min(x + w + 2, screen.width);
    const Bgra part = screen.cut(left, y, right - left, h);
    convertScreen({part.view(), left, y}, x, y, w, h, picture, changed);
}

} // namespace

TEST(ScreenConversion, IsWithinOneUnitOfTheExactValueAtAllWidths) {
    for (const int width : {2, 4, 16, 30, 62, 64, 66, 126, 130, 192, 258}) {
        const Bgra screen = noise(width, 18, static_cast<unsigned>(width));
        CapturePicture picture(width, 18);
        BlockMap changed(width, 18);
        convertRect(screen, 0, 0, width, 18, picture, changed);
        EXPECT_LE(worstError(screen, picture), 1) << "width " << width;
    }
}

TEST(ScreenConversion, KeepsGraysGrayAndMeetsTheEndsOfTheRange) {
    for (int gray = 0; gray < 256; ++gray) {
        Bgra screen(16, 2);
        std::fill(screen.bytes.begin(), screen.bytes.end(), static_cast<std::uint8_t>(gray));
        CapturePicture picture(16, 2);
        BlockMap changed(16, 2);
        convertRect(screen, 0, 0, 16, 2, picture, changed);
        EXPECT_EQ(picture.view().planes[1][3], 128) << gray;
        EXPECT_EQ(picture.view().planes[2][3], 128) << gray;
        if (gray == 0) {
            EXPECT_EQ(picture.view().planes[0][3], 16);
        }
        if (gray == 255) {
            EXPECT_EQ(picture.view().planes[0][3], 235);
        }
    }
}

// What damage does: any number of small updates have to leave the same picture as one conversion of the
// whole, and exactly the blocks that differ have to be reported.
TEST(ScreenConversion, UpdatesOfRectanglesEqualTheWholeAndReportWhatDiffers) {
    constexpr int width = 166; // neither a multiple of the block nor of a vector
    constexpr int height = 70;
    std::mt19937 random(7);
    const auto below = [&random](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(most));
    };
    Bgra screen = noise(width, height, 1);
    CapturePicture picture(width, height);
    BlockMap changed(width, height);
    convertRect(screen, 0, 0, width, height, picture, changed);
    for (int round = 0; round < 300; ++round) {
        const int x = below(width / 2) * 2;
        const int y = below(height / 2) * 2;
        const int w = std::min((1 + below(40)) * 2, width - x);
        const int h = std::min((1 + below(12)) * 2, height - y);
        const bool same = round % 5 == 0; // drawn again, all the same
        if (!same)
            for (int row = y; row < y + h; ++row)
                for (int byte = 0; byte < 4 * w; ++byte)
                    screen.pixel(x, row)[byte] = static_cast<std::uint8_t>(random());
        CapturePicture before(width, height);
        BlockMap all(width, height);
        all.markAll();
        before.copyBlocks(picture.view(), all.marks);
        changed.clear();
        convertRect(screen, x, y, w, h, picture, changed);

        CapturePicture whole(width, height);
        BlockMap ignored(width, height);
        convertRect(screen, 0, 0, width, height, whole, ignored);
        for (int plane = 0; plane < 3; ++plane) {
            const auto p = static_cast<std::size_t>(plane);
            const PlanarView got = picture.view(), expected = whole.view(), old = before.view();
            const int unit = plane == 0 ? 16 : 8;
            for (int row = 0; row < got.planeHeight(plane); ++row)
                for (int column = 0; column < got.planeWidth(plane); ++column) {
                    const auto value = got.planes[p][row * got.strides[p] + column];
                    ASSERT_EQ(value, expected.planes[p][row * expected.strides[p] + column])
                        << "plane " << plane << " at " << column << ", " << row << " after " << x << ", " << y
                        << ", " << w << ", " << h;
                    if (value != old.planes[p][row * old.strides[p] + column]) {
                        ASSERT_TRUE(changed.marked(column / unit, row / unit));
                    }
                }
        }
        if (same) {
            EXPECT_FALSE(changed.any());
        } else {
            // Nothing far away is reported.
            for (int row = 0; row < changed.rows; ++row)
                for (int column = 0; column < changed.columns; ++column)
                    if (changed.marked(column, row)) {
                        EXPECT_GE(column, x / 16);
                        EXPECT_LE(column, (x + w) / 16);
                        EXPECT_GE(row, y / 16);
                        EXPECT_LE(row, (y + h - 1) / 16);
                    }
        }
    }
}
