#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <cmath>
#include <numbers>

namespace RecordCore {

double ShadeMath::sine(double turns) {
    double t = turns - std::floor(turns); // 0 … 1
    double sign = 1;
    if (t >= 0.5) {
        t -= 0.5;
        sign = -1;
    }
    if (t > 0.25) t = 0.5 - t;
    const double x = t * 2 * std::numbers::pi; // 0 … π/2
    const double q = x * x;
    double sum = 0;
    for (int n = 19; n >= 3; n -= 2)
        sum = (1 + sum) * (-q / (n * (n - 1)));
    return sign * x * (1 + sum);
}

double ShadeMath::cosine(double turns) {
    return sine(turns + 0.25);
}

double ShadeMath::cubeRoot(double x) {
    if (x == 0) return 0;
    int exponent = 0;
    const double mantissa = std::frexp(x < 0 ? -x : x, &exponent); // 1/2 … 1
    const int third = exponent >= 0 ? (exponent + 2) / 3 : exponent / 3;
    const double value = std::ldexp(mantissa, exponent - 3 * third); // 1/16 … 1
    double root = 0.4 + 0.6 * value;
    for (int i = 0; i < 7; ++i)
        root -= (root - value / (root * root)) / 3; // Newton
    return (x < 0 ? -1 : 1) * std::ldexp(root, third);
}

} // namespace RecordCore
