#pragma once

#include <cstdint>

namespace RecordCore {

/// Seeded gradient noise (Perlin 2002), the same for a seed on every machine: about −0.7…0.7, changing
/// within a unit of its argument. A plain value.
class Noise {
public:
    explicit Noise(std::uint32_t seed) : seed(seed) {}

    double at(double x, double y) const;
    double at(double x) const { return at(x, 0.37); }
    /// Octaves of noise, each finer by two and weaker by `fall`.
    double octaves(double x, double y, int count, double fall = 0.5) const;

    /// The n-th random number of the seed, 0…1.
    double pick(std::uint32_t n) const;
    double pick(std::uint32_t n, double low, double high) const { return low + (high - low) * pick(n); }

private:
    std::uint32_t seed;
};

} // namespace RecordCore
