#pragma once

#include "RecordCore/Model/PictureView.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace RecordCore {

/// A planar picture that owns its memory, black when made. Rows are aligned for SIMD and padded so that
/// kernels may write up to 64 bytes past the end of a row.
class CapturePicture {
public:
    CapturePicture() = default;
    /// Both sizes even.
    CapturePicture(int width, int height);

    int width() const { return size[0]; }
    int height() const { return size[1]; }
    std::uint8_t* plane(int i) { return planes[static_cast<std::size_t>(i)]; }
    std::ptrdiff_t stride(int i) const { return strides[static_cast<std::size_t>(i)]; }
    PlanarView view() const;

    void fillBlack();

    /// Copies the marked 16×16 blocks (all of one map row by row) of a picture of the same size.
    void copyBlocks(const PlanarView& from, std::span<const std::uint8_t> blocks);

private:
    struct Free {
        void operator()(std::uint8_t* memory) const;
    };
    std::array<int, 2> size{};
    std::unique_ptr<std::uint8_t, Free> memory;
    std::array<std::uint8_t*, 3> planes{};
    std::array<std::ptrdiff_t, 3> strides{};
};

} // namespace RecordCore
