#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <array>
#include <cmath>
#include <vector>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// Colours: zenith, middle sky, horizon, farthest ridge, middle ridge, nearest ridge, sun's glow, haze.
class DuneShader : public Shader {
public:
    DuneShader(const Stage& stage, const WallpaperStyle& style) :
        halfV(static_cast<float>(stage.halfV)), perPixel(static_cast<float>(1 / stage.pixel)) {
        const Noise noise(style.seed);
        const int width = static_cast<int>(std::lround(2 * stage.halfU / stage.pixel));
        const double horizon = -0.10 * stage.halfV;
        for (std::size_t k = 0; k < ridges.size(); ++k) {
            const double depth =
                static_cast<double>(k) / static_cast<double>(ridges.size() - 1); // 0 far, 1 near
            Ridge& ridge = ridges[k];
            const double base =
                horizon + (stage.halfV * 0.80 - horizon) * (0.25 * depth + 0.75 * depth * depth);
            const double size = 0.045 + 0.085 * depth;
            const double pace = 1.9 - 0.85 * depth;
            const double shift = 31.7 * static_cast<double>(k);
            ridge.top.reserve(static_cast<std::size_t>(width));
            ridge.slope.reserve(static_cast<std::size_t>(width));
            const auto height = [&](double u) {
                const double x = u * pace + shift;
                const double swell = noise.at(x, 0.3) * 1.5 + 0.42 * noise.at(2.3 * x + 9, 4.1);
                return base - size * swell;
            };
            for (int x = 0; x < width; ++x) {
                const double u = (x + 0.5 - width / 2.0) * stage.pixel;
                ridge.top.push_back(static_cast<float>(height(u)));
                ridge.slope.push_back(static_cast<float>((height(u + 0.002) - height(u - 0.002)) / 0.004));
            }
            const LinearRgb far = LinearRgb::hex(style.colors[3]);
            const LinearRgb middle = LinearRgb::hex(style.colors[4]);
            const LinearRgb near = LinearRgb::hex(style.colors[5]);
            ridge.tint = depth < 0.5 ? mixed(far, middle, depth * 2) : mixed(middle, near, depth * 2 - 1);
            ridge.haze = mixed(ridge.tint, LinearRgb::hex(style.colors[7]), 0.62 - 0.45 * depth);
            ridge.fade = static_cast<float>(1 / (0.06 + 0.16 * depth));
        }
        sky = Ramp({{0, LinearRgb::hex(style.colors[0])},
                    {0.55, LinearRgb::hex(style.colors[1])},
                    {1, LinearRgb::hex(style.colors[2])}});
        glow = LinearRgb::hex(style.colors[6]);
        sunU = static_cast<float>(stage.halfU * noise.pick(3, 0.45, 0.62));
        sunV = static_cast<float>(horizon - 0.02);
        skyEnd = static_cast<float>(horizon + 0.10);
    }

    void shade(ShadeRow& row) const override {
        const int count = row.width;
        const LinearRgb above = sky.at((row.v + halfV) / (skyEnd + halfV));
        const float dv = row.v - sunV;
        const float startU = row.firstU - sunU;
        const float stepU = row.stepU;
        const LinearRgb sun = glow;
        float* r = row.r;
        float* g = row.g;
        float* b = row.b;
#pragma GCC ivdep
        for (int x = 0; x < count; ++x) {
            const float du = startU + stepU * static_cast<float>(x);
            const float q = du * du + dv * dv * 1.7F;
            const float light = 0.42F / (1 + q * 16.0F) + 0.40F / (1 + q * 110.0F);
            r[x] = above.r + sun.r * light * (1 - above.r);
            g[x] = above.g + sun.g * light * (1 - above.g);
            b[x] = above.b + sun.b * light * (1 - above.b);
        }
        const float perUnit = perPixel;
        for (const Ridge& ridge : ridges) {
            const float* top = ridge.top.data();
            const float* slope = ridge.slope.data();
            const float v = row.v;
            const float fade = ridge.fade;
            const LinearRgb tint = ridge.tint;
            const LinearRgb haze = ridge.haze;
#pragma GCC ivdep
            for (int x = 0; x < count; ++x) {
                const float steep = std::sqrt(1 + slope[x] * slope[x]);
                const float t = (v - top[x]) / steep;
                const float cover = unit(t * perUnit + 0.5F);
                const float deep = t > 0 ? t : 0.0F;
                const float far = deep * fade;
                const float fog = far * far / (1 + far * far);
                // The flank that faces the sun, brightest along the crest.
                const float du = startU + stepU * static_cast<float>(x);
                const float side =
                    unit(0.5F + 1.6F * slope[x] * (du > 0 ? -1.0F : 1.0F) * unit(6 * (du > 0 ? du : -du)));
                const float crest = exponential(-26.0F * deep);
                const float lit = (0.10F + 0.28F * side) * crest / (1 + du * du * 1.5F);
                const float mr = tint.r + (haze.r - tint.r) * fog;
                const float mg = tint.g + (haze.g - tint.g) * fog;
                const float mb = tint.b + (haze.b - tint.b) * fog;
                r[x] += (mr * (1 + 3.2F * sun.r * lit) - r[x]) * cover;
                g[x] += (mg * (1 + 3.2F * sun.g * lit) - g[x]) * cover;
                b[x] += (mb * (1 + 3.2F * sun.b * lit) - b[x]) * cover;
            }
        }
    }

private:
    struct Ridge {
        std::vector<float> top; ///< v, by column
        std::vector<float> slope;
        LinearRgb tint;
        LinearRgb haze;
        float fade = 1;
    };

    float halfV;
    float perPixel;
    std::array<Ridge, 6> ridges;
    Ramp sky;
    LinearRgb glow;
    float sunU = 0;
    float sunV = 0;
    float skyEnd = 0;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::dunes(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<DuneShader>(stage, style);
}

} // namespace RecordCore
