#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <cmath>
#include <vector>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// Colours: shadow, body, light, second body colour that the first drifts to, gleam.
class SilkShader : public Shader {
public:
    SilkShader(const Stage& stage, const WallpaperStyle& style) {
        const Noise noise(style.seed);
        const double turn = noise.pick(0, -0.09, -0.05); // falls gently from left to right
        const double c = cosine(turn);
        const double s = sine(turn);
        const auto warpedAcross = [=](double u, double v) {
            const double along = u * c + v * s;
            const double across = -u * s + v * c;
            const double sway = 0.42 * noise.at(along * 0.9 + 5.2, across * 0.55 + 1.3) +
                                0.16 * noise.at(along * 1.7 - 2.4, across * 1.3 + 8.1);
            return std::array<double, 2>{along, across + sway};
        };
        height = Field(stage, 1.0 / 220, [&](double u, double v) {
            const auto [along, across] = warpedAcross(u, v);
            // Folds of several widths that run together and apart along the cloth.
            const double p = across * 1.55 + 0.25 * noise.at(along * 0.7 + 11.0, across * 0.4);
            const double q =
                across * 3.4 - along * 0.35 + 0.5 * noise.at(along * 0.8 - 4.0, across * 0.7 + 2.0);
            const double fold = sine(p + 0.11 * sine(p)) * 0.60;
            const double fine =
                sine(q + 0.10 * sine(q)) * (0.16 + 0.22 * noise.at(along * 1.1 + 3.0, across * 1.1));
            return (fold + fine) * 0.115;
        });
        drift = Field(stage, 1.0 / 64, [&](double u, double v) {
            const double l = 0.5 + 0.55 * (u / stage.halfU * 0.55 - v / stage.halfV * 0.35) +
                             0.45 * noise.octaves(u * 1.1 + 1.0, v * 1.1 - 6.0, 2);
            return std::min(std::max(l, 0.0), 1.0);
        });
        const LinearRgb shadow = LinearRgb::hex(style.colors[0]);
        const LinearRgb body = LinearRgb::hex(style.colors[1]);
        const LinearRgb lit = LinearRgb::hex(style.colors[2]);
        const LinearRgb other = LinearRgb::hex(style.colors[3]);
        first = Ramp({{0, shadow}, {0.45, body}, {1, lit}});
        second = Ramp({{0, mixed(shadow, other, 0.18)}, {0.5, other}, {1, mixed(other, lit, 0.72)}});
        gleam = LinearRgb::hex(style.colors[4]);
        bright = style.light;
    }

    void shade(ShadeRow& row) const override {
        const std::size_t width = static_cast<std::size_t>(row.width);
        std::vector<float> buffer(width * 5);
        float* h = buffer.data();
        float* hu = h + width;
        float* hv = hu + width;
        float* way = hv + width;
        float* spark = way + width;
        height.row(row, h, hu, hv);
        drift.row(row, way);
        // The light comes from the upper left, over the viewer's shoulder.
        const float lu = -0.42F;
        const float lv = -0.62F;
        const float lz = 0.66F;
        for (int x = 0; x < row.width; ++x) {
            const float inverse = 1 / std::sqrt(1 + hu[x] * hu[x] + hv[x] * hv[x]);
            const float facing = (-hu[x] * lu - hv[x] * lv + lz) * inverse;
            // Satin shines where its normal halves the way between light and eye.
            const float half = (-hu[x] * (lu * 0.55F) - hv[x] * (lv * 0.55F) + 0.91F) * inverse;
            const float close = unit(half);
            const float c2 = close * close;
            const float c4 = c2 * c2;
            const float c8 = c4 * c4;
            const float c16 = c8 * c8;
            spark[x] = c16 * c16;
            h[x] = unit(0.06F + 0.90F * facing + h[x] * 0.9F);
        }
        for (int x = 0; x < row.width; ++x) {
            const LinearRgb a = first.at(h[x]);
            const LinearRgb b = second.at(h[x]);
            const float w = way[x];
            const float k = spark[x] * (bright ? 0.30F : 0.22F) * h[x];
            row.r[x] = mix(a.r, b.r, w) + gleam.r * k;
            row.g[x] = mix(a.g, b.g, w) + gleam.g * k;
            row.b[x] = mix(a.b, b.b, w) + gleam.b * k;
        }
    }

private:
    Field height;
    Field drift;
    Ramp first;
    Ramp second;
    LinearRgb gleam;
    bool bright = false;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::silk(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<SilkShader>(stage, style);
}

} // namespace RecordCore
