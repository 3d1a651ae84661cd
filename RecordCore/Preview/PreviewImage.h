#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace RecordCore {

/// A picture for a screen: 32-bit pixels with the bytes B, G, R, 255, sRGB, rows without gaps.
struct PreviewImage {
    PreviewImage(int width, int height) :
        width(width), height(height),
        pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4) {}

    int width;
    int height;
    std::vector<std::uint8_t> pixels;

    std::ptrdiff_t stride() const { return static_cast<std::ptrdiff_t>(width) * 4; }

    /// Which of a renderer's pictures this is; the renderer's own affair.
    struct Drawn {
        std::uint64_t canvas = 0;
        std::uint64_t version = 0;
    };
    Drawn drawn;
};

/// Images that are used again when nobody holds them any more. `get` is called by one thread at a time; the
/// images may be let go on any, also when this is gone.
class PreviewImages {
public:
    PreviewImages();
    /// One that nobody else holds, with whatever was drawn into it before.
    std::shared_ptr<PreviewImage> get(int width, int height);

private:
    struct Idle;
    std::shared_ptr<Idle> idle;
};

} // namespace RecordCore
