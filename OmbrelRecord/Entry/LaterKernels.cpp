#include "OmbrelRecord/Entry/Module.h"
#include "OmbrelRecord/Entry/Modules/Modules.h"

// The engine's inner loops until they are called: in the program these stand in for those of the module.
namespace RecordCore {

namespace {

const OmbrelRecord::Modules::Kernels& kernels() {
    return OmbrelRecord::module<OmbrelRecord::Modules::Kernels>();
}

} // namespace

void Kernels::weighRows(const std::uint8_t* const* rows, const std::int16_t* weights, int taps,
                        std::int16_t* out, int count) {
    kernels().weighRows(rows, weights, taps, out, count);
}

void Kernels::weighColumns(const std::int16_t* in, const std::int32_t* starts, const std::int16_t* weights,
                           int padded, std::uint8_t* out, int count) {
    kernels().weighColumns(in, starts, weights, padded, out, count);
}

void Kernels::rowToBgra(const std::uint8_t* luma, const std::int16_t* cb, const std::int16_t* cr,
                        std::uint8_t* out, int count) {
    kernels().rowToBgra(luma, cb, cr, out, count);
}

void Kernels::mixUnder(std::uint8_t* picture, const std::uint8_t* under, const std::uint8_t* mask,
                       int count) {
    kernels().mixUnder(picture, under, mask, count);
}

void Kernels::layOver(std::uint8_t* picture, const std::uint8_t* color, const std::uint8_t* alpha, int fade,
                      int count) {
    kernels().layOver(picture, color, alpha, fade, count);
}

void Kernels::layConstant(std::uint8_t* picture, int color, int alpha, int fade, int count) {
    kernels().layConstant(picture, color, alpha, fade, count);
}

void Kernels::markDifferences(const std::uint8_t* a, const std::uint8_t* b, int count, int chunk,
                              std::uint8_t* changed) {
    kernels().markDifferences(a, b, count, chunk, changed);
}

} // namespace RecordCore
