#pragma once

#include <cstddef>
#include <cstdint>

namespace RecordCore {

/// The inner loops of the compositor. They are a library of their own (RecordCoreKernels), or stand-ins for
/// one that is loaded at the first call. Each chooses the widest vector instructions of the processor at run
/// time and computes in integers, so the results are the same on every processor. Pure and callable from
/// any thread. "Mixing" always means (x × (255 − m) + …) / 255 rounded to nearest.
namespace Kernels {

/// Weighs rows: out[i] = 64 × Σ rows[t][i] × weights[t] / 16384, rounded in each term, for `count` samples;
/// nothing beyond them is read or written.
void weighRows(const std::uint8_t* const* rows, const std::int16_t* weights, int taps, std::int16_t* out,
               int count);

/// Weighs samples within a row: out[i] = Σ in[starts[i] + t] × weight of tap t / (16384 × 64), limited to
/// 0…255. `count` is a multiple of 8; `padded`, the number of taps, is 4 or a multiple of 8. Weights are
/// grouped: for each eight outputs, for each eight taps, those of the outputs 0, 4, 1, 5, 2, 6, 3, 7; of four
/// taps, those of the outputs 0, 2, 4, 6, 1, 3, 5, 7. `in` must be readable `padded` samples beyond the last
/// start.
void weighColumns(const std::int16_t* in, const std::int32_t* starts, const std::int16_t* weights, int padded,
                  std::uint8_t* out, int count);

/// Converts a row to the bytes B, G, R, 255. Chroma comes for every column, in eighths of a step with 0 for
/// grey. Works in whole vectors: all three inputs must be readable and `out` writable up to 64 columns
/// beyond `count`.
void rowToBgra(const std::uint8_t* luma, const std::int16_t* cb, const std::int16_t* cr, std::uint8_t* out,
               int count);

/// picture = under where mask is 0, unchanged where it is 255, mixed in between.
void mixUnder(std::uint8_t* picture, const std::uint8_t* under, const std::uint8_t* mask, int count);

/// Lays a premultiplied layer over the picture: m = alpha × fade / 255,
/// picture = (picture × (255 − m) + color × fade) / 255.
void layOver(std::uint8_t* picture, const std::uint8_t* color, const std::uint8_t* alpha, int fade,
             int count);

/// The same with one colour and alpha for all samples.
void layConstant(std::uint8_t* picture, int color, int alpha, int fade, int count);

/// Sets changed[i] where the bytes [chunk × i, chunk × (i + 1)) of two rows differ; leaves the others as they
/// are. `chunk` is 32 or 64; only `count` bytes are looked at.
void markDifferences(const std::uint8_t* a, const std::uint8_t* b, int count, int chunk,
                     std::uint8_t* changed);

/// Name of the instruction set in use, and how many there are to choose from on this machine. `useTarget`
/// forces the i-th (for tests; -1 goes back to choosing). Not while other threads use the kernels. Not
/// offered by stand-ins.
const char* targetName();
int targetCount();
void useTarget(int index);

} // namespace Kernels

} // namespace RecordCore
