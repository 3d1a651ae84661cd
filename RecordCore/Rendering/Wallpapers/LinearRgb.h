#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace RecordCore {

/// A colour in linear light with the primaries of sRGB; 1 is the brightest a screen shows.
struct LinearRgb {
    float r = 0;
    float g = 0;
    float b = 0;

    /// From the colour's usual notation, 0xRRGGBB.
    static LinearRgb hex(std::uint32_t code);

    LinearRgb operator*(float k) const { return {r * k, g * k, b * k}; }
    LinearRgb operator+(const LinearRgb& o) const { return {r + o.r, g + o.g, b + o.b}; }
    bool operator==(const LinearRgb&) const = default;
};

/// A colour by lightness and two opponent axes (Björn Ottosson's Oklab, 2020), in which mixing two colours
/// neither darkens nor greys the way between them.
struct Oklab {
    double L = 0;
    double a = 0;
    double b = 0;

    static Oklab of(const LinearRgb& tint);
    LinearRgb tint() const;
};

LinearRgb mixed(const LinearRgb& from, const LinearRgb& to, double share);

/// A course of colours over 0…1, as a table; between the stops colours are mixed by Oklab.
class Ramp {
public:
    struct Stop {
        double at;
        LinearRgb tint;
    };
    Ramp() = default;
    explicit Ramp(const std::vector<Stop>& stops);

    /// Colours for `count` places; what lies outside of 0…1 takes the end's colour.
    void apply(const float* places, int count, float* r, float* g, float* b) const;
    LinearRgb at(float place) const;

private:
    static constexpr int steps = 512;
    std::array<LinearRgb, steps + 2> table{};
};

/// Encodes linear light for the screen (sRGB's curve, within 0.002), limited to 0…1.
void encode(float* samples, int count);

} // namespace RecordCore
