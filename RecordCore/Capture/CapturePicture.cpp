#include "RecordCore/Capture/CapturePicture.h"

#include "RecordCore/Capture/BlockMap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace RecordCore {

namespace {
constexpr std::size_t alignment = 64;
constexpr std::size_t aligned(std::size_t bytes) {
    return (bytes + alignment - 1) / alignment * alignment;
}
} // namespace

void CapturePicture::Free::operator()(std::uint8_t* block) const {
    std::free(block);
}

CapturePicture::CapturePicture(int width, int height) : size{width, height} {
    const std::size_t lumaStride = aligned(static_cast<std::size_t>(width) + alignment);
    const std::size_t chromaStride = aligned(static_cast<std::size_t>(width / 2) + alignment);
    const std::size_t lumaBytes = lumaStride * static_cast<std::size_t>(height);
    const std::size_t chromaBytes = chromaStride * static_cast<std::size_t>(height / 2);
    const std::size_t total = lumaBytes + 2 * chromaBytes;
    memory.reset(static_cast<std::uint8_t*>(std::aligned_alloc(alignment, aligned(total))));
    if (memory == nullptr) throw std::bad_alloc();
    planes = {memory.get(), memory.get() + lumaBytes, memory.get() + lumaBytes + chromaBytes};
    strides = {static_cast<std::ptrdiff_t>(lumaStride), static_cast<std::ptrdiff_t>(chromaStride),
               static_cast<std::ptrdiff_t>(chromaStride)};
    fillBlack();
}

PlanarView CapturePicture::view() const {
    PlanarView view;
    view.planes = {planes[0], planes[1], planes[2]};
    view.strides = strides;
    view.width = size[0];
    view.height = size[1];
    return view;
}

void CapturePicture::fillBlack() {
    const auto rows = static_cast<std::size_t>(size[1]);
    std::memset(planes[0], 16, static_cast<std::size_t>(strides[0]) * rows);
    std::memset(planes[1], 128, static_cast<std::size_t>(strides[1]) * (rows / 2));
    std::memset(planes[2], 128, static_cast<std::size_t>(strides[2]) * (rows / 2));
}

void CapturePicture::copyBlocks(const PlanarView& from, std::span<const std::uint8_t> blocks) {
    constexpr int blockSize = BlockMap::blockSize;
    const int columns = (size[0] + blockSize - 1) / blockSize;
    const int rows = (size[1] + blockSize - 1) / blockSize;
    for (int row = 0; row < rows; ++row) {
        const std::uint8_t* marks = blocks.data() + static_cast<std::ptrdiff_t>(row) * columns;
        int column = 0;
        while (column < columns) {
            if (marks[column] == 0) {
                ++column;
                continue;
            }
            int end = column + 1;
            while (end < columns && marks[end] != 0)
                ++end;
            for (int plane = 0; plane < 3; ++plane) {
                const int unit = plane == 0 ? blockSize : blockSize / 2;
                const int left = column * unit;
                const int right = std::min(end * unit, from.planeWidth(plane));
                const int bottom = std::min((row + 1) * unit, from.planeHeight(plane));
                const auto p = static_cast<std::size_t>(plane);
                for (int y = row * unit; y < bottom; ++y)
                    std::memcpy(planes[p] + y * strides[p] + left,
                                from.planes[p] + y * from.strides[p] + left,
                                static_cast<std::size_t>(right - left));
            }
            column = end;
        }
    }
}

} // namespace RecordCore
