#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// Colours: lowest step, steps between (three), highest step; edge of a step.
class TerraceShader : public Shader {
public:
    TerraceShader(const Stage& stage, const WallpaperStyle& style) :
        perPixel(static_cast<float>(1 / stage.pixel)), light(style.light) {
        const Noise noise(style.seed);
        const double turn = noise.pick(0);
        const double tiltU = 0.85 * cosine(turn);
        const double tiltV = 0.85 * sine(turn);
        land = Field(stage, 1.0 / 150, [&](double u, double v) {
            const double du = 0.30 * noise.at(u * 1.2 + 3.0, v * 1.2 - 1.0);
            const double dv = 0.30 * noise.at(u * 1.2 - 8.0, v * 1.2 + 6.0);
            const double hills = 1.10 * noise.at((u + du) * 1.25 + 20.0, (v + dv) * 1.25) +
                                 0.20 * noise.at((u + dv) * 2.6 - 4.0, (v + du) * 2.6 + 9.0);
            return (0.5 + tiltU * u + tiltV * v + 0.62 * hills) * steps;
        });
        ramp = Ramp({{0, LinearRgb::hex(style.colors[0])},
                     {0.25, LinearRgb::hex(style.colors[1])},
                     {0.5, LinearRgb::hex(style.colors[2])},
                     {0.75, LinearRgb::hex(style.colors[3])},
                     {1, LinearRgb::hex(style.colors[4])}});
        edge = LinearRgb::hex(style.colors[5]);
    }

    void shade(ShadeRow& row) const override {
        const int count = row.width;
        const std::size_t width = static_cast<std::size_t>(count);
        std::vector<float> buffer(width * 7);
        float* h = buffer.data();
        float* hu = h + width;
        float* hv = hu + width;
        float* tone = hv + width;
        float* shadow = tone + width;
        float* gleam = shadow + width;
        float* lit = gleam + width;
        land.row(row, h, hu, hv);
        const float perUnit = perPixel;
        const float deepest = light ? 0.30F : 0.62F;
#pragma GCC ivdep
        for (int x = 0; x < count; ++x) {
            const float slope = std::sqrt(hu[x] * hu[x] + hv[x] * hv[x]) + 0.35F;
            const float over = h[x] - std::floor(h[x]); // height above the step's edge
            const float step = h[x] - over;
            // Distances to the edge of this step and of the next one up, in units of the stage.
            const float from = over / slope;
            const float to = (1 - over) / slope;
            // The step above casts its shadow down here, the more where its edge turns from the light.
            const float away = 0.55F + 0.45F * (hu[x] * 0.55F + hv[x] * 0.83F) / slope;
            const float cast =
                deepest * away * (0.62F * exponential(to * -34.0F) + 0.38F * exponential(to * -130.0F));
            const float facing = unit(0.5F - 0.5F * (hu[x] * 0.55F + hv[x] * 0.83F) / slope);
            const float toward = unit(1 - away * 0.9F);
            const float edgeGleam = 0.03F + 0.80F * toward * toward;
            const float shine = 0.55F * facing * facing;
            // How much of the pixel belongs to the step above and to the one below.
            const float above = 0.5F - unit(to * perUnit < 0.5F ? to * perUnit : 0.5F);
            const float below = 0.5F - unit(from * perUnit < 0.5F ? from * perUnit : 0.5F);
            shadow[x] = mix(cast * (1 - above), deepest * away, below);
            gleam[x] = mix(edgeGleam * exponential(from * -520.0F), edgeGleam, above) * (1 - below);
            lit[x] = mix(shine * exponential(from * -15.0F), shine, above) * (1 - below);
            tone[x] = unit((step + 0.35F * over + 0.65F * (above - below)) * (1.0F / steps));
        }
        for (int x = 0; x < count; ++x) {
            const LinearRgb tint = ramp.at(tone[x]);
            const float dark = (1 - shadow[x]) * (1 + (light ? 0.3F : 1.0F) * lit[x]);
            const float k = gleam[x] * 0.5F;
            row.r[x] = mix(tint.r * dark, edge.r, k);
            row.g[x] = mix(tint.g * dark, edge.g, k);
            row.b[x] = mix(tint.b * dark, edge.b, k);
        }
    }

private:
    static constexpr int steps = 9;

    float perPixel;
    bool light;
    Field land;
    Ramp ramp;
    LinearRgb edge;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::terraces(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<TerraceShader>(stage, style);
}

} // namespace RecordCore
