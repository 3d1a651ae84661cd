#include "RecordCore/Rendering/Overlay.h"

#include "RecordCore/Rendering/ColorMatrix.h"
#include "RecordCore/Rendering/Kernels/Kernels.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

int evenBelow(int value) {
    return value & ~1;
}
int evenAbove(int value) {
    return (value + 1) & ~1;
}

std::uint8_t rounded(float value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

} // namespace

PixelRect PixelRect::intersected(const PixelRect& other) const {
    return {std::max(x0, other.x0), std::max(y0, other.y0), std::min(x1, other.x1), std::min(y1, other.y1)};
}

void Overlay::set(const Bitmap& bitmap, int x, int y, double shift, const Tint& ground) {
    // A chroma sample takes in the column to the left of its own pair: one column of margin.
    area = {evenBelow(x), evenBelow(y), evenAbove(x + bitmap.width + 1),
            evenAbove(y + bitmap.height + (shift > 0 ? 1 : 0))};
    const int w = width();
    const int h = height();
    const std::size_t lumaSize = static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
    const std::size_t chromaSize = lumaSize / 4;
    samples.resize(2 * lumaSize + 3 * chromaSize);
    std::size_t offset = 0;
    for (std::size_t index = 0; index < 5; ++index) {
        offsets[index] = offset;
        offset += index < 2 ? lumaSize : chromaSize;
    }

    // Two rows at a time in floating point: R, G, B, A premultiplied, with one column before and one after.
    const std::size_t line = static_cast<std::size_t>(w) + 2;
    thread_local std::vector<float> scratch; // kept from drawing to drawing, but not by the overlays
    scratch.resize(2 * 4 * line);
    const float down = static_cast<float>(shift);
    constexpr float toVideo = 219.0F / 255;
    for (int top = 0; top < h; top += 2) {
        std::fill(scratch.begin(), scratch.end(), 0.0F);
        for (int i = 0; i < 2; ++i) {
            float* red = scratch.data() + static_cast<std::size_t>(i) * 4 * line;
            float* green = red + line;
            float* blue = green + line;
            float* alpha = blue + line;
            for (int part = 0; part < (shift > 0 ? 2 : 1); ++part) {
                const int from = area.y0 + top + i - y - part;
                if (from < 0 || from >= bitmap.height) continue;
                const float share = part == 0 ? 1 - down : down;
                const std::uint8_t* pixel = bitmap.at(0, from);
                const int first = x - area.x0 + 1;
                for (int j = 0; j < bitmap.width; ++j, pixel += 4) {
                    blue[first + j] += share * pixel[0];
                    green[first + j] += share * pixel[1];
                    red[first + j] += share * pixel[2];
                    alpha[first + j] += share * pixel[3];
                }
            }
            if (ground.alpha > 0) {
                const float under = static_cast<float>(ground.alpha);
                const float parts[4] = {under * static_cast<float>(ground.color.r),
                                        under * static_cast<float>(ground.color.g),
                                        under * static_cast<float>(ground.color.b), under};
                for (std::size_t j = 0; j < line; ++j) {
                    const float rest = 255 - alpha[j];
                    red[j] += parts[0] * rest;
                    green[j] += parts[1] * rest;
                    blue[j] += parts[2] * rest;
                    alpha[j] += parts[3] * rest;
                }
            }
            std::uint8_t* luma = plane(0) + static_cast<std::ptrdiff_t>(top + i) * w;
            std::uint8_t* cover = plane(1) + static_cast<std::ptrdiff_t>(top + i) * w;
            for (int j = 0; j < w; ++j) {
                const float a = alpha[j + 1];
                const float light = static_cast<float>(Bt709::kr) * red[j + 1] +
                                    static_cast<float>(Bt709::kg) * green[j + 1] +
                                    static_cast<float>(Bt709::kb) * blue[j + 1];
                cover[j] = rounded(a);
                luma[j] = rounded(toVideo * light + a * (16.0F / 255));
            }
        }
        const float* r0 = scratch.data();
        const auto sited = [&](std::size_t component, int j) {
            // Left siting: the sample lies on the even column; 1 2 1 across, the mean of two rows down.
            const float* a = r0 + component * line + j;
            const float* b = a + 4 * line;
            return (a[0] + 2 * a[1] + a[2] + b[0] + 2 * b[1] + b[2]) * 0.125F;
        };
        const std::ptrdiff_t out = static_cast<std::ptrdiff_t>(top / 2) * (w / 2);
        for (int j = 0; j < w / 2; ++j) {
            const float red = sited(0, 2 * j);
            const float green = sited(1, 2 * j);
            const float blue = sited(2, 2 * j);
            const float alpha = sited(3, 2 * j);
            const float light = static_cast<float>(Bt709::kr) * red + static_cast<float>(Bt709::kg) * green +
                                static_cast<float>(Bt709::kb) * blue;
            const float center = alpha * (128.0F / 255);
            constexpr float blueScale = static_cast<float>(224 / (2 * (1 - Bt709::kb)) / 255);
            constexpr float redScale = static_cast<float>(224 / (2 * (1 - Bt709::kr)) / 255);
            plane(2)[out + j] = rounded(center + blueScale * (blue - light));
            plane(3)[out + j] = rounded(center + redScale * (red - light));
            plane(4)[out + j] = rounded(alpha);
        }
    }
}

TintSamples::TintSamples(const Tint& tint) {
    // The same conversion as a drawing's, so that a layer and a drawing on that ground join without a seam.
    Bitmap nothing(1, 1);
    Overlay overlay;
    overlay.set(nothing, 0, 0, 0, tint);
    color = overlay.groundColor();
    alpha = overlay.groundAlpha();
}

void TintSamples::layOver(Picture& picture, const PixelRect& part, int fade) const {
    if (part.empty() || fade <= 0) return;
    for (int y = part.y0; y < part.y1; ++y)
        Kernels::layConstant(picture.row(0, y) + part.x0, color[0], alpha, fade, part.x1 - part.x0);
    for (int y = part.y0 / 2; y < part.y1 / 2; ++y)
        for (int plane = 1; plane < 3; ++plane)
            Kernels::layConstant(picture.row(plane, y) + part.x0 / 2, color[static_cast<std::size_t>(plane)],
                                 alpha, fade, (part.x1 - part.x0) / 2);
}

std::array<std::uint8_t, 3> Overlay::groundColor() const {
    return {plane(0)[0], plane(2)[0], plane(3)[0]};
}

std::uint8_t Overlay::groundAlpha() const {
    return plane(1)[0];
}

void Overlay::drawOn(Picture& picture, const PixelRect& clip, int fade) const {
    const PixelRect part = area.intersected(clip).intersected({0, 0, picture.width(), picture.height()});
    if (part.empty() || fade <= 0) return;
    for (int y = part.y0; y < part.y1; ++y) {
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y - area.y0) * width() + part.x0 - area.x0;
        Kernels::layOver(picture.row(0, y) + part.x0, plane(0) + at, plane(1) + at, fade, part.x1 - part.x0);
    }
    for (int y = part.y0 / 2; y < part.y1 / 2; ++y) {
        const std::ptrdiff_t at =
            static_cast<std::ptrdiff_t>(y - area.y0 / 2) * (width() / 2) + (part.x0 - area.x0) / 2;
        for (int component = 1; component < 3; ++component)
            Kernels::layOver(picture.row(component, y) + part.x0 / 2,
                             plane(static_cast<std::size_t>(component + 1)) + at, plane(4) + at, fade,
                             (part.x1 - part.x0) / 2);
    }
}

AlphaMask::AlphaMask(const FloatPlane& alpha, int left, int top, const PixelRect& newArea, bool inverted) :
    area(newArea) {
    const int w = area.x1 - area.x0;
    const int h = area.y1 - area.y0;
    const auto value = [inverted](float share) { return rounded(255 * (inverted ? 1 - share : share)); };
    luma.resize(static_cast<std::size_t>(w) * static_cast<std::size_t>(h));
    chroma.resize(luma.size() / 4);
    const auto sample = [&](int x, int y) {
        const int column = x - left;
        const int line = y - top;
        if (column < 0 || line < 0 || column >= alpha.width || line >= alpha.height) return 0.0F;
        return alpha.row(line)[column];
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            luma[static_cast<std::size_t>(y) * static_cast<std::size_t>(w) + static_cast<std::size_t>(x)] =
                value(sample(area.x0 + x, area.y0 + y));
    for (int y = 0; y < h; y += 2)
        for (int x = 0; x < w; x += 2) {
            float sum = 0;
            for (int i = 0; i < 2; ++i)
                sum += sample(area.x0 + x - 1, area.y0 + y + i) + 2 * sample(area.x0 + x, area.y0 + y + i) +
                       sample(area.x0 + x + 1, area.y0 + y + i);
            chroma[static_cast<std::size_t>(y / 2) * static_cast<std::size_t>(w / 2) +
                   static_cast<std::size_t>(x / 2)] = value(sum / 8);
        }
}

const std::uint8_t* AlphaMask::row(int plane, int y) const {
    const int w = area.x1 - area.x0;
    return plane == 0 ? luma.data() + static_cast<std::ptrdiff_t>(y - area.y0) * w
                      : chroma.data() + static_cast<std::ptrdiff_t>(y - area.y0 / 2) * (w / 2);
}

} // namespace RecordCore
