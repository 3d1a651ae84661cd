#include "RecordCore/Rendering/Picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace RecordCore {

namespace {

constexpr std::size_t alignment = 64;
constexpr std::size_t slack = 64; ///< bytes behind the last row that a vector load may touch

std::ptrdiff_t alignedStride(int width) {
    return (static_cast<std::ptrdiff_t>(width) + 63) / 64 * 64;
}

} // namespace

void Picture::Free::operator()(std::uint8_t* pointer) const {
    std::free(pointer);
}

Picture::Picture(int width, int height) {
    resize(width, height);
    fill(16, 128, 128);
}

Picture::Picture(const PlanarView& view) {
    assign(view);
}

Picture::Picture(const Picture& other) {
    if (!other.empty()) assign(other.view());
}

Picture& Picture::operator=(const Picture& other) {
    if (this == &other) return *this;
    if (other.empty())
        *this = Picture();
    else
        assign(other.view());
    return *this;
}

PlanarView Picture::view() const {
    return {{planes[0], planes[1], planes[2]}, strides, pictureWidth, pictureHeight};
}

void Picture::resize(int width, int height) {
    if (width == pictureWidth && height == pictureHeight) return;
    pictureWidth = std::max(width, 0);
    pictureHeight = std::max(height, 0);
    std::array<std::size_t, 3> sizes{};
    std::size_t total = slack;
    for (int plane = 0; plane < 3; ++plane) {
        strides[index(plane)] = alignedStride(planeWidth(plane));
        sizes[index(plane)] =
            static_cast<std::size_t>(strides[index(plane)]) * static_cast<std::size_t>(planeHeight(plane));
        total += sizes[index(plane)];
    }
    if (total > capacity) {
        const std::size_t rounded = (total + alignment - 1) / alignment * alignment;
        memory.reset();
        memory.reset(static_cast<std::uint8_t*>(std::aligned_alloc(alignment, rounded)));
        if (!memory) {
            pictureWidth = pictureHeight = 0;
            capacity = 0;
            throw std::bad_alloc();
        }
        // Vector loads may read the slack of a row; it holds something definite.
        std::memset(memory.get(), 0, rounded);
        capacity = rounded;
    }
    planes[0] = memory.get();
    planes[1] = planes[0] + sizes[0];
    planes[2] = planes[1] + sizes[1];
}

void Picture::assign(const PlanarView& view) {
    resize(view.width, view.height);
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < planeHeight(plane); ++y)
            std::memcpy(row(plane, y), view.planes[index(plane)] + view.strides[index(plane)] * y,
                        static_cast<std::size_t>(planeWidth(plane)));
}

void Picture::fill(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) {
    const std::array<std::uint8_t, 3> values{y, cb, cr};
    for (int plane = 0; plane < 3; ++plane)
        std::memset(planes[index(plane)], values[index(plane)],
                    static_cast<std::size_t>(strides[index(plane)]) *
                        static_cast<std::size_t>(planeHeight(plane)));
}

double Picture::lumaAverage() const {
    if (empty()) return 0;
    std::uint64_t sum = 0;
    for (int y = 0; y < pictureHeight; ++y) {
        const std::uint8_t* samples = row(0, y);
        std::uint64_t rowSum = 0;
        for (int x = 0; x < pictureWidth; ++x)
            rowSum += samples[x];
        sum += rowSum;
    }
    const double mean = static_cast<double>(sum) / (static_cast<double>(pictureWidth) * pictureHeight);
    return std::clamp((mean - 16) / 219, 0.0, 1.0);
}

bool Picture::operator==(const Picture& other) const {
    if (pictureWidth != other.pictureWidth || pictureHeight != other.pictureHeight) return false;
    for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < planeHeight(plane); ++y)
            if (std::memcmp(row(plane, y), other.row(plane, y),
                            static_cast<std::size_t>(planeWidth(plane))) != 0)
                return false;
    return true;
}

} // namespace RecordCore
