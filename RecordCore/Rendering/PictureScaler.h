#pragma once

#include "RecordCore/Rendering/Overlay.h"
#include "RecordCore/Rendering/Picture.h"
#include "RecordCore/Rendering/ScaleTable.h"

#include <array>
#include <cstdint>
#include <vector>

namespace RecordCore {

/// How canvas positions map to positions in a source, in luma pixels: source = a × canvas + b.
struct AxisMapping {
    double a = 1;
    double b = 0;
    bool operator==(const AxisMapping&) const = default;
};

/// Resamples a planar picture to where it stands on a canvas, honouring the siting of chroma. `make` is
/// called when the mapping changes; `scale` then works from any number of threads, each with its own
/// scratch memory.
class PictureScaler {
public:
    /// `area`: the canvas pixels that will be asked for. It begins at a multiple of 16 columns and at an even
    /// row and ends at an even row.
    void make(const AxisMapping& across, const AxisMapping& down, int sourceWidth, int sourceHeight,
              const PixelRect& area);

    struct Scratch {
        std::vector<std::int16_t> line;
        std::vector<const std::uint8_t*> rows;
    };

    /// Writes one plane's part of `part` (even edges, inside the area) into `target`, whose pixel (0, 0) is
    /// the canvas pixel (left, top), even.
    void scale(const PlanarView& source, int plane, const PixelRect& part, Picture& target, int left, int top,
               Scratch& scratch) const;

    /// The source pixels, in luma coordinates, that the canvas pixels [from, to) take in.
    ScaleTable::Span sourceColumns(int from, int to) const;
    ScaleTable::Span sourceRows(int from, int to) const;

private:
    int sourceWidth = 0;
    std::array<ScaleTable, 2> columns; ///< luma, chroma
    std::array<ScaleTable, 2> lines;
};

} // namespace RecordCore
