#include "RecordCore/Rendering/Kernels/Kernels.h"

#include <bit>
#include <cstring>

// This file is compiled once for every instruction set.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "RecordCore/Rendering/Kernels/Kernels.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

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

#if HWY_TARGET != HWY_SCALAR

/// The products of eight samples and weights, added up into four lanes.
template <class D32>
HWY_INLINE hn::Vec<D32> products(D32 d32, const std::int16_t* HWY_RESTRICT in,
                                 const std::int16_t* HWY_RESTRICT weights, int padded) {
    const hn::Repartition<std::int16_t, D32> d16;
    auto low = hn::Zero(d32);
    auto high = hn::Zero(d32);
    for (int t = 0; t < padded; t += 8)
        low = hn::ReorderWidenMulAccumulate(d32, hn::LoadU(d16, in + t), hn::LoadU(d16, weights + t), low,
                                            high);
    return hn::Add(low, high);
}

/// The sums of the lanes of four vectors.
template <class D32>
HWY_INLINE hn::Vec<D32> laneSums(D32 d32, hn::Vec<D32> a, hn::Vec<D32> b, hn::Vec<D32> c, hn::Vec<D32> e) {
    const hn::Repartition<std::int64_t, D32> d64;
    const auto ab = hn::Add(hn::InterleaveLower(d32, a, b), hn::InterleaveUpper(d32, a, b));
    const auto ce = hn::Add(hn::InterleaveLower(d32, c, e), hn::InterleaveUpper(d32, c, e));
    const auto low = hn::InterleaveLower(d64, hn::BitCast(d64, ab), hn::BitCast(d64, ce));
    const auto high = hn::InterleaveUpper(d64, hn::BitCast(d64, ab), hn::BitCast(d64, ce));
    return hn::Add(hn::BitCast(d32, low), hn::BitCast(d32, high));
}

/// Whole groups of eight; returns how many samples are done.
int weighColumnGroups(const std::int16_t* HWY_RESTRICT in, const std::int32_t* HWY_RESTRICT starts,
                      const std::int16_t* HWY_RESTRICT weights, int padded, std::uint8_t* HWY_RESTRICT out,
                      int count) {
    const hn::FixedTag<std::int32_t, 4> d32;
    const hn::FixedTag<std::int16_t, 8> d16;
    const hn::FixedTag<std::uint8_t, 8> d8;
    const auto half = hn::Set(d32, 1 << 19);
    const auto four = [&](int x) HWY_ATTR {
        const std::int16_t* w = weights + static_cast<std::ptrdiff_t>(x) * padded;
        const auto a = products(d32, in + starts[x], w, padded);
        const auto b = products(d32, in + starts[x + 1], w + padded, padded);
        const auto c = products(d32, in + starts[x + 2], w + 2 * padded, padded);
        const auto e = products(d32, in + starts[x + 3], w + 3 * padded, padded);
        return hn::ShiftRight<20>(hn::Add(laneSums(d32, a, b, c, e), half));
    };
    int x = 0;
    for (; x + 8 <= count; x += 8) {
        const hn::Half<decltype(d16)> d16half;
        const auto low = hn::DemoteTo(d16half, four(x));
        const auto high = hn::DemoteTo(d16half, four(x + 4));
        hn::StoreU(hn::DemoteTo(d8, hn::Combine(d16, high, low)), d8, out + x);
    }
    return x;
}

#else

int weighColumnGroups(const std::int16_t*, const std::int32_t*, const std::int16_t*, int, std::uint8_t*,
                      int) {
    return 0;
}

#endif

void weighColumns(const std::int16_t* HWY_RESTRICT in, const std::int32_t* HWY_RESTRICT starts,
                  const std::int16_t* HWY_RESTRICT weights, int padded, std::uint8_t* HWY_RESTRICT out,
                  int count) {
    int x = weighColumnGroups(in, starts, weights, padded, out, count);
    for (; x < count; ++x) {
        const std::int16_t* w = weights + static_cast<std::ptrdiff_t>(x) * padded;
        std::int32_t sum = 1 << 19;
        for (int t = 0; t < padded; ++t)
            sum += in[starts[x] + t] * w[t];
        sum >>= 20;
        out[x] = static_cast<std::uint8_t>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
    }
}

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
