#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <array>
#include <vector>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// Light that glass has gathered into ribbons and parted into colours. Colours: ground upper left and lower
/// right, then the ribbon's from its sharp edge inwards.
class PrismShader : public Shader {
public:
    PrismShader(const Stage& stage, const WallpaperStyle& style) : light(style.light) {
        const Noise noise(style.seed);
        const double turn = noise.pick(0, 0.06, 0.12);
        const double c = cosine(turn);
        const double s = sine(turn);
        const auto place = [=](double u, double v, double shift) {
            const double along = u * c + v * s;
            const double across = -u * s + v * c;
            return across + 0.40 * noise.at(along * 0.85 + shift, across * 0.6 + 1.0) +
                   0.15 * noise.at(along * 1.9 + shift, across * 1.5 - 2.0);
        };
        for (std::uint32_t k = 0; k < ribbons.size(); ++k) {
            static constexpr std::array<double, 3> levels{-0.32, 0.06, 0.40};
            Ribbon& ribbon = ribbons[k];
            ribbon.sign = k % 2 == 0 ? 1.0F : -1.0F;
            const double level = levels[k] * (0.55 + 0.9 * stage.halfV) + noise.pick(30 + k, -0.03, 0.03);
            ribbon.place =
                Field(stage, 1.0 / 150, [&](double u, double v) { return place(u, v, 5.7 * k) - level; });
            ribbon.share = Field(stage, 1.0 / 48, [&](double u, double v) {
                return 0.62 + 1.1 * noise.octaves(u * 1.2 + 3.3 * k, v * 1.2 - 4.0, 2);
            });
            // How wide the colours are parted, as its inverse.
            ribbon.narrow = Field(stage, 1.0 / 48, [&](double u, double v) {
                return 1 / (0.24 + 0.20 * noise.at(u * 1.1 - 9.0 * k, v * 1.1 + 2.0));
            });
        }
        const LinearRgb none = light ? LinearRgb{1, 1, 1} : LinearRgb{};
        std::vector<Ramp::Stop> stops{{0.04, none}};
        static constexpr std::array<double, 6> places{0.13, 0.22, 0.33, 0.46, 0.61, 0.78};
        for (std::size_t i = 0; i < places.size(); ++i)
            stops.push_back({places[i], LinearRgb::hex(style.colors[i + 2])});
        stops.push_back({1, none});
        spectrum = Ramp(stops);
        const LinearRgb first = LinearRgb::hex(style.colors[0]);
        const LinearRgb last = LinearRgb::hex(style.colors[1]);
        base = ColorField(stage, 1.0 / 48, [&](double u, double v) {
            const double t = 0.5 + 0.22 * (u / stage.halfU) + 0.32 * (v / stage.halfV) +
                             0.3 * noise.octaves(u * 1.2, v * 1.2, 2);
            return mixed(first, last, std::min(std::max(t, 0.0), 1.0));
        });
    }

    void shade(ShadeRow& row) const override {
        const int count = row.width;
        const std::size_t width = static_cast<std::size_t>(count);
        std::vector<float> buffer(width * 3);
        float* at = buffer.data();
        float* share = at + width;
        float* narrow = share + width;
        base.row(row);
        for (const Ribbon& ribbon : ribbons) {
            ribbon.place.row(row, at);
            ribbon.share.row(row, share);
            ribbon.narrow.row(row, narrow);
            for (int x = 0; x < count; ++x) {
                const float depth = at[x] * ribbon.sign * narrow[x] + 0.13F;
                if (depth <= 0.04F || depth >= 1) continue;
                const LinearRgb tint = spectrum.at(depth);
                const float k = unit(share[x]);
                if (light) {
                    row.r[x] *= 1 + (tint.r - 1) * k;
                    row.g[x] *= 1 + (tint.g - 1) * k;
                    row.b[x] *= 1 + (tint.b - 1) * k;
                } else {
                    row.r[x] += tint.r * k;
                    row.g[x] += tint.g * k;
                    row.b[x] += tint.b * k;
                }
            }
        }
        if (light) return;
        for (float* out : {row.r, row.g, row.b})
            for (int x = 0; x < count; ++x)
                out[x] = 1 - exponential(-1.35F * out[x]);
    }

private:
    struct Ribbon {
        Field place;
        Field share;
        Field narrow;
        float sign = 1;
    };

    bool light;
    std::array<Ribbon, 3> ribbons;
    Ramp spectrum;
    ColorField base;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::prism(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<PrismShader>(stage, style);
}

} // namespace RecordCore
