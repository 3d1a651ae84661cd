#include "RecordCore/Rendering/Wallpapers/Families.h"
#include "RecordCore/Rendering/Wallpapers/Noise.h"
#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <array>
#include <cmath>
#include <vector>

namespace RecordCore {

namespace {

using namespace ShadeMath;

/// A lit sphere of which the canvas shows the rim.
struct Body {
    float u = 0; ///< centre
    float v = 0;
    float radius = 1;
    std::array<float, 2> sun{}; ///< unit vector from the centre to where the rim is brightest

    /// The sphere whose rim passes through two points, its centre to the right of the way between them;
    /// `bulge` is the radius over the distance of the points, `towards` where between them the sun stands.
    static Body through(double u1, double v1, double u2, double v2, double bulge, double towards) {
        const double du = u2 - u1;
        const double dv = v2 - v1;
        const double chord = std::sqrt(du * du + dv * dv);
        const double r = chord * bulge;
        const double away = std::sqrt(r * r - chord * chord / 4);
        const double cu = (u1 + u2) / 2 - dv / chord * away;
        const double cv = (v1 + v2) / 2 + du / chord * away;
        const double su = u1 + du * towards - cu;
        const double sv = v1 + dv * towards - cv;
        const double length = std::sqrt(su * su + sv * sv);
        return {static_cast<float>(cu),
                static_cast<float>(cv),
                static_cast<float>(r),
                {static_cast<float>(su / length), static_cast<float>(sv / length)}};
    }
};

/// How bright the air about a body's rim is, by the distance at which its colours stand.
struct Air {
    float far = 0;
    float near = 0;
    float rim = 0;
};

/// The air shines outwards; inwards only a thin veil of it is seen against the dark body.
inline Air airOf(float d, float facing, float outside) {
    const float q = exponential(std::min(-4.9F * d, 8.5F * d));
    const float q2 = q * q;
    const float q4 = q2 * q2;
    const float q8 = q4 * q4;
    const float q16 = q8 * q8;
    const float wide = exponential(2.6F * (facing - 1));
    const float wide2 = wide * wide;
    const float narrow = wide2 * wide2;
    const float hot = narrow * narrow * narrow;
    const float inside = 1 - outside;
    return {(0.50F * outside + 0.40F * inside) * q * wide,
            (0.80F * outside + 0.55F * inside) * q4 * (0.28F * wide + 0.80F * narrow),
            (outside * q16 + inside * q16 * q16) * (0.10F * wide + 0.50F * narrow + 1.35F * hot)};
}

/// Colours: ground far from the light and near it; of the great body the far halo, the near halo, rim; the
/// rings; of the small body the far and the near halo.
class OrbitShader : public Shader {
public:
    OrbitShader(const Stage& stage, const WallpaperStyle& style) :
        light(style.light), perPixel(static_cast<float>(1 / stage.pixel)) {
        const Noise noise(style.seed);
        // The rims cross two edges each, so that they are seen beside a window in the middle in every format.
        great = Body::through(-stage.halfU, stage.halfV * noise.pick(0, 0.40, 0.56),
                              stage.halfU * noise.pick(1, 0.46, 0.62), -stage.halfV, noise.pick(2, 0.90, 1.0),
                              0.38);
        small = Body::through(stage.halfU - noise.pick(3, 0.56, 0.70), stage.halfV, stage.halfU,
                              stage.halfV - noise.pick(4, 0.32, 0.38), noise.pick(5, 0.78, 0.9), 0.70);
        for (std::size_t i = 0; i < rings.size(); ++i) {
            static constexpr std::array<double, 3> gaps{0.105, 0.24, 0.41};
            // Where on the ring its light stands, in turns from the sun.
            static constexpr std::array<double, 3> turns{0.088, -0.062, 0.045};
            Ring& ring = rings[i];
            ring.radius =
                great.radius +
                static_cast<float>(gaps[i] * noise.pick(10 + static_cast<std::uint32_t>(i), 0.92, 1.08));
            const double c = cosine(turns[i]);
            const double s = sine(turns[i]);
            ring.lit = {static_cast<float>(great.sun[0] * c - great.sun[1] * s),
                        static_cast<float>(great.sun[0] * s + great.sun[1] * c)};
        }
        for (std::size_t i = 0; i < tints.size(); ++i)
            tints[i] = LinearRgb::hex(style.colors[i]);
    }

    void shade(ShadeRow& row) const override {
        const std::size_t width = static_cast<std::size_t>(row.width);
        std::vector<float> buffer(width * 9);
        float* ground = buffer.data();
        float* cover = ground + width; // of the small body
        float* shadowed = cover + width;
        float* far = shadowed + width;
        float* near = far + width;
        float* rim = near + width;
        float* far2 = rim + width;
        float* near2 = far2 + width;
        float* rim2 = near2 + width;

        // Copies, which the loop's results cannot be mistaken to change: it becomes vectors.
        const Body first = great;
        const Body second = small;
        const Ring ring0 = rings[0];
        const Ring ring1 = rings[1];
        const Ring ring2 = rings[2];
        const float perUnit = perPixel;
        const float stepU = row.stepU;
        const float startU = row.firstU;
        float* lineOut = lineOf(row);
        const int count = row.width;
        const float dv = row.v - first.v;
        const float ev = row.v - second.v;
#pragma GCC ivdep
        for (int x = 0; x < count; ++x) {
            const float u = startU + stepU * static_cast<float>(x);
            const float du = u - first.u;
            const float distance = std::sqrt(du * du + dv * dv) + 1e-6F;
            const float inverse = 1 / distance;
            const float d = distance - first.radius;
            const float outside = unit(0.5F + d * perUnit);
            const Air air = airOf(d, (du * first.sun[0] + dv * first.sun[1]) * inverse, outside);

            const auto line = [&](const Ring& r) {
                const float from = distance - r.radius;
                const float wide = exponential(9.0F * ((du * r.lit[0] + dv * r.lit[1]) * inverse - 1));
                const float wide2 = wide * wide;
                const float wide4 = wide2 * wide2;
                const float lit = 0.10F + 0.55F * wide + 0.9F * wide4 * wide4 * wide4;
                // A fine line with a breath of light around it.
                const float square = from * from;
                return lit * (1 / (1 + square * 500000.0F) + 0.09F / (1 + square * 4000.0F));
            };
            const float lines = line(ring0) + line(ring1) + line(ring2);

            const float eu = u - second.u;
            const float distance2 = std::sqrt(eu * eu + ev * ev) + 1e-6F;
            const float e = distance2 - second.radius;
            const float outside2 = unit(0.5F + e * perUnit);
            const Air air2 = airOf(e, (eu * second.sun[0] + ev * second.sun[1]) / distance2, outside2);

            const float above = std::max(d, 0.0F);
            ground[x] = 1 / (1 + above * above * 3.0F);
            cover[x] = 1 - outside2;
            shadowed[x] = 1 - outside;
            // The small body stands in front.
            far[x] = air.far * outside2;
            near[x] = air.near * outside2;
            rim[x] = air.rim * outside2;
            far2[x] = air2.far;
            near2[x] = air2.near;
            rim2[x] = air2.rim;
            lineOut[x] = lines * outside2;
        }
        if (light)
            shadeLight(row, buffer.data());
        else
            shadeDark(row, buffer.data());
    }

private:
    struct Ring {
        float radius = 0;
        std::array<float, 2> lit{};
    };

    /// The rings' light waits in the last component to be written.
    static float* lineOf(ShadeRow& row) {
        return row.b;
    }

    template <typename Blend>
    void eachComponent(ShadeRow& row, Blend blend) const {
        blend(row.r, &LinearRgb::r);
        blend(row.g, &LinearRgb::g);
        blend(row.b, &LinearRgb::b);
    }

    void shadeDark(ShadeRow& row, const float* buffer) const {
        const int width = row.width;
        const float* lines = lineOf(row);
        eachComponent(row, [&](float* out, float LinearRgb::*part) {
            const float *ground = buffer, *cover = ground + width, *shadowed = cover + width,
                        *far = shadowed + width, *near = far + width, *rim = near + width,
                        *far2 = rim + width, *near2 = far2 + width, *rim2 = near2 + width;
            const float deep = tints[0].*part;
            const float close = tints[1].*part;
            const float farTint = tints[2].*part;
            const float nearTint = tints[3].*part;
            const float rimTint = tints[4].*part * 1.5F;
            const float ringTint = tints[5].*part * 0.6F;
            const float farTint2 = tints[6].*part;
            const float nearTint2 = tints[7].*part;
            for (int x = 0; x < width; ++x) {
                const float base = (deep + (close - deep) * ground[x]) * (1 - 0.5F * shadowed[x]);
                const float sum = base * (1 - 0.35F * cover[x]) + farTint * far[x] + nearTint * near[x] +
                                  rimTint * rim[x] + ringTint * lines[x] + farTint2 * far2[x] * 0.9F +
                                  nearTint2 * near2[x] * 0.85F + (nearTint2 + rimTint) * 0.32F * rim2[x];
                out[x] = 1 - exponential(-sum);
            }
        });
    }

    void shadeLight(ShadeRow& row, const float* buffer) const {
        const int width = row.width;
        const float* lines = lineOf(row);
        eachComponent(row, [&](float* out, float LinearRgb::*part) {
            const float *ground = buffer, *cover = ground + width, *shadowed = cover + width,
                        *far = shadowed + width, *near = far + width, *rim = near + width,
                        *far2 = rim + width, *near2 = far2 + width, *rim2 = near2 + width;
            const float deep = tints[0].*part;
            const float close = tints[1].*part;
            // Coloured light on a light ground takes away what it lacks.
            const float farLack = 1.25F * (1 - tints[2].*part);
            const float nearLack = 0.9F * (1 - tints[3].*part);
            const float rimTint = tints[4].*part;
            const float ringTint = tints[5].*part;
            const float farLack2 = 1.25F * (1 - tints[6].*part);
            const float nearLack2 = 0.9F * (1 - tints[7].*part);
            for (int x = 0; x < width; ++x) {
                const float base =
                    (deep + (close - deep) * ground[x]) * (1 - 0.07F * shadowed[x]) * (1 - 0.04F * cover[x]);
                const float veiled = base * exponential(-(farLack * far[x] + nearLack * near[x] +
                                                          farLack2 * far2[x] + nearLack2 * near2[x]));
                const float shining = 1 - exponential(-(rim[x] + 0.6F * rim2[x]));
                const float lined = mix(veiled, ringTint, unit(lines[x] * 0.8F));
                out[x] = mix(lined, rimTint, shining);
            }
        });
    }

    bool light;
    float perPixel;
    Body great;
    Body small;
    std::array<Ring, 3> rings;
    std::array<LinearRgb, 8> tints;
};

} // namespace

std::unique_ptr<Shader> WallpaperFamilies::orbit(const Stage& stage, const WallpaperStyle& style) {
    return std::make_unique<OrbitShader>(stage, style);
}

} // namespace RecordCore
