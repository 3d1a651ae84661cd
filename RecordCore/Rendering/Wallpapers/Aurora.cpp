#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <array>
#include <vector>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// Colours: sky above, sky below, then for each of three curtains its foot and its upper light.
class AuroraShader : public Shader {
public:
    AuroraShader(const Stage& stage, const WallpaperStyle& style) : halfV(static_cast<float>(stage.halfV)) {
        const Noise noise(style.seed);
        const double lean = noise.pick(0, 0.30, 0.45); // the curtains climb to the right
        // How far up a place is, on a sky that is drawn aside so that level lines fold.
        altitude = Field(stage, 1.0 / 150, [&](double u, double v) {
            const double du = 0.34 * noise.octaves(u * 1.3 + 4.0, v * 0.8 + 2.0, 2, 0.4);
            const double dv = 0.42 * noise.octaves((u + du) * 1.2 - 6.0, v * 0.7 - 3.0, 2, 0.45);
            return -(v + dv) + lean * (u + du);
        });
        // Rays stand upright, so they change quickly along the curtain and slowly up it.
        rays = Field(stage, 1.0 / 200, [&](double u, double v) {
            const double x = u + 0.16 * noise.at(u * 1.3, v * 1.1 + 9.0) + 0.10 * v;
            return 0.60 + 0.60 * noise.at(x * 3.1 + 1.7, v * 0.45) +
                   0.36 * noise.at(x * 9.0 - 5.1, v * 0.6 + 3.0);
        });
        for (std::uint32_t k = 0; k < curtains.size(); ++k) {
            Curtain& c = curtains[k];
            static constexpr std::array<double, 3> places{-0.34, 0.0, 0.32};
            c.foot = static_cast<float>(2 * stage.halfV * places[k] + noise.pick(20 + k, -0.03, 0.03));
            c.low = LinearRgb::hex(style.colors[2 + 2 * k]);
            c.high = LinearRgb::hex(style.colors[3 + 2 * k]);
            c.reach = Field(stage, 1.0 / 48, [&, k](double u, double v) {
                return 0.62 + 0.95 * noise.octaves(u * 1.3 - 2.2 + 7.0 * k, v * 1.3 + 7.7, 2);
            });
        }
        above = LinearRgb::hex(style.colors[0]);
        below = LinearRgb::hex(style.colors[1]);
    }

    void shade(ShadeRow& row) const override {
        const int count = row.width;
        const std::size_t width = static_cast<std::size_t>(count);
        std::vector<float> buffer(width * 5);
        float* up = buffer.data();
        float* ray = up + width;
        float* reach = ray + width;
        float* low = reach + width;
        float* high = low + width;
        altitude.row(row, up);
        rays.row(row, ray);
        const LinearRgb sky = mixed(above, below, unit(0.5F + 0.5F * row.v / halfV));
        std::fill_n(row.r, count, sky.r);
        std::fill_n(row.g, count, sky.g);
        std::fill_n(row.b, count, sky.b);
        for (const Curtain& curtain : curtains) {
            curtain.reach.row(row, reach);
            const float foot = curtain.foot;
#pragma GCC ivdep
            for (int x = 0; x < count; ++x) {
                const float t = up[x] - foot;
                const float share = unit(reach[x]);
                const float bright = unit(ray[x]);
                // The foot is sharp below and fades upwards; the light above it stands higher and is even.
                const float edge = exponential(t > 0 ? -13.0F * t : 60.0F * t);
                const float glow = exponential(t > 0 ? -4.2F * t : 20.0F * t);
                low[x] = share * (0.35F + 0.65F * bright) * edge * 0.95F;
                high[x] = share * (0.45F + 0.55F * bright) * glow * 0.75F;
            }
            const auto add = [&](float* out, float first, float second) {
#pragma GCC ivdep
                for (int x = 0; x < count; ++x)
                    out[x] += first * low[x] + second * high[x];
            };
            add(row.r, curtain.low.r, curtain.high.r);
            add(row.g, curtain.low.g, curtain.high.g);
            add(row.b, curtain.low.b, curtain.high.b);
        }
        for (float* out : {row.r, row.g, row.b})
            for (int x = 0; x < count; ++x)
                out[x] = 1 - exponential(-1.25F * out[x]);
    }

private:
    struct Curtain {
        float foot = 0;
        LinearRgb low;
        LinearRgb high;
        Field reach;
    };

    float halfV;
    Field altitude;
    Field rays;
    std::array<Curtain, 3> curtains;
    LinearRgb above;
    LinearRgb below;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::aurora(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<AuroraShader>(stage, style);
}

} // namespace RecordCore
