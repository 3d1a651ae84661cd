#pragma once

#include "RecordCore/Model/PictureView.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace RecordCore {

/// An owning picture in the engine's one pixel format: planar 8-bit Y'CbCr 4:2:0, BT.709, video range,
/// chroma sited left. Rows start on 64-byte boundaries, and reading up to 64 bytes beyond a row is safe.
/// A value with deep copies; `resize` and `assign` reuse the memory they have. Not synchronised.
class Picture {
public:
    Picture() = default;
    /// A black picture.
    Picture(int width, int height);
    explicit Picture(const PlanarView& view);
    Picture(const Picture& other);
    Picture& operator=(const Picture& other);
    Picture(Picture&&) noexcept = default;
    Picture& operator=(Picture&&) noexcept = default;

    int width() const { return pictureWidth; }
    int height() const { return pictureHeight; }
    bool empty() const { return pictureWidth == 0; }
    int planeWidth(int plane) const { return plane == 0 ? pictureWidth : (pictureWidth + 1) / 2; }
    int planeHeight(int plane) const { return plane == 0 ? pictureHeight : (pictureHeight + 1) / 2; }

    std::uint8_t* row(int plane, int y) { return planes[index(plane)] + strides[index(plane)] * y; }
    const std::uint8_t* row(int plane, int y) const {
        return planes[index(plane)] + strides[index(plane)] * y;
    }
    std::ptrdiff_t stride(int plane) const { return strides[index(plane)]; }

    /// Lives as long as this picture and its size.
    PlanarView view() const;

    /// Changes the size; the contents are then undefined unless the size stays.
    void resize(int width, int height);
    void assign(const PlanarView& view);
    void fill(std::uint8_t y, std::uint8_t cb, std::uint8_t cr);

    /// The mean of the luma plane, 0 (black) … 1 (white).
    double lumaAverage() const;

    /// Equal in size and in every sample.
    bool operator==(const Picture& other) const;

private:
    static std::size_t index(int plane) { return static_cast<std::size_t>(plane); }
    struct Free {
        void operator()(std::uint8_t* memory) const;
    };

    int pictureWidth = 0;
    int pictureHeight = 0;
    std::array<std::uint8_t*, 3> planes{};
    std::array<std::ptrdiff_t, 3> strides{};
    std::unique_ptr<std::uint8_t, Free> memory;
    std::size_t capacity = 0;
};

} // namespace RecordCore
