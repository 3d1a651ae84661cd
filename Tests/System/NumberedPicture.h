#pragma once

#include "RecordCore/Model/PictureView.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

// Pictures that show their number: the upper half holds 16 bars, white for a set bit (the highest left), the
// lower half is one red, given in BT.601 as cameras do.

inline constexpr int numberBits = 16;

/// Y'CbCr codes of the red (sRGB 190, 40, 40) in BT.601 and BT.709, video range, by the two standards'
/// formulas.
inline constexpr std::array<int, 3> redInBt601{89, 106, 194};
inline constexpr std::array<int, 3> redInBt709{78, 113, 194};

inline std::uint8_t pictureLuma(int x, int y, int width, int height, std::uint32_t number) {
    if (y >= height / 2) return static_cast<std::uint8_t>(redInBt601[0]);
    const int bit = numberBits - 1 - x * numberBits / width;
    return (number >> bit) & 1U ? 235 : 16;
}

/// Writes the picture without padding; `format` is "yuyv", "nv12" or "i420". Sizes are even.
inline void drawNumber(std::uint8_t* to, const std::string& format, int width, int height,
                       std::uint32_t number) {
    const auto chroma = [&](int y, std::size_t i) {
        return static_cast<std::uint8_t>(y >= height / 2 ? redInBt601[i] : 128);
    };
    if (format == "yuyv") {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; x += 2) {
                *to++ = pictureLuma(x, y, width, height, number);
                *to++ = chroma(y, 1);
                *to++ = pictureLuma(x + 1, y, width, height, number);
                *to++ = chroma(y, 2);
            }
        return;
    }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            *to++ = pictureLuma(x, y, width, height, number);
    if (format == "nv12") {
        for (int y = 0; y < height; y += 2)
            for (int x = 0; x < width; x += 2) {
                *to++ = chroma(y, 1);
                *to++ = chroma(y, 2);
            }
        return;
    }
    for (std::size_t plane = 1; plane <= 2; ++plane)
        for (int y = 0; y < height; y += 2)
            for (int x = 0; x < width; x += 2)
                *to++ = chroma(y, plane);
}

/// Reads the number back from the middles of the bars.
inline std::uint32_t readNumber(const RecordCore::PlanarView& picture) {
    std::uint32_t number = 0;
    for (int i = 0; i < numberBits; ++i) {
        const int x = (2 * i + 1) * picture.width / (2 * numberBits);
        const std::uint8_t luma = picture.planes[0][picture.height / 4 * picture.strides[0] + x];
        number = number << 1U | (luma > 125 ? 1U : 0U);
    }
    return number;
}

/// Y'CbCr in the middle of the lower half.
inline std::array<int, 3> readColour(const RecordCore::PlanarView& picture) {
    const std::ptrdiff_t x = picture.width / 2;
    const std::ptrdiff_t y = picture.height * 3 / 4;
    return {picture.planes[0][y * picture.strides[0] + x],
            picture.planes[1][y / 2 * picture.strides[1] + x / 2],
            picture.planes[2][y / 2 * picture.strides[2] + x / 2]};
}
