#pragma once
#include <array>

struct Color {
    double r, g, b;
};
using Palette = std::array<Color, 5>;

Color pick(const Palette& palette, double depth);

// Deep water, foam on the waves.
inline const Palette ocean{{
    {0.02, 0.05, 0.14},
    {0.05, 0.27, 0.52},
    {0.16, 0.62, 0.80},
    {0.75, 0.93, 0.95},
    {0.99, 1.00, 1.00},
}};

// A fire that has burnt down.
inline const Palette ember{{
    {0.07, 0.02, 0.10},
    {0.47, 0.07, 0.26},
    {0.91, 0.31, 0.16},
    {0.99, 0.73, 0.31},
    {1.00, 0.97, 0.84},
}};

// The first leaves.
inline const Palette spring{{
    {0.02, 0.09, 0.07},
    {0.06, 0.34, 0.23},
    {0.35, 0.66, 0.25},
    {0.84, 0.89, 0.41},
    {1.00, 1.00, 0.90},
}};
