#pragma once
#include <complex>
#include <vector>

struct Picture {
    Picture(int width, int height);
    void compute(std::complex<double> middle, double size);

    int width, height;
    std::vector<double> depth; // 0 … 1; 1 is inside
};
