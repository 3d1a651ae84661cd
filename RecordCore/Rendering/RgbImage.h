#pragma once

#include "RecordCore/Model/PictureView.h"

#include <cstdint>
#include <vector>

namespace RecordCore {

/// A picture of 8-bit R, G, B triples, sRGB, rows without gaps.
struct RgbImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    const std::uint8_t* at(int x, int y) const {
        return pixels.data() +
               (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
                   3;
    }

    /// The film's picture as a still: chroma is interpolated with its siting (left, midway between rows).
    static RgbImage of(const PlanarView& picture);

    bool operator==(const RgbImage&) const = default;
};

/// Converts to 32-bit pixels B, G, R, 255 for showing on a screen; `stride` in bytes. Rows [firstRow,
/// lastRow). The same colours as RgbImage::of, within one unit.
void toBgra(const PlanarView& picture, std::uint8_t* pixels, std::ptrdiff_t stride, int firstRow,
            int lastRow);

} // namespace RecordCore
