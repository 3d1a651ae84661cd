#include "RecordCore/Rendering/RgbImage.h"

#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/Kernels/Kernels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace RecordCore {

namespace {

constexpr int nearest(double value) {
    return static_cast<int>(value + (value < 0 ? -0.5 : 0.5));
}

/// Fixed-point factors of the conversion, 16 bits of fraction. Chroma comes in eighths.
struct Factors {
    static constexpr double one = 65536;
    static constexpr int luma = nearest(one * 255 / 219);
    static constexpr int redFromCr = nearest(one * 255 * 2 * (1 - Bt709::kr) / 224 / 8);
    static constexpr int blueFromCb = nearest(one * 255 * 2 * (1 - Bt709::kb) / 224 / 8);
    static constexpr int greenFromCr =
        nearest(-one * 255 * 2 * (1 - Bt709::kr) / 224 / 8 * Bt709::kr / Bt709::kg);
    static constexpr int greenFromCb =
        nearest(-one * 255 * 2 * (1 - Bt709::kb) / 224 / 8 * Bt709::kb / Bt709::kg);
};

/// Calls `write(x, r, g, b)` for the pixels of a row. `blue` and `red` hold the row's chroma in quarters,
/// interpolated down, one sample for two columns and one more at the end.
class RowConverter {
public:
    explicit RowConverter(const PlanarView& picture) :
        picture(picture), blue(static_cast<std::size_t>(picture.planeWidth(1)) + 1),
        red(static_cast<std::size_t>(picture.planeWidth(1)) + 1) {}

    template <typename Write>
    void convert(int y, Write write) {
        interpolate(1, y, blue);
        interpolate(2, y, red);
        const std::uint8_t* luma = picture.planes[0] + picture.strides[0] * y;
        for (int x = 0; x < picture.width; ++x) {
            const std::size_t c = static_cast<std::size_t>(x / 2);
            // On an even column lies a sample; between two of them is their mean.
            const int cb = (x % 2 == 0 ? 2 * blue[c] : blue[c] + blue[c + 1]) - 8 * 128;
            const int cr = (x % 2 == 0 ? 2 * red[c] : red[c] + red[c + 1]) - 8 * 128;
            const int light = (luma[x] - 16) * Factors::luma + (1 << 15);
            write(x, limited(light + Factors::redFromCr * cr),
                  limited(light + Factors::greenFromCb * cb + Factors::greenFromCr * cr),
                  limited(light + Factors::blueFromCb * cb));
        }
    }

private:
    static std::uint8_t limited(int value) {
        return static_cast<std::uint8_t>(std::clamp(value >> 16, 0, 255));
    }

    void interpolate(std::size_t plane, int y, std::vector<int>& out) const {
        const int near = y / 2;
        const int other = std::clamp(y % 2 == 0 ? near - 1 : near + 1, 0, picture.planeHeight(1) - 1);
        const std::uint8_t* a = picture.planes[plane] + picture.strides[plane] * near;
        const std::uint8_t* b = picture.planes[plane] + picture.strides[plane] * other;
        for (std::size_t i = 0; i + 1 < out.size(); ++i)
            out[i] = 3 * a[i] + b[i];
        out.back() = out[out.size() - 2];
    }

    const PlanarView& picture;
    std::vector<int> blue;
    std::vector<int> red;
};

} // namespace

RgbImage RgbImage::of(const PlanarView& picture) {
    RgbImage image{picture.width, picture.height, {}};
    image.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                        3);
    if (image.pixels.empty()) return image;
    RowConverter converter(picture);
    for (int y = 0; y < picture.height; ++y) {
        std::uint8_t* out =
            image.pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) * 3;
        converter.convert(y, [out](int x, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
            out[3 * x] = r;
            out[3 * x + 1] = g;
            out[3 * x + 2] = b;
        });
    }
    return image;
}

void toBgra(const PlanarView& picture, std::uint8_t* pixels, std::ptrdiff_t stride, int firstRow,
            int lastRow) {
    if (picture.width <= 0) return;
    constexpr std::size_t slack = 64; // columns that the kernel may touch beyond the row
    const std::size_t width = static_cast<std::size_t>(picture.width);
    const std::size_t pairs = static_cast<std::size_t>(picture.planeWidth(1));
    std::vector<std::uint8_t> luma(width + slack);
    std::vector<std::int16_t> near(pairs + 1);
    std::array<std::vector<std::int16_t>, 2> chroma{std::vector<std::int16_t>(2 * pairs + slack),
                                                    std::vector<std::int16_t>(2 * pairs + slack)};
    std::array<std::uint8_t, 4 * 2 * slack> tail;
    const int whole = picture.width / static_cast<int>(slack) * static_cast<int>(slack);
    for (int y = std::max(firstRow, 0); y < std::min(lastRow, picture.height); ++y) {
        std::memcpy(luma.data(), picture.planes[0] + picture.strides[0] * y, width);
        const int other = std::clamp(y % 2 == 0 ? y / 2 - 1 : y / 2 + 1, 0, picture.planeHeight(1) - 1);
        for (std::size_t plane = 1; plane < 3; ++plane) {
            const std::uint8_t* a = picture.planes[plane] + picture.strides[plane] * (y / 2);
            const std::uint8_t* b = picture.planes[plane] + picture.strides[plane] * other;
            for (std::size_t i = 0; i < pairs; ++i)
                near[i] = static_cast<std::int16_t>(3 * a[i] + b[i] - 4 * 128);
            near[pairs] = near[pairs - 1];
            std::int16_t* out = chroma[plane - 1].data();
            for (std::size_t i = 0; i < pairs; ++i) {
                out[2 * i] = static_cast<std::int16_t>(2 * near[i]);
                out[2 * i + 1] = static_cast<std::int16_t>(near[i] + near[i + 1]);
            }
        }
        std::uint8_t* out = pixels + stride * y;
        Kernels::rowToBgra(luma.data(), chroma[0].data(), chroma[1].data(), out, whole);
        if (whole < picture.width) {
            Kernels::rowToBgra(luma.data() + whole, chroma[0].data() + whole, chroma[1].data() + whole,
                               tail.data(), picture.width - whole);
            std::memcpy(out + static_cast<std::ptrdiff_t>(whole) * 4, tail.data(),
                        static_cast<std::size_t>(picture.width - whole) * 4);
        }
    }
}

} // namespace RecordCore
