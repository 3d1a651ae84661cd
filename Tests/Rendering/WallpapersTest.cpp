#include "RecordCore/Rendering/Wallpapers.h"

#include "RecordCore/Model/Look.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Rendering/Compositor.h"
#include "RecordCore/Rendering/Wallpapers/LinearRgb.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"
#include "RecordCore/Rendering/Wallpapers/Stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <thread>

using namespace RecordCore;

namespace {

const FloatPlane& plane(const RgbPlanes& planes, int index) {
    return index == 0 ? planes.red : index == 1 ? planes.green : planes.blue;
}

bool same(const RgbPlanes& a, const RgbPlanes& b) {
    return a.red.samples == b.red.samples && a.green.samples == b.green.samples &&
           a.blue.samples == b.blue.samples;
}

TEST(Wallpapers, everyOneIsAPictureInEverySize) {
    std::set<std::string_view> names;
    std::set<std::string_view> families;
    for (const Wallpapers::Entry& entry : Wallpapers::all()) {
        SCOPED_TRACE(entry.name);
        EXPECT_TRUE(names.insert(entry.name).second) << "twice";
        families.insert(entry.family);
        EXPECT_FALSE(entry.title.empty());
        EXPECT_TRUE(Wallpapers::exists(entry.name));
        for (const auto& [width, height] :
             {std::pair{1, 1}, {2, 3}, {97, 1}, {1, 64}, {129, 73}, {72, 90}, {54, 96}, {64, 64}}) {
            const auto drawn = Wallpapers::draw(entry.name, width, height);
            ASSERT_TRUE(drawn);
            ASSERT_EQ(drawn->width(), width);
            ASSERT_EQ(drawn->height(), height);
            double low = 1;
            double high = 0;
            for (int i = 0; i < 3; ++i)
                for (const float sample : plane(*drawn, i).samples) {
                    ASSERT_TRUE(sample >= 0 && sample <= 1) << sample;
                    low = std::min(low, static_cast<double>(sample));
                    high = std::max(high, static_cast<double>(sample));
                }
            const double least = width > 50 && height > 50 ? 0.05 : 0;
            EXPECT_GE(high - low, least) << "one plain colour";
        }
    }
    EXPECT_GE(families.size(), 7U);
    EXPECT_TRUE(names.contains(*Project().wallpaperPreset)) << "what every new project has";
    for (const char* name : {"", "Orbit", "orbit ", "no such wallpaper"}) {
        EXPECT_FALSE(Wallpapers::draw(name, 16, 9)) << name;
        EXPECT_FALSE(Wallpapers::exists(name));
        EXPECT_FALSE(Wallpapers::isLight(name));
    }
    EXPECT_FALSE(Wallpapers::draw("orbit", 0, 9));
    EXPECT_FALSE(Wallpapers::draw("orbit", 16, -9));
}

TEST(Wallpapers, areTheSameOnEveryThread) {
    for (const Wallpapers::Entry& entry : Wallpapers::all()) {
        const auto alone = Wallpapers::draw(entry.name, 101, 57);
        std::array<std::optional<RgbPlanes>, 3> drawn;
        std::vector<std::thread> threads;
        for (auto& out : drawn)
            threads.emplace_back([&out, &entry] { out = Wallpapers::draw(entry.name, 101, 57); });
        for (std::thread& thread : threads)
            thread.join();
        for (const auto& out : drawn)
            EXPECT_TRUE(same(*out, *alone)) << entry.name;
    }
}

TEST(Wallpapers, areKeptForTheNextTime) {
    const auto first = Wallpapers::kept("orbit", 160, 90);
    EXPECT_TRUE(same(*first, *Wallpapers::draw("orbit", 160, 90)));
    const auto second = Wallpapers::kept("silk-pearl", 160, 90);
    EXPECT_EQ(Wallpapers::kept("orbit", 160, 90), first);
    EXPECT_EQ(Wallpapers::kept("silk-pearl", 160, 90), second);
    // Another name or size is another picture, and the one unused the longest goes.
    EXPECT_EQ(Wallpapers::kept("orbit", 90, 160)->height(), 160);
    EXPECT_FALSE(same(*Wallpapers::kept("mesh-dusk", 160, 90), *second));
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(Wallpapers::kept("no such wallpaper", 160, 90), nullptr);
    EXPECT_EQ(Wallpapers::kept("orbit", 0, 90), nullptr);
    EXPECT_EQ(Wallpapers::kept("mesh-dusk", 1600, 1000), nullptr) << "a film's would only take memory";
}

TEST(Wallpapers, areTheSameCompositionInEverySize) {
    constexpr int width = 384;
    constexpr int height = 216;
    constexpr int factor = 2;
    for (const Wallpapers::Entry& entry : Wallpapers::all()) {
        const auto small = Wallpapers::draw(entry.name, width, height);
        const auto big = Wallpapers::draw(entry.name, width * factor, height * factor);
        double difference = 0;
        int far = 0;
        for (int i = 0; i < 3; ++i)
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    double sum = 0;
                    for (int dy = 0; dy < factor; ++dy)
                        for (int dx = 0; dx < factor; ++dx)
                            sum += plane(*big, i).row(y * factor + dy)[x * factor + dx];
                    const double off = std::abs(sum / (factor * factor) - plane(*small, i).row(y)[x]);
                    difference += off;
                    far += off > 0.06;
                }
        EXPECT_LT(difference / (3.0 * width * height), 0.004) << entry.name;
        EXPECT_LT(far, 3 * width * height / 50) << entry.name << ": edges and lines in other places";
    }
}

TEST(Wallpapers, areDrawnWhereALookNamesOne) {
    const auto compositor = [](const char* preset, std::optional<Rgb> solid = {}) {
        CompositorSettings settings;
        settings.scale = 0.25;
        settings.sourceAspect = 1; // leaves the sides free
        settings.look.wallpaperPreset = preset;
        settings.look.solid = solid;
        return std::make_unique<Compositor>(settings);
    };
    const auto plain = compositor("");
    EXPECT_TRUE(compositor("no such wallpaper")->backdrop() == plain->backdrop()) << "falls to the gradient";
    EXPECT_TRUE(compositor("orbit", Rgb{0.2, 0.3, 0.4})->backdrop() ==
                compositor("", Rgb{0.2, 0.3, 0.4})->backdrop())
        << "a solid colour comes first";
    for (const Wallpapers::Entry& entry : Wallpapers::all()) {
        const auto drawn = compositor(entry.name.data());
        EXPECT_FALSE(drawn->backdrop() == plain->backdrop()) << entry.name;
        EXPECT_EQ(drawn->brightBackdrop(), Wallpapers::isLight(entry.name)) << entry.name;
        // The corner's pixel is the wallpaper's.
        const auto wallpaper = Wallpapers::draw(entry.name, drawn->width(), drawn->height());
        const PlanarView view = drawn->backdrop().view();
        const double luma = 0.2126 * wallpaper->red.row(9)[9] + 0.7152 * wallpaper->green.row(9)[9] +
                            0.0722 * wallpaper->blue.row(9)[9];
        EXPECT_NEAR(view.planes[0][9 * view.strides[0] + 9], 16 + 219 * luma, 1) << entry.name;
    }
    EXPECT_EQ(Look::of(Project()).wallpaperPreset, "orbit");
}

TEST(ShadeMath, agreesWithTheLibrarysFunctions) {
    for (double x = -3; x <= 3; x += 0.0137) {
        const double angle = 2 * std::numbers::pi * x;
        EXPECT_NEAR(ShadeMath::sine(x), std::sin(angle), 1e-12);
        EXPECT_NEAR(ShadeMath::cosine(x), std::cos(angle), 1e-12);
    }
    for (double x = -30; x <= 20; x += 0.113) {
        const float f = static_cast<float>(x);
        EXPECT_NEAR(ShadeMath::exponential(f) / std::exp(static_cast<double>(f)), 1, 4e-6) << x;
    }
    EXPECT_GE(ShadeMath::exponential(-1e6F), 0);
    EXPECT_LT(ShadeMath::exponential(-1e6F), 1e-37F);
    for (const double x : {0.0, 1e-9, 0.001, 0.1, 0.5, 0.999, 1.0, 1.7, 8.0, 1e6, -0.3, -27.0})
        EXPECT_NEAR(ShadeMath::cubeRoot(x), std::cbrt(x), 1e-12 * std::max(1.0, std::abs(std::cbrt(x)))) << x;
}

TEST(LinearRgb, readsMixesAndShowsColours) {
    for (const std::uint32_t code : {0x000000U, 0xFFFFFFU, 0x0A1B2CU, 0x7F80FEU, 0xFF0000U, 0x3A35B8U}) {
        const LinearRgb tint = LinearRgb::hex(code);
        const LinearRgb back = Oklab::of(tint).tint();
        float shown[3] = {back.r, back.g, back.b};
        encode(shown, 3);
        for (int i = 0; i < 3; ++i) {
            const double byte = static_cast<double>(code >> (16 - 8 * i) & 0xFFU) / 255;
            const double linear = byte <= 0.04045 ? byte / 12.92 : std::pow((byte + 0.055) / 1.055, 2.4);
            EXPECT_NEAR((&tint.r)[i], linear, 1e-6);
            EXPECT_NEAR(shown[i], byte, 0.0025) << "by way of Oklab and back";
        }
    }
    // Halfway between two colours of one lightness lies a colour of that lightness.
    const LinearRgb half = mixed(Oklab{0.7, 0.1, 0}.tint(), Oklab{0.7, -0.1, 0.05}.tint(), 0.5);
    EXPECT_NEAR(Oklab::of(half).L, 0.7, 1e-4);
    const Ramp ramp({{0.25, LinearRgb::hex(0xFF0000)}, {0.75, LinearRgb::hex(0x0000FF)}});
    EXPECT_EQ(ramp.at(-5), LinearRgb::hex(0xFF0000));
    EXPECT_EQ(ramp.at(0.2F), LinearRgb::hex(0xFF0000));
    EXPECT_EQ(ramp.at(7), LinearRgb::hex(0x0000FF));
}

TEST(Field, givesTheFunctionAndItsSlopes) {
    const Stage stage = Stage::of(320, 180);
    // Splines of third degree repeat straight lines, and parabolas but for a constant.
    const Field field(stage, 0.02, [](double u, double v) { return 0.3 + 2 * u - 3 * v + u * v; });
    std::vector<float> values(320);
    std::vector<float> alongU(320);
    std::vector<float> alongV(320);
    for (const int y : {0, 1, 77, 179}) {
        ShadeRow row;
        row.width = 320;
        row.stepU = static_cast<float>(stage.pixel);
        row.firstU = static_cast<float>((0.5 - 160) * stage.pixel);
        row.v = static_cast<float>((y + 0.5 - 90) * stage.pixel);
        field.row(row, values.data(), alongU.data(), alongV.data());
        for (int x = 0; x < 320; ++x) {
            const double u = row.u(x);
            const double v = row.v;
            const std::size_t i = static_cast<std::size_t>(x);
            ASSERT_NEAR(values[i], 0.3 + 2 * u - 3 * v + u * v, 2e-5) << x << ' ' << y;
            ASSERT_NEAR(alongU[i], 2 + v, 2e-3) << x << ' ' << y;
            ASSERT_NEAR(alongV[i], -3 + u, 2e-3) << x << ' ' << y;
            ASSERT_NEAR(field.at(row.u(x), row.v), values[i], 2e-5) << x << ' ' << y;
        }
    }
}

TEST(Noise, isSmoothAndDependsOnItsSeed) {
    const Noise noise(7);
    double largest = 0;
    for (int i = 0; i < 4000; ++i) {
        const double x = i * 0.0173 - 30;
        const double y = 11 - i * 0.0051;
        EXPECT_LT(std::abs(noise.at(x + 1e-5, y) - noise.at(x, y)), 1e-4);
        EXPECT_EQ(noise.at(std::floor(x), std::floor(y)), 0);
        largest = std::max(largest, std::abs(noise.at(x, y)));
    }
    EXPECT_GT(largest, 0.4);
    EXPECT_LT(largest, 1);
    EXPECT_NE(Noise(8).at(0.3, 0.4), noise.at(0.3, 0.4));
    EXPECT_EQ(Noise(7).pick(3), noise.pick(3));
    EXPECT_NE(noise.pick(3), noise.pick(4));
}

} // namespace
