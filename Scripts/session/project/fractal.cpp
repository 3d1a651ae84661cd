#include "fractal.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace {
constexpr int most = 1500;  // steps before a point counts as inside
constexpr int samples = 20; // each way in a pixel, so that fine threads do not flicker

double depthAt(std::complex<double> c)
{
    std::complex<double> z = 0;
    int n = 0;
    for (; n < most && std::norm(z) < 256; ++n)
        z = z * z + c;
    if (n == most) return 1;
    return std::clamp((n - std::log2(std::log2(std::norm(z)))) / 300, 0.0, 0.99);
}

void progress(double part)
{
    std::string bar;
    for (int i = 0; i < 40; ++i)
        bar += i < part * 40 ? "━" : " ";
    std::fprintf(stderr, "\rcompute   \033[38;5;209m%s\033[0m %3d %%", bar.c_str(), int(part * 100));
    if (part == 1) std::fprintf(stderr, "\n\n");
}
} // namespace

Picture::Picture(int w, int h) : width(w), height(h), depth(w * h) {}

void Picture::compute(std::complex<double> middle, double size)
{
    const double step = size / width / samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double sum = 0;
            for (int j = 0; j < samples * samples; ++j)
                sum += depthAt(middle + step * std::complex<double>((x - width / 2.0) * samples + j % samples,
                                                                    (y - height / 2.0) * samples + j / samples));
            depth[y * width + x] = sum / (samples * samples);
        }
        progress(double(y + 1) / height);
    }
}
