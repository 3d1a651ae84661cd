#pragma once

#include <cstdint>
#include <vector>

namespace RecordCore {

/// The weights of a one-dimensional resampling: output sample i is the sum over `taps` input samples from
/// `first[i]` on. The centre of output sample i lies at a × (i + 0.5) + b of the input, where input sample j
/// covers j … j + 1; input outside 0 … size − 1 repeats the edge. Reducing (|a| above 1 / 0.999) uses
/// Lanczos with three lobes widened by the ratio, anything else the cubic of Keys (1981) with a = −1/2,
/// which leaves samples that fall on the input untouched. Weights are in units of 1/16384 and add up to it.
/// Outputs come in whole groups of eight: `end` is moved up to that. `make` reuses the memory it has.
class ScaleTable {
public:
    static constexpr int unit = 16384;

    /// For the outputs [begin, end). The number of taps is limited: a stronger reduction than the limit
    /// allows samples the middle of its span more coarsely.
    void make(double a, double b, int size, int begin, int end);

    int begin() const { return firstOutput; }
    int end() const { return firstOutput + static_cast<int>(first.size()); }
    int taps() const { return tapCount; }
    /// Taps rounded up for vector loads, to 4 or a multiple of 8; the weights beyond `taps` are 0.
    int paddedTaps() const { return padded; }

    int start(int output) const { return first[static_cast<std::size_t>(output - firstOutput)]; }
    const std::int16_t* weights(int output) const {
        return values.data() +
               static_cast<std::size_t>(output - firstOutput) * static_cast<std::size_t>(padded);
    }
    /// For Kernels::weighColumns, from an output that begins a group.
    const std::int32_t* starts(int output) const { return first.data() + (output - firstOutput); }
    const std::int16_t* groupedWeights(int output) const {
        return grouped.data() + (weights(output) - values.data());
    }

    /// The input samples [low, high) that the outputs [from, to) read.
    struct Span {
        int low;
        int high;
    };
    Span inputs(int from, int to) const;

private:
    int firstOutput = 0;
    int tapCount = 1;
    int padded = 8;
    std::vector<std::int32_t> first;
    std::vector<std::int16_t> values;
    std::vector<std::int16_t> grouped; ///< the same weights in the order of the column kernel
    std::vector<double> scratch;
};

} // namespace RecordCore
