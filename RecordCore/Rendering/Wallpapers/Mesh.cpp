#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <array>

namespace RecordCore {

namespace {

/// Colours: six clouds, the first lies everywhere.
class MeshShader : public Shader {
public:
    MeshShader(const Stage& stage, const WallpaperStyle& style) {
        const Noise noise(style.seed);
        struct Cloud {
            double u;
            double v;
            double sharp;
            Oklab color;
        };
        // Around the middle, where the window stands, one in each direction.
        static constexpr std::array<std::array<double, 2>, 6> places{
            {{0, 0}, {-0.85, -0.75}, {0.85, -0.65}, {0.75, 0.85}, {-0.8, 0.7}, {0.1, -0.1}}};
        std::array<Cloud, 6> clouds;
        for (std::uint32_t i = 0; i < 6; ++i)
            clouds[i] = {stage.halfU * (places[i][0] + noise.pick(3 * i, -0.22, 0.22)),
                         stage.halfV * (places[i][1] + noise.pick(3 * i + 1, -0.22, 0.22)),
                         noise.pick(3 * i + 2, 4.2, 7.2), Oklab::of(LinearRgb::hex(style.colors[i]))};
        colors = ColorField(stage, 1.0 / 96, [&](double u, double v) {
            // The place is drawn aside twice, so that the clouds flow into each other in tongues.
            const double du = noise.octaves(u * 1.15 + 3.1, v * 1.15 - 1.7, 2, 0.35);
            const double dv = noise.octaves(u * 1.15 - 7.9, v * 1.15 + 5.3, 2, 0.35);
            const double pu =
                u + 0.40 * du + 0.18 * noise.at(1.45 * (u + 0.6 * dv) + 9.2, 1.45 * (v - 0.6 * du));
            const double pv =
                v + 0.40 * dv + 0.18 * noise.at(1.45 * (u - 0.6 * dv), 1.45 * (v + 0.6 * du) + 4.4);
            double total = 0.055;
            Oklab sum{clouds[0].color.L * total, clouds[0].color.a * total, clouds[0].color.b * total};
            for (std::size_t i = 1; i < clouds.size(); ++i) {
                const Cloud& c = clouds[i];
                const double q = ((pu - c.u) * (pu - c.u) + (pv - c.v) * (pv - c.v)) * c.sharp;
                const double weight = 1 / ((1 + q) * (1 + q) * (1 + q));
                total += weight;
                sum.L += c.color.L * weight;
                sum.a += c.color.a * weight;
                sum.b += c.color.b * weight;
            }
            return Oklab{sum.L / total, sum.a / total, sum.b / total}.tint();
        });
    }

    void shade(ShadeRow& row) const override { colors.row(row); }

private:
    ColorField colors;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::mesh(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<MeshShader>(stage, style);
}

} // namespace RecordCore
