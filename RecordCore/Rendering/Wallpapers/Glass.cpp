#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// Colours: five of the ground that is seen through the glass, the first lies everywhere; the glass' sheen.
class GlassShader : public Shader {
public:
    GlassShader(const Stage& stage, const WallpaperStyle& style) :
        perPixel(static_cast<float>(1 / stage.pixel)), light(style.light) {
        const Noise noise(style.seed);
        std::array<Oklab, 5> colors;
        for (std::size_t i = 0; i < colors.size(); ++i)
            colors[i] = Oklab::of(LinearRgb::hex(style.colors[i]));
        static constexpr std::array<std::array<double, 2>, 5> places{
            {{0, 0}, {-0.9, 0.8}, {0.9, -0.8}, {-0.5, -0.95}, {0.75, 0.9}}};
        ground = ColorField(
            stage, 1.0 / 96,
            [&](double u, double v) {
                const double pu = u + 0.22 * noise.octaves(u * 1.3 + 3.0, v * 1.3, 2);
                const double pv = v + 0.22 * noise.octaves(u * 1.3 - 6.0, v * 1.3 + 8.0, 2);
                double total = 0.10;
                Oklab sum{colors[0].L * total, colors[0].a * total, colors[0].b * total};
                for (std::size_t i = 1; i < colors.size(); ++i) {
                    const double du = pu - places[i][0] * stage.halfU;
                    const double dv = pv - places[i][1] * stage.halfV;
                    const double q = 1 + (du * du + dv * dv) * 8.0;
                    const double weight = 1 / (q * q * q);
                    total += weight;
                    sum.L += colors[i].L * weight;
                    sum.a += colors[i].a * weight;
                    sum.b += colors[i].b * weight;
                }
                return Oklab{sum.L / total, sum.a / total, sum.b / total}.tint();
            },
            0.1);
        sheen = LinearRgb::hex(style.colors[5]);
        // Each stands over an edge or a corner, the great one behind the others.
        discs[0] = {float(stage.halfU * 0.62), float(-stage.halfV * 0.55), 0.46F};
        discs[1] = {float(-stage.halfU * 0.78), float(stage.halfV * 0.70), 0.34F};
        discs[2] = {float(-stage.halfU * 0.30), float(-stage.halfV * 0.98), 0.21F};
        discs[3] = {float(stage.halfU * 0.72), float(stage.halfV * 0.92), 0.25F};
        for (std::uint32_t i = 0; i < discs.size(); ++i) {
            discs[i].u += static_cast<float>(noise.pick(40 + 3 * i, -0.06, 0.06));
            discs[i].v += static_cast<float>(noise.pick(41 + 3 * i, -0.05, 0.05));
            discs[i].radius *= static_cast<float>(noise.pick(42 + 3 * i, 0.92, 1.1));
        }
    }

    void shade(ShadeRow& row) const override {
        ground.row(row);
        for (const Disc& disc : discs) {
            castShadow(row, disc);
            lay(row, disc);
        }
    }

private:
    struct Disc {
        float u = 0;
        float v = 0;
        float radius = 0;
    };

    /// A soft shadow down and to the right.
    void castShadow(ShadeRow& row, const Disc& disc) const {
        const float soft = 0.30F * disc.radius;
        const float dv = row.v - disc.v - 0.16F * disc.radius;
        if (std::abs(dv) > disc.radius + soft) return;
        const float strength = light ? 0.16F : 0.42F;
        const float startU = row.firstU - disc.u - 0.05F * disc.radius;
        const float stepU = row.stepU;
        const float size = disc.radius;
        const float perSoft = 1 / soft;
        float* r = row.r;
        float* g = row.g;
        float* b = row.b;
        const int count = row.width;
#pragma GCC ivdep
        for (int x = 0; x < count; ++x) {
            const float du = startU + stepU * static_cast<float>(x);
            const float d = std::sqrt(du * du + dv * dv) - size;
            const float t = unit(0.5F - 0.5F * d * perSoft);
            const float dark = 1 - strength * t * t * (3 - 2 * t);
            r[x] *= dark;
            g[x] *= dark;
            b[x] *= dark;
        }
    }

    void lay(ShadeRow& row, const Disc& disc) const {
        const float dv = row.v - disc.v;
        const float reach = disc.radius + 1 / perPixel;
        if (std::abs(dv) >= reach) return;
        const float half = std::sqrt(reach * reach - dv * dv);
        const float first = (disc.u - half - row.firstU) / row.stepU;
        const float last = (disc.u + half - row.firstU) / row.stepU;
        const int from = std::max(static_cast<int>(first), 0);
        const int to = std::min(static_cast<int>(last) + 2, row.width);
        for (int x = from; x < to; ++x) {
            const float du = row.u(x) - disc.u;
            const float distance = std::sqrt(du * du + dv * dv) + 1e-6F;
            const float inside = (disc.radius - distance);
            const float cover = unit(inside * perPixel + 0.5F);
            const float n = std::min(distance / disc.radius, 1.0F);
            const float n2 = n * n;
            const float n4 = n2 * n2;
            // A lens that is nearly flat in the middle and bends everything in towards its rim.
            const float bend = 1 - 0.10F - 0.62F * n4 * n4;
            const LinearRgb seen = ground.at(disc.u + du * bend * 0.96F, disc.v + dv * bend * 0.96F);
            // Light falls in from the upper left and gathers again at the far lower right.
            const float along = (du * -0.6F + dv * -0.8F) / disc.radius; // −1 … 1
            // The glass itself brightens what it shows towards the light and darkens it away from it.
            const float gain = light ? 1 + 0.02F * along : 1.10F + 0.26F * along;
            const float edgeNear = exponential(inside * -150.0F);
            const float edgeWide = exponential(inside * -24.0F);
            const float angle = along / std::max(n, 0.2F);
            const float a2 = angle * angle;
            const float rim = edgeNear * (0.04F + 0.70F * a2 * a2) + edgeWide * (0.02F + 0.20F * a2 * a2);
            const float face = light ? 0.10F + 0.12F * along : 0.03F * (1 + along);
            const float k = unit((light ? 1.5F : 1.0F) * rim + std::max(face, 0.0F));
            const auto put = [&](float& out, float behind, float white) {
                const float glass = (out + (behind - out) * 0.82F) * gain;
                out += (glass + (white - glass) * k - out) * cover;
            };
            put(row.r[x], seen.r, sheen.r);
            put(row.g[x], seen.g, sheen.g);
            put(row.b[x], seen.b, sheen.b);
        }
    }

    float perPixel;
    bool light;
    ColorField ground;
    LinearRgb sheen;
    std::array<Disc, 4> discs;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::glass(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<GlassShader>(stage, style);
}

} // namespace RecordCore
