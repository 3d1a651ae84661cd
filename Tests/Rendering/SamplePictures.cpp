#include "Tests/Rendering/SamplePictures.h"

#include "RecordCore/Rendering/ColorMatrix.h"

#include <algorithm>
#include <cmath>

using namespace RecordCore;

namespace SamplePictures {

std::uint32_t Random::next() {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

Picture plain(int width, int height, const Rgb& color) {
    const auto samples = Bt709::fromRgb(color);
    Picture picture(width, height);
    picture.fill(static_cast<std::uint8_t>(std::lround(samples.y)),
                 static_cast<std::uint8_t>(std::lround(samples.cb)),
                 static_cast<std::uint8_t>(std::lround(samples.cr)));
    return picture;
}

void scribble(Picture& picture, int x, int y, int width, int height, std::uint32_t seed) {
    Random random(seed);
    for (int plane = 0; plane < 3; ++plane) {
        const int divisor = plane == 0 ? 1 : 2;
        const int right = std::min((x + width + divisor - 1) / divisor, picture.planeWidth(plane));
        const int bottom = std::min((y + height + divisor - 1) / divisor, picture.planeHeight(plane));
        for (int j = std::max(y / divisor, 0); j < bottom; ++j)
            for (int i = std::max(x / divisor, 0); i < right; ++i)
                picture.row(plane, j)[i] =
                    static_cast<std::uint8_t>(16 + random.below(plane == 0 ? 220 : 225));
    }
}

Picture screen(int width, int height, std::uint32_t seed) {
    Picture picture = plain(width, height, {0.93, 0.94, 0.96});
    Random random(seed);
    for (int line = 0; line < height / 24; ++line) {
        const int y = line * 24 + 6;
        int x = 20 + random.below(40);
        while (x < width - 40) {
            const int word = 10 + random.below(60);
            for (int j = y; j < std::min(y + 11, height); ++j)
                for (int i = x; i < std::min(x + word, width); ++i)
                    if ((i * 7 + j * 3 + random.below(3)) % 5 < 2)
                        picture.row(0, j)[i] = static_cast<std::uint8_t>(30 + random.below(60));
            x += word + 9;
        }
    }
    for (int area = 0; area < 5; ++area) {
        const int x = random.below(width);
        const int y = random.below(height);
        const int w = width / 8;
        const int h = height / 8;
        const auto cb = static_cast<std::uint8_t>(40 + random.below(180));
        const auto cr = static_cast<std::uint8_t>(40 + random.below(180));
        for (int j = y / 2; j < std::min((y + h) / 2, picture.planeHeight(1)); ++j)
            for (int i = x / 2; i < std::min((x + w) / 2, picture.planeWidth(1)); ++i) {
                picture.row(1, j)[i] = cb;
                picture.row(2, j)[i] = cr;
            }
    }
    return picture;
}

} // namespace SamplePictures
