#include "RecordCore/Rendering/Kernels/Kernels.h"

#include <bit>
#include <cstring>

// This file is compiled once for every instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "RecordCore/Rendering/Kernels/Kernels.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

#ifndef RECORD_CORE_KERNEL_CONSTANTS
#define RECORD_CORE_KERNEL_CONSTANTS
/// Factors of the conversion to R'G'B' after BT.709 in 1 / 32768, less their whole part where it exceeds 1.
namespace RecordCore::Kernels::ToRgb {
constexpr int of(double value) {
    return static_cast<int>(value * 32768 + 0.5);
}
constexpr double kr = 0.2126;
constexpr double kg = 0.7152;
constexpr double kb = 0.0722;
constexpr double forRed = 255 * 2 * (1 - kr) / 224;
constexpr double forBlue = 255 * 2 * (1 - kb) / 224;
constexpr int luma = of(255.0 / 219 - 1);
constexpr int red = of(forRed - 1);
constexpr int blue = of(forBlue - 2);
constexpr int greenFromRed = of(forRed * kr / kg);
constexpr int greenFromBlue = of(forBlue * kb / kg);
} // namespace RecordCore::Kernels::ToRgb
#endif

HWY_BEFORE_NAMESPACE();
namespace RecordCore {
namespace Kernels {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// For rows narrower than the vectors.
void weighRowsPlainly(const std::uint8_t* const* HWY_RESTRICT rows, const std::int16_t* HWY_RESTRICT weights,
                      int taps, std::int16_t* HWY_RESTRICT out, int count) {
    for (int x = 0; x < count; ++x) {
        int sum = 0;
        for (int t = 0; t < taps; ++t) {
            sum += (rows[t][x] * 128 * weights[t] + (1 << 14)) >> 15;
            sum = sum > 32767 ? 32767 : sum < -32768 ? -32768 : sum;
        }
        out[x] = static_cast<std::int16_t>(sum);
    }
}

void weighRows(const std::uint8_t* const* HWY_RESTRICT rows, const std::int16_t* HWY_RESTRICT weights,
               int taps, std::int16_t* HWY_RESTRICT out, int count) {
    const hn::ScalableTag<std::int16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const int lanes = static_cast<int>(hn::Lanes(d));
    if (count < 2 * lanes) {
        weighRowsPlainly(rows, weights, taps, out, count);
        return;
    }
    for (int next = 0; next < count; next += 2 * lanes) {
        // The last block overlaps the one before: nothing beyond the rows is touched.
        const int x = next + 2 * lanes <= count ? next : count - 2 * lanes;
        auto sum0 = hn::Zero(d);
        auto sum1 = hn::Zero(d);
        for (int t = 0; t < taps; ++t) {
            const auto weight = hn::Set(d, weights[t]);
            const auto low = hn::PromoteTo(d, hn::LoadU(d8, rows[t] + x));
            const auto high = hn::PromoteTo(d, hn::LoadU(d8, rows[t] + x + lanes));
            // 128 × value × weight / 32768: six bits of fraction remain in 16 bits.
            sum0 = hn::SaturatedAdd(sum0, hn::MulFixedPoint15(hn::ShiftLeft<7>(low), weight));
            sum1 = hn::SaturatedAdd(sum1, hn::MulFixedPoint15(hn::ShiftLeft<7>(high), weight));
        }
        hn::StoreU(sum0, d, out + x);
        hn::StoreU(sum1, d, out + x + lanes);
    }
}

#if HWY_TARGET == HWY_SCALAR

void weighColumns(const std::int16_t* HWY_RESTRICT in, const std::int32_t* HWY_RESTRICT starts,
                  const std::int16_t* HWY_RESTRICT weights, int padded, std::uint8_t* HWY_RESTRICT out,
                  int count) {
    for (int x = 0; x < count; ++x) {
        const int place = padded == 4 ? x % 2 * 16 + x % 8 / 2 * 4 : x % 4 * 16 + x % 8 / 4 * 8;
        const std::int16_t* w = weights + static_cast<std::ptrdiff_t>(x / 8) * 8 * padded + place;
        std::int32_t sum = 1 << 19;
        for (int t = 0; t < padded; ++t)
            sum += in[starts[x] + t] * w[t / 8 * 64 + t % 8];
        sum >>= 20;
        out[x] = static_cast<std::uint8_t>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
    }
}

#else

/// The sums of the lanes of four vectors, within each block of 128 bits.
template <class D32, class V = hn::Vec<D32>>
HWY_INLINE V laneSums(D32 d32, V a, V b, V c, V e) {
    const hn::Repartition<std::int64_t, D32> d64;
    const auto ab = hn::Add(hn::InterleaveLower(d32, a, b), hn::InterleaveUpper(d32, a, b));
    const auto ce = hn::Add(hn::InterleaveLower(d32, c, e), hn::InterleaveUpper(d32, c, e));
    const auto low = hn::InterleaveLower(d64, hn::BitCast(d64, ab), hn::BitCast(d64, ce));
    const auto high = hn::InterleaveUpper(d64, hn::BitCast(d64, ab), hn::BitCast(d64, ce));
    return hn::Add(hn::BitCast(d32, low), hn::BitCast(d32, high));
}

/// The products of two outputs' four taps in each block of 128 bits, added in pairs.
template <class D32, class V16>
HWY_INLINE hn::Vec<D32> pairSums(D32 d32, V16 samples, V16 weights) {
    auto rest = hn::Zero(d32);
    const auto sum = hn::ReorderWidenMulAccumulate(d32, samples, weights, hn::Zero(d32), rest);
    return hn::RearrangeToOddPlusEven(sum, rest);
}

/// From the pairs of the outputs 0, 2 and 1, 3 the sums of the outputs 0 to 3, within each block of 128 bits.
template <class D32, class V = hn::Vec<D32>>
HWY_INLINE V inOrder(D32 d32, V even, V odd) {
    const hn::Repartition<std::int64_t, D32> d64;
    const auto low = hn::BitCast(d64, hn::InterleaveLower(d32, even, odd));
    const auto high = hn::BitCast(d64, hn::InterleaveUpper(d32, even, odd));
    return hn::Add(hn::BitCast(d32, hn::InterleaveLower(d64, low, high)),
                   hn::BitCast(d32, hn::InterleaveUpper(d64, low, high)));
}

/// Of four taps, as where a picture is enlarged: two outputs to a block.
void weighFourColumns(const std::int16_t* HWY_RESTRICT in, const std::int32_t* HWY_RESTRICT starts,
                      const std::int16_t* HWY_RESTRICT weights, std::uint8_t* HWY_RESTRICT out, int count) {
    const hn::FixedTag<std::uint8_t, 8> d8;
    const hn::FixedTag<std::int16_t, 8> half;
    const hn::FixedTag<std::int16_t, 4> quarter;
    for (int x = 0; x < count; x += 8, starts += 8, weights += 32) {
        const auto two = [&](int i, int j) HWY_ATTR {
            return hn::Combine(half, hn::LoadU(quarter, in + starts[j]), hn::LoadU(quarter, in + starts[i]));
        };
#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE
        const hn::FixedTag<std::int16_t, 16> d16;
        const hn::FixedTag<std::int32_t, 8> d32;
        const auto even = hn::Combine(d16, two(4, 6), two(0, 2));
        const auto odd = hn::Combine(d16, two(5, 7), two(1, 3));
        const auto sums = inOrder(d32, pairSums(d32, even, hn::LoadU(d16, weights)),
                                  pairSums(d32, odd, hn::LoadU(d16, weights + 16)));
        const auto all = hn::DemoteTo(half, hn::ShiftRight<20>(hn::Add(sums, hn::Set(d32, 1 << 19))));
#else
        const hn::FixedTag<std::int32_t, 4> d32;
        const auto four = [&](int first) HWY_ATTR {
            const auto sums =
                inOrder(d32, pairSums(d32, two(first, first + 2), hn::LoadU(half, weights + first * 2)),
                        pairSums(d32, two(first + 1, first + 3), hn::LoadU(half, weights + 16 + first * 2)));
            return hn::DemoteTo(quarter, hn::ShiftRight<20>(hn::Add(sums, hn::Set(d32, 1 << 19))));
        };
        const auto low = four(0);
        const auto all = hn::Combine(half, four(4), low);
#endif
        hn::StoreU(hn::DemoteTo(d8, all), d8, out + x);
    }
}

void weighColumns(const std::int16_t* HWY_RESTRICT in, const std::int32_t* HWY_RESTRICT starts,
                  const std::int16_t* HWY_RESTRICT weights, int padded, std::uint8_t* HWY_RESTRICT out,
                  int count) {
    if (padded == 4) {
        weighFourColumns(in, starts, weights, out, count);
        return;
    }
    const hn::FixedTag<std::int16_t, 8> half;
    const hn::FixedTag<std::uint8_t, 8> d8;
    for (int x = 0; x < count; x += 8, starts += 8) {
#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE
        // Two outputs in one vector: i in the lower, i + 4 in the upper half.
        const hn::FixedTag<std::int16_t, 16> d16;
        const hn::FixedTag<std::int32_t, 8> d32;
        auto a = hn::Zero(d32);
        auto b = a;
        auto c = a;
        auto e = a;
        auto rest = a; // the other half of the products, where they are not added in pairs
        auto restB = a;
        auto restC = a;
        auto restE = a;
        const auto pair = [&](int i, int t) HWY_ATTR {
            return hn::Combine(d16, hn::LoadU(half, in + starts[i + 4] + t),
                               hn::LoadU(half, in + starts[i] + t));
        };
        for (int t = 0; t < padded; t += 8, weights += 64) {
            a = hn::ReorderWidenMulAccumulate(d32, pair(0, t), hn::LoadU(d16, weights), a, rest);
            b = hn::ReorderWidenMulAccumulate(d32, pair(1, t), hn::LoadU(d16, weights + 16), b, restB);
            c = hn::ReorderWidenMulAccumulate(d32, pair(2, t), hn::LoadU(d16, weights + 32), c, restC);
            e = hn::ReorderWidenMulAccumulate(d32, pair(3, t), hn::LoadU(d16, weights + 48), e, restE);
        }
        const auto sums =
            laneSums(d32, hn::Add(a, rest), hn::Add(b, restB), hn::Add(c, restC), hn::Add(e, restE));
        const auto rounded = hn::ShiftRight<20>(hn::Add(sums, hn::Set(d32, 1 << 19)));
        hn::StoreU(hn::DemoteTo(d8, hn::DemoteTo(half, rounded)), d8, out + x);
#else
        const hn::FixedTag<std::int32_t, 4> d32;
        const hn::Half<decltype(half)> quarter;
        const auto four = [&](int first) HWY_ATTR {
            auto a = hn::Zero(d32);
            auto b = a;
            auto c = a;
            auto e = a;
            auto restA = a;
            auto restB = a;
            auto restC = a;
            auto restE = a;
            const std::int16_t* w = weights + first * 2;
            const std::int32_t* s = starts + first;
            for (int t = 0; t < padded; t += 8, w += 64) {
                a = hn::ReorderWidenMulAccumulate(d32, hn::LoadU(half, in + s[0] + t), hn::LoadU(half, w), a,
                                                  restA);
                b = hn::ReorderWidenMulAccumulate(d32, hn::LoadU(half, in + s[1] + t),
                                                  hn::LoadU(half, w + 16), b, restB);
                c = hn::ReorderWidenMulAccumulate(d32, hn::LoadU(half, in + s[2] + t),
                                                  hn::LoadU(half, w + 32), c, restC);
                e = hn::ReorderWidenMulAccumulate(d32, hn::LoadU(half, in + s[3] + t),
                                                  hn::LoadU(half, w + 48), e, restE);
            }
            const auto sums =
                laneSums(d32, hn::Add(a, restA), hn::Add(b, restB), hn::Add(c, restC), hn::Add(e, restE));
            return hn::DemoteTo(quarter, hn::ShiftRight<20>(hn::Add(sums, hn::Set(d32, 1 << 19))));
        };
        const auto low = four(0);
        const auto high = four(4);
        hn::StoreU(hn::DemoteTo(d8, hn::Combine(half, high, low)), d8, out + x);
        weights += 8 * padded;
#endif
    }
}

#endif

#if HWY_TARGET == HWY_SCALAR

void rowToBgra(const std::uint8_t* HWY_RESTRICT luma, const std::int16_t* HWY_RESTRICT cb,
               const std::int16_t* HWY_RESTRICT cr, std::uint8_t* HWY_RESTRICT out, int count) {
    const auto times = [](int value, int factor) { return (value * factor + (1 << 14)) >> 15; };
    const auto limited = [](int value) {
        value = value > 32767 ? 32767 : value < -32768 ? -32768 : value;
        value = (value + 32 > 32767 ? 32767 : value + 32) >> 6;
        return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
    };
    const auto saturated = [](int value) { return value > 32767 ? 32767 : value < -32768 ? -32768 : value; };
    for (int x = 0; x < count; ++x) {
        const int y = (luma[x] - 16) * 64;
        const int light = y + times(y, ToRgb::luma);
        const int blue = cb[x] * 8;
        const int red = cr[x] * 8;
        out[4 * x] = limited(saturated(light + blue) + saturated(blue + times(blue, ToRgb::blue)));
        out[4 * x + 1] =
            limited(light - saturated(times(red, ToRgb::greenFromRed) + times(blue, ToRgb::greenFromBlue)));
        out[4 * x + 2] = limited(saturated(light + red) + times(red, ToRgb::red));
        out[4 * x + 3] = 255;
    }
}

#else

void rowToBgra(const std::uint8_t* HWY_RESTRICT luma, const std::int16_t* HWY_RESTRICT cb,
               const std::int16_t* HWY_RESTRICT cr, std::uint8_t* HWY_RESTRICT out, int count) {
    const hn::ScalableTag<std::int16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const auto opaque = hn::Set(d8, 255);
    const auto byte = [&](hn::Vec<decltype(d)> value) HWY_ATTR {
        return hn::DemoteTo(d8, hn::ShiftRight<6>(hn::SaturatedAdd(value, hn::Set(d, 32))));
    };
    const auto times = [&](hn::Vec<decltype(d)> value, int factor) HWY_ATTR {
        return hn::MulFixedPoint15(value, hn::Set(d, static_cast<std::int16_t>(factor)));
    };
    for (int x = 0; x < count; x += lanes) {
        const auto y = hn::ShiftLeft<6>(hn::Sub(hn::PromoteTo(d, hn::LoadU(d8, luma + x)), hn::Set(d, 16)));
        const auto light = hn::Add(y, times(y, ToRgb::luma));
        const auto blue = hn::ShiftLeft<3>(hn::LoadU(d, cb + x));
        const auto red = hn::ShiftLeft<3>(hn::LoadU(d, cr + x));
        const auto b = byte(hn::SaturatedAdd(hn::SaturatedAdd(light, blue),
                                             hn::SaturatedAdd(blue, times(blue, ToRgb::blue))));
        const auto g = byte(hn::SaturatedSub(
            light, hn::SaturatedAdd(times(red, ToRgb::greenFromRed), times(blue, ToRgb::greenFromBlue))));
        const auto r = byte(hn::SaturatedAdd(hn::SaturatedAdd(light, red), times(red, ToRgb::red)));
        hn::StoreInterleaved4(b, g, r, opaque, d8, out + static_cast<std::ptrdiff_t>(x) * 4);
    }
}

#endif

/// x / 255 rounded to nearest, for x up to 65279.
template <class V>
HWY_INLINE V div255(V x) {
    const hn::DFromV<V> d;
    const auto t = hn::Add(x, hn::Set(d, 128));
    return hn::ShiftRight<8>(hn::Add(t, hn::ShiftRight<8>(t)));
}

HWY_INLINE int div255(int x) {
    const int t = x + 128;
    return (t + (t >> 8)) >> 8;
}

void mixUnder(std::uint8_t* HWY_RESTRICT picture, const std::uint8_t* HWY_RESTRICT under,
              const std::uint8_t* HWY_RESTRICT mask, int count) {
    const hn::ScalableTag<std::uint16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const auto full = hn::Set(d, 255);
    int x = 0;
    for (; x + lanes <= count; x += lanes) {
        const auto m = hn::PromoteTo(d, hn::LoadU(d8, mask + x));
        const auto top = hn::PromoteTo(d, hn::LoadU(d8, picture + x));
        const auto bottom = hn::PromoteTo(d, hn::LoadU(d8, under + x));
        const auto mixed = div255(hn::Add(hn::Mul(top, m), hn::Mul(bottom, hn::Sub(full, m))));
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(hn::RebindToSigned<decltype(d)>(), mixed)), d8, picture + x);
    }
    for (; x < count; ++x)
        picture[x] = static_cast<std::uint8_t>(div255(picture[x] * mask[x] + under[x] * (255 - mask[x])));
}

void layOver(std::uint8_t* HWY_RESTRICT picture, const std::uint8_t* HWY_RESTRICT color,
             const std::uint8_t* HWY_RESTRICT alpha, int fade, int count) {
    const hn::ScalableTag<std::uint16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const auto full = hn::Set(d, 255);
    const auto f = hn::Set(d, static_cast<std::uint16_t>(fade));
    int x = 0;
    for (; x + lanes <= count; x += lanes) {
        const auto m = div255(hn::Mul(hn::PromoteTo(d, hn::LoadU(d8, alpha + x)), f));
        const auto top = hn::Mul(hn::PromoteTo(d, hn::LoadU(d8, color + x)), f);
        const auto bottom = hn::Mul(hn::PromoteTo(d, hn::LoadU(d8, picture + x)), hn::Sub(full, m));
        const auto mixed = div255(hn::Add(top, bottom));
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(hn::RebindToSigned<decltype(d)>(), mixed)), d8, picture + x);
    }
    for (; x < count; ++x) {
        const int m = div255(alpha[x] * fade);
        picture[x] = static_cast<std::uint8_t>(div255(picture[x] * (255 - m) + color[x] * fade));
    }
}

void layConstant(std::uint8_t* HWY_RESTRICT picture, int color, int alpha, int fade, int count) {
    const hn::ScalableTag<std::uint16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const int lanes = static_cast<int>(hn::Lanes(d));
    const int m = div255(alpha * fade);
    const auto rest = hn::Set(d, static_cast<std::uint16_t>(255 - m));
    const auto top = hn::Set(d, static_cast<std::uint16_t>(color * fade));
    int x = 0;
    for (; x + lanes <= count; x += lanes) {
        const auto bottom = hn::Mul(hn::PromoteTo(d, hn::LoadU(d8, picture + x)), rest);
        const auto mixed = div255(hn::Add(top, bottom));
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(hn::RebindToSigned<decltype(d)>(), mixed)), d8, picture + x);
    }
    for (; x < count; ++x)
        picture[x] = static_cast<std::uint8_t>(div255(picture[x] * (255 - m) + color * fade));
}

void markDifferences(const std::uint8_t* HWY_RESTRICT a, const std::uint8_t* HWY_RESTRICT b, int count,
                     int chunk, std::uint8_t* HWY_RESTRICT changed) {
    const hn::CappedTag<std::uint8_t, 32> d;
    const int lanes = static_cast<int>(hn::Lanes(d));
    int index = 0;
    int x = 0;
    for (; x + chunk <= count; x += chunk, ++index) {
        auto different = hn::Zero(d);
        for (int i = 0; i < chunk; i += lanes)
            different = hn::Or(different, hn::Xor(hn::LoadU(d, a + x + i), hn::LoadU(d, b + x + i)));
        if (!hn::AllTrue(d, hn::Eq(different, hn::Zero(d)))) changed[index] = 1;
    }
    if (x < count && std::memcmp(a + x, b + x, static_cast<std::size_t>(count - x)) != 0) changed[index] = 1;
}

const char* targetName() {
    return hwy::TargetName(HWY_TARGET);
}

} // namespace HWY_NAMESPACE
} // namespace Kernels
} // namespace RecordCore
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace RecordCore {
namespace Kernels {

HWY_EXPORT(weighRows);
HWY_EXPORT(weighColumns);
HWY_EXPORT(mixUnder);
HWY_EXPORT(rowToBgra);
HWY_EXPORT(layOver);
HWY_EXPORT(layConstant);
HWY_EXPORT(markDifferences);
HWY_EXPORT(targetName);

void weighRows(const std::uint8_t* const* rows, const std::int16_t* weights, int taps, std::int16_t* out,
               int count) {
    HWY_DYNAMIC_DISPATCH(weighRows)(rows, weights, taps, out, count);
}

void weighColumns(const std::int16_t* in, const std::int32_t* starts, const std::int16_t* weights, int padded,
                  std::uint8_t* out, int count) {
    HWY_DYNAMIC_DISPATCH(weighColumns)(in, starts, weights, padded, out, count);
}

void rowToBgra(const std::uint8_t* luma, const std::int16_t* cb, const std::int16_t* cr, std::uint8_t* out,
               int count) {
    HWY_DYNAMIC_DISPATCH(rowToBgra)(luma, cb, cr, out, count);
}

void mixUnder(std::uint8_t* picture, const std::uint8_t* under, const std::uint8_t* mask, int count) {
    HWY_DYNAMIC_DISPATCH(mixUnder)(picture, under, mask, count);
}

void layOver(std::uint8_t* picture, const std::uint8_t* color, const std::uint8_t* alpha, int fade,
             int count) {
    HWY_DYNAMIC_DISPATCH(layOver)(picture, color, alpha, fade, count);
}

void layConstant(std::uint8_t* picture, int color, int alpha, int fade, int count) {
    HWY_DYNAMIC_DISPATCH(layConstant)(picture, color, alpha, fade, count);
}

void markDifferences(const std::uint8_t* a, const std::uint8_t* b, int count, int chunk,
                     std::uint8_t* changed) {
    HWY_DYNAMIC_DISPATCH(markDifferences)(a, b, count, chunk, changed);
}

const char* targetName() {
    return HWY_DYNAMIC_DISPATCH(targetName)();
}

int targetCount() {
    hwy::SetSupportedTargetsForTest(0);
    return std::popcount(static_cast<std::uint64_t>(hwy::SupportedTargets() & HWY_TARGETS));
}

void useTarget(int index) {
    hwy::SetSupportedTargetsForTest(0);
    if (index < 0) {
        hwy::GetChosenTarget().DeInit();
        return;
    }
    std::uint64_t targets = static_cast<std::uint64_t>(hwy::SupportedTargets() & HWY_TARGETS);
    for (int i = 0; i < index; ++i)
        targets &= targets - 1;
    hwy::SetSupportedTargetsForTest(static_cast<std::int64_t>(targets & (~targets + 1)));
    hwy::GetChosenTarget().DeInit();
}

} // namespace Kernels
} // namespace RecordCore
#endif
