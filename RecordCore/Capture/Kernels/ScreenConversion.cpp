#include "RecordCore/Capture/Kernels/ScreenConversion.h"

#include <algorithm>
#include <cstring>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "RecordCore/Capture/Kernels/ScreenConversion.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace RecordCore {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Weights in 1/65536 of R, G, B for 8-bit video range: luma × 219/255, chroma × 224/255.
// Products are taken of samples shifted to the top of 16 bits, so the high half of a product is the value
// with 8 binary places.
constexpr std::uint16_t lumaR = 11966; // 0.2126 × 219/255
constexpr std::uint16_t lumaG = 40254; // 0.7152 × 219/255
constexpr std::uint16_t lumaB = 4064;  // 0.0722 × 219/255
constexpr std::uint16_t cbR = 6596;    // 0.2126/1.8556 × 224/255
constexpr std::uint16_t cbG = 22188;   // 0.7152/1.8556 × 224/255
constexpr std::uint16_t crG = 26149;   // 0.7152/1.5748 × 224/255
constexpr std::uint16_t crB = 2640;    // 0.0722/1.5748 × 224/255
constexpr std::uint16_t half = 28784;  // 0.5 × 224/255

/// Two rows of pixels to two rows of luma, and the sums of both rows per channel for the chroma.
void lumaRows(const std::uint8_t* above, const std::uint8_t* below, std::size_t count,
              std::uint8_t* HWY_RESTRICT lumaAbove, std::uint8_t* HWY_RESTRICT lumaBelow,
              std::uint16_t* HWY_RESTRICT sumB, std::uint16_t* HWY_RESTRICT sumG,
              std::uint16_t* HWY_RESTRICT sumR) {
    const hn::ScalableTag<std::uint16_t> d16;
    const hn::Rebind<std::uint8_t, decltype(d16)> d8;
    const std::size_t lanes = hn::Lanes(d16);
    const auto weightR = hn::Set(d16, lumaR);
    const auto weightG = hn::Set(d16, lumaG);
    const auto weightB = hn::Set(d16, lumaB);
    const auto offset = hn::Set(d16, 16 * 256 + 128 + 1); // the 1 makes up for three truncations
    const auto luma = [&](auto r, auto g, auto b) {
        const auto sum = hn::Add(
            hn::Add(hn::MulHigh(hn::ShiftLeft<8>(r), weightR), hn::MulHigh(hn::ShiftLeft<8>(g), weightG)),
            hn::Add(hn::MulHigh(hn::ShiftLeft<8>(b), weightB), offset));
        return hn::DemoteTo(d8, hn::BitCast(hn::RebindToSigned<decltype(d16)>(), hn::ShiftRight<8>(sum)));
    };
    for (std::size_t i = 0; i < count; i += lanes) {
        hn::Vec<decltype(d8)> b8, g8, r8, a8;
        hn::LoadInterleaved4(d8, above + 4 * i, b8, g8, r8, a8);
        const auto b0 = hn::PromoteTo(d16, b8);
        const auto g0 = hn::PromoteTo(d16, g8);
        const auto r0 = hn::PromoteTo(d16, r8);
        hn::LoadInterleaved4(d8, below + 4 * i, b8, g8, r8, a8);
        const auto b1 = hn::PromoteTo(d16, b8);
        const auto g1 = hn::PromoteTo(d16, g8);
        const auto r1 = hn::PromoteTo(d16, r8);
        hn::StoreU(luma(r0, g0, b0), d8, lumaAbove + i);
        hn::StoreU(luma(r1, g1, b1), d8, lumaBelow + i);
        hn::StoreU(hn::Add(b0, b1), d16, sumB + i);
        hn::StoreU(hn::Add(g0, g1), d16, sumG + i);
        hn::StoreU(hn::Add(r0, r1), d16, sumR + i);
    }
}

/// Chroma of `count` columns from the sums of two rows: column c looks at sums 2c−1, 2c, 2c+1.
void chromaRow(const std::uint16_t* sumB, const std::uint16_t* sumG, const std::uint16_t* sumR,
               std::size_t count, std::uint8_t* HWY_RESTRICT cb, std::uint8_t* HWY_RESTRICT cr) {
    const hn::ScalableTag<std::uint16_t> d16;
    const hn::Rebind<std::uint8_t, decltype(d16)> d8;
    const hn::RebindToSigned<decltype(d16)> signed16;
    const std::size_t lanes = hn::Lanes(d16);
    const auto weightHalf = hn::Set(d16, half);
    const auto offset = hn::Set(d16, 128 * 256 + 128);
    const auto filtered = [&](const std::uint16_t* sums) {
        hn::Vec<decltype(d16)> before, even, odd, unused;
        hn::LoadInterleaved2(d16, sums - 2, unused, before);
        hn::LoadInterleaved2(d16, sums, even, odd);
        // 8 × the average, moved to the top of 16 bits.
        return hn::ShiftLeft<5>(hn::Add(hn::Add(before, odd), hn::ShiftLeft<1>(even)));
    };
    for (std::size_t i = 0; i < count; i += lanes) {
        const auto b = filtered(sumB + 2 * i);
        const auto g = filtered(sumG + 2 * i);
        const auto r = filtered(sumR + 2 * i);
        const auto u = hn::Sub(hn::Add(hn::MulHigh(b, weightHalf), offset),
                               hn::Add(hn::MulHigh(r, hn::Set(d16, cbR)), hn::MulHigh(g, hn::Set(d16, cbG))));
        const auto v = hn::Sub(hn::Add(hn::MulHigh(r, weightHalf), offset),
                               hn::Add(hn::MulHigh(g, hn::Set(d16, crG)), hn::MulHigh(b, hn::Set(d16, crB))));
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(signed16, hn::ShiftRight<8>(u))), d8, cb + i);
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(signed16, hn::ShiftRight<8>(v))), d8, cr + i);
    }
}

} // namespace HWY_NAMESPACE
} // namespace RecordCore
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace RecordCore {

HWY_EXPORT(lumaRows);
HWY_EXPORT(chromaRow);

namespace {

constexpr int slack = 64; // vectors may run past the end of a row by this many elements

/// Working rows of one thread.
struct Rows {
    std::vector<std::uint8_t> pixels; // two padded source rows
    std::vector<std::uint8_t> luma;
    std::vector<std::uint8_t> chroma;
    std::vector<std::uint16_t> sums;

    void reserve(std::size_t width) {
        const std::size_t row = width + 2 * slack;
        if (luma.size() >= 2 * row) return;
        pixels.resize(8 * row);
        luma.resize(2 * row);
        chroma.resize(2 * row);
        sums.resize(3 * row);
    }
};

/// Moves a converted row into the picture and marks the blocks in which it differs.
void storeRow(const std::uint8_t* fresh, std::uint8_t* old, int x, int count, int unit, std::uint8_t* marks) {
    int done = 0;
    while (done < count) {
        const int block = (x + done) / unit;
        const int length = std::min(count - done, (block + 1) * unit - x - done);
        const auto bytes = static_cast<std::size_t>(length);
        if (std::memcmp(fresh + done, old + done, bytes) != 0) {
            std::memcpy(old + done, fresh + done, bytes);
            marks[block] = 1;
        }
        done += length;
    }
}

} // namespace

void convertScreen(const ScreenPatch& patch, int x, int y, int width, int height, CapturePicture& picture,
                   BlockMap& changed) {
    if (width <= 0 || height <= 0) return;
    thread_local Rows rows;
    const int pictureWidth = picture.width();
    const int from = std::max({x - 2, 0, patch.left});
    const int to = std::min({x + width + 2, pictureWidth, patch.left + patch.source.width / 2 * 2});
    const int count = to - from;
    const std::size_t rowLength = static_cast<std::size_t>(count) + 2 * slack;
    rows.reserve(static_cast<std::size_t>(count));
    std::uint8_t* lumaAbove = rows.luma.data();
    std::uint8_t* lumaBelow = lumaAbove + rowLength;
    std::uint8_t* cb = rows.chroma.data();
    std::uint8_t* cr = cb + rowLength;
    // Two sums stand before the row: the column left of the first one, which repeats at the picture's edge.
    std::uint16_t* sums[3];
    for (int i = 0; i < 3; ++i)
        sums[i] = rows.sums.data() + static_cast<std::size_t>(i) * rowLength + 2;

    const auto pixelCount = static_cast<std::size_t>(count);
    const int chromaFrom = from / 2;
    const int chromaCount = count / 2;
    for (int row = y; row < y + height; row += 2) {
        const std::uint8_t* above = patch.source.pixels + (row - patch.top) * patch.source.stride +
                                    static_cast<std::ptrdiff_t>(from - patch.left) * 4;
        const std::uint8_t* below = above + patch.source.stride;
        // Whole vectors are read: the last ones from a padded copy, so that nothing beyond the row is
        // touched.
        const std::size_t whole = pixelCount / 64 * 64;
        const auto lumaPart = HWY_DYNAMIC_DISPATCH(lumaRows);
        if (whole > 0) lumaPart(above, below, whole, lumaAbove, lumaBelow, sums[0], sums[1], sums[2]);
        if (const std::size_t rest = pixelCount - whole; rest > 0) {
            std::uint8_t* copy = rows.pixels.data();
            std::memcpy(copy, above + 4 * whole, 4 * rest);
            std::memcpy(copy + 4 * slack, below + 4 * whole, 4 * rest);
            lumaPart(copy, copy + 4 * slack, rest, lumaAbove + whole, lumaBelow + whole, sums[0] + whole,
                     sums[1] + whole, sums[2] + whole);
        }
        for (std::uint16_t* sum : sums)
            sum[-1] = sum[0];
        HWY_DYNAMIC_DISPATCH(chromaRow)
        (sums[0], sums[1], sums[2], static_cast<std::size_t>(chromaCount), cb, cr);

        std::uint8_t* marks =
            changed.marks.data() + static_cast<std::ptrdiff_t>(row / BlockMap::blockSize) * changed.columns;
        storeRow(lumaAbove + (x - from), picture.plane(0) + row * picture.stride(0) + x, x, width,
                 BlockMap::blockSize, marks);
        storeRow(lumaBelow + (x - from), picture.plane(0) + (row + 1) * picture.stride(0) + x, x, width,
                 BlockMap::blockSize, marks);
        // The first chroma column lacks its left neighbour, unless the patch starts with the rectangle.
        const int first = from == x ? 0 : 1;
        for (int plane = 1; plane < 3; ++plane)
            storeRow((plane == 1 ? cb : cr) + first,
                     picture.plane(plane) + row / 2 * picture.stride(plane) + chromaFrom + first,
                     chromaFrom + first, chromaCount - first, BlockMap::blockSize / 2, marks);
    }
}

} // namespace RecordCore
#endif
