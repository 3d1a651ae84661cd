#pragma once

#include "RecordCore/Model/Backdrop.h"
#include "RecordCore/Rendering/Picture.h"

#include <cstdint>

/// Pictures to test with. All are made by arithmetic alone and are the same everywhere.
namespace SamplePictures {

/// One colour all over.
RecordCore::Picture plain(int width, int height, const RecordCore::Rgb& color);

/// Something like a screen: a light window with dark lines of "text", coloured areas, fine patterns and
/// noise.
RecordCore::Picture screen(int width, int height, std::uint32_t seed = 1);

/// Changes a rectangle (luma pixels, any position) of a picture.
void scribble(RecordCore::Picture& picture, int x, int y, int width, int height, std::uint32_t seed);

/// A small generator of repeatable random numbers (xorshift).
class Random {
public:
    explicit Random(std::uint32_t seed) : state(seed * 2654435761U + 1) {}
    std::uint32_t next();
    int below(int limit) { return static_cast<int>(next() % static_cast<std::uint32_t>(limit)); }
    double unit() { return next() / 4294967296.0; }
    double between(double low, double high) { return low + (high - low) * unit(); }

private:
    std::uint32_t state;
};

} // namespace SamplePictures
