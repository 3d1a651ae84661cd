#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace RecordCore {

/// A small drawing with transparency: 32-bit pixels with the bytes B, G, R, A, premultiplied, sRGB. A value;
/// `reset` reuses the memory.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    Bitmap() = default;
    /// Transparent. Sizes are limited to 1 … 16384 and together to 64 million pixels.
    Bitmap(int width, int height) { reset(width, height); }
    void reset(int newWidth, int newHeight);

    int stride() const { return width * 4; }
    bool empty() const { return pixels.empty(); }
    const std::uint8_t* at(int x, int y) const {
        return pixels.data() + static_cast<std::ptrdiff_t>(y) * stride() + static_cast<std::ptrdiff_t>(x) * 4;
    }
    bool operator==(const Bitmap&) const = default;
};

} // namespace RecordCore
