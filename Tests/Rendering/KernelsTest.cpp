#include "RecordCore/Rendering/Kernels/Kernels.h"
#include "RecordCore/Rendering/ColorMatrix.h"
#include "Tests/Rendering/SamplePictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

using namespace RecordCore;
using SamplePictures::Random;

namespace {

/// Runs the body once for every instruction set of this machine.
class KernelsTest : public ::testing::Test {
protected:
    template <typename Body>
    void onEveryTarget(Body body) {
        for (int target = 0; target < Kernels::targetCount(); ++target) {
            Kernels::useTarget(target);
            SCOPED_TRACE(Kernels::targetName());
            body();
        }
    }
    void TearDown() override { Kernels::useTarget(-1); }

    std::vector<std::uint8_t> bytes(int count) {
        std::vector<std::uint8_t> result(static_cast<std::size_t>(count));
        for (std::uint8_t& byte : result)
            byte = static_cast<std::uint8_t>(random.below(256));
        return result;
    }
    Random random{7};
};

const int lengths[] = {1, 2, 7, 8, 15, 16, 31, 33, 64, 100, 257};

TEST_F(KernelsTest, weighsRows) {
    for (const int count : lengths)
        for (const int taps : {1, 4, 11}) {
            std::vector<std::vector<std::uint8_t>> rows;
            std::vector<const std::uint8_t*> pointers;
            std::vector<std::int16_t> weights;
            for (int t = 0; t < taps; ++t) {
                rows.push_back(bytes(count));
                weights.push_back(static_cast<std::int16_t>(taps == 1 ? 16384 : random.below(8000) - 2500));
            }
            for (const auto& row : rows)
                pointers.push_back(row.data());
            std::vector<std::int16_t> first;
            onEveryTarget([&] {
                std::vector<std::int16_t> out(static_cast<std::size_t>(count) + 1, 12345);
                Kernels::weighRows(pointers.data(), weights.data(), taps, out.data(), count);
                for (int x = 0; x < count; ++x) {
                    double exact = 0;
                    for (int t = 0; t < taps; ++t)
                        exact += rows[static_cast<std::size_t>(t)][static_cast<std::size_t>(x)] *
                                 weights[static_cast<std::size_t>(t)] / 256.0;
                    ASSERT_NEAR(out[static_cast<std::size_t>(x)], exact, 0.5 * taps + 0.01);
                }
                EXPECT_EQ(out.back(), 12345) << "wrote beyond the end";
                if (first.empty()) first = out;
                EXPECT_EQ(out, first);
            });
        }
}

TEST_F(KernelsTest, weighsColumns) {
    for (const int count : {8, 16, 40, 256})
        for (const int padded : {4, 8, 16, 24}) {
            std::vector<std::int16_t> in(600);
            for (std::int16_t& sample : in)
                sample = static_cast<std::int16_t>(random.below(22000) - 2000);
            std::vector<std::int32_t> starts;
            std::vector<std::int16_t> weights(static_cast<std::size_t>(count * padded));
            std::vector<double> expected;
            // Where an output's weights stand in its group.
            const std::array<int, 8> order =
                padded == 4 ? std::array{0, 4, 1, 5, 2, 6, 3, 7} : std::array{0, 2, 4, 6, 1, 3, 5, 7};
            const int together = std::min(padded, 8);
            for (int x = 0; x < count; ++x) {
                starts.push_back(random.below(500));
                double sum = 0;
                for (int t = 0; t < padded; ++t) {
                    const auto weight = static_cast<std::int16_t>(random.below(6000) - 1500);
                    const int place = x / 8 * 8 * padded + t / 8 * 64 +
                                      order[static_cast<std::size_t>(x % 8)] * together + t % 8;
                    weights[static_cast<std::size_t>(place)] = weight;
                    sum += static_cast<double>(in[static_cast<std::size_t>(starts.back() + t)]) * weight;
                }
                expected.push_back(std::clamp(std::floor(sum / (16384.0 * 64) + 0.5), 0.0, 255.0));
            }
            onEveryTarget([&] {
                std::vector<std::uint8_t> out(static_cast<std::size_t>(count) + 1, 77);
                Kernels::weighColumns(in.data(), starts.data(), weights.data(), padded, out.data(), count);
                for (int x = 0; x < count; ++x)
                    ASSERT_EQ(out[static_cast<std::size_t>(x)], expected[static_cast<std::size_t>(x)]) << x;
                EXPECT_EQ(out.back(), 77) << "wrote beyond the end";
            });
        }
}

TEST_F(KernelsTest, convertsToBgra) {
    const int count = 500;
    const auto luma = bytes(count + 64);
    std::vector<std::int16_t> cb;
    std::vector<std::int16_t> cr;
    for (int x = 0; x < count + 64; ++x) {
        cb.push_back(static_cast<std::int16_t>(random.below(2040) - 1024));
        cr.push_back(static_cast<std::int16_t>(random.below(2040) - 1024));
    }
    std::vector<std::uint8_t> first;
    onEveryTarget([&] {
        std::vector<std::uint8_t> out((count + 64) * 4);
        Kernels::rowToBgra(luma.data(), cb.data(), cr.data(), out.data(), count);
        out.resize(count * 4);
        for (std::size_t x = 0; x < count; ++x) {
            const Rgb exact = Bt709::toRgb(luma[x], 128 + cb[x] / 8.0, 128 + cr[x] / 8.0);
            ASSERT_NEAR(out[4 * x], std::clamp(exact.b * 255, 0.0, 255.0), 0.6);
            ASSERT_NEAR(out[4 * x + 1], std::clamp(exact.g * 255, 0.0, 255.0), 0.6);
            ASSERT_NEAR(out[4 * x + 2], std::clamp(exact.r * 255, 0.0, 255.0), 0.6);
            ASSERT_EQ(out[4 * x + 3], 255);
        }
        if (first.empty()) first = out;
        EXPECT_EQ(out, first);
    });
}

TEST_F(KernelsTest, mixes) {
    for (const int count : lengths) {
        const auto picture = bytes(count);
        const auto other = bytes(count);
        auto alpha = bytes(count);
        alpha[0] = 255;
        alpha[static_cast<std::size_t>(count) / 2] = 0;
        std::vector<std::uint8_t> color(other);
        for (std::size_t x = 0; x < color.size(); ++x)
            color[x] =
                static_cast<std::uint8_t>(other[x] * alpha[x] / 255); // premultiplied: never above alpha
        for (const int fade : {1, 100, 254, 255})
            onEveryTarget([&] {
                auto under = picture;
                auto over = picture;
                auto constant = picture;
                Kernels::mixUnder(under.data(), other.data(), alpha.data(), count);
                Kernels::layOver(over.data(), color.data(), alpha.data(), fade, count);
                Kernels::layConstant(constant.data(), 99, 140, fade, count);
                for (std::size_t x = 0; x < picture.size(); ++x) {
                    const double a = alpha[x] / 255.0;
                    const double f = fade / 255.0;
                    ASSERT_EQ(under[x], std::floor(picture[x] * a + other[x] * (1 - a) + 0.5));
                    ASSERT_NEAR(over[x], picture[x] * (1 - a * f) + color[x] * f, 1);
                    ASSERT_NEAR(constant[x], picture[x] * (1 - 140 / 255.0 * f) + 99 * f, 1);
                }
            });
        // Nothing over a picture, and a full layer over it.
        onEveryTarget([&] {
            auto same = picture;
            const std::vector<std::uint8_t> none(picture.size(), 0);
            Kernels::layOver(same.data(), none.data(), none.data(), 255, count);
            EXPECT_EQ(same, picture);
            const std::vector<std::uint8_t> full(picture.size(), 255);
            Kernels::layOver(same.data(), other.data(), full.data(), 255, count);
            EXPECT_EQ(same, other);
        });
    }
}

TEST_F(KernelsTest, findsDifferences) {
    for (const int chunk : {32, 64})
        for (const int count : {1, 31, 64, 65, 200, 512}) {
            const auto a = bytes(count);
            for (int changed = 0; changed < count; changed += 7) {
                auto b = a;
                b[static_cast<std::size_t>(changed)] ^= 1;
                std::vector<std::uint8_t> expected(static_cast<std::size_t>((count + chunk - 1) / chunk), 0);
                expected[static_cast<std::size_t>(changed / chunk)] = 1;
                onEveryTarget([&] {
                    std::vector<std::uint8_t> flags(expected.size(), 0);
                    Kernels::markDifferences(a.data(), b.data(), count, chunk, flags.data());
                    EXPECT_EQ(flags, expected);
                });
            }
        }
}

} // namespace
