#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace RecordCore {

/// A borrowed, read-only picture in the engine's one pixel format: planar 8-bit Y'CbCr 4:2:0, BT.709,
/// video range (16…235 luma, 16…240 chroma), chroma sited left as in MPEG-2. Plane 0 is luma, 1 is Cb,
/// 2 is Cr; the chroma planes measure ceil(width / 2) × ceil(height / 2). Whoever hands a view out says
/// how long the planes live.
struct PlanarView {
    std::array<const std::uint8_t*, 3> planes{};
    std::array<std::ptrdiff_t, 3> strides{}; ///< bytes from row to row
    int width = 0;
    int height = 0;

    bool empty() const { return planes[0] == nullptr; }
    int planeWidth(int plane) const { return plane == 0 ? width : (width + 1) / 2; }
    int planeHeight(int plane) const { return plane == 0 ? height : (height + 1) / 2; }
};

/// A borrowed, read-only picture of 32-bit pixels with the bytes B, G, R, A (A is not used), sRGB.
struct BgraView {
    const std::uint8_t* pixels = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
};

} // namespace RecordCore
