#include "RecordCore/Rendering/PictureScaler.h"

#include "RecordCore/Rendering/Kernels/Kernels.h"

#include <algorithm>

namespace RecordCore {

namespace {

/// Vector loads of the column kernel may reach this far beyond the last sample of a row.
constexpr std::size_t lineSlack = 320;

ScaleTable::Span joined(const ScaleTable::Span& luma, const ScaleTable::Span& chroma) {
    return {std::min(luma.low, 2 * chroma.low), std::max(luma.high, 2 * chroma.high)};
}

} // namespace

void PictureScaler::make(const AxisMapping& across, const AxisMapping& down, int width, int height,
                         const PixelRect& area) {
    sourceWidth = width;
    columns[0].make(across.a, across.b, width, area.x0, area.x1);
    lines[0].make(down.a, down.b, height, area.y0, area.y1);
    // Chroma sample i of the canvas lies at the luma position (2 i + 0.5, 2 i + 1), as it does in the source.
    columns[1].make(across.a, across.b / 2 + 0.25 - 0.25 * across.a, (width + 1) / 2, area.x0 / 2,
                    area.x1 / 2);
    lines[1].make(down.a, down.b / 2, (height + 1) / 2, area.y0 / 2, area.y1 / 2);
}

void PictureScaler::scale(const PlanarView& source, int plane, const PixelRect& part, Picture& target,
                          int left, int top, Scratch& scratch) const {
    const std::size_t kind = plane == 0 ? 0 : 1;
    const int divisor = plane == 0 ? 1 : 2;
    const ScaleTable& across = columns[kind];
    const ScaleTable& down = lines[kind];
    const int x0 = part.x0 / divisor;
    const int x1 = (part.x1 + divisor - 1) / divisor;
    const ScaleTable::Span span = across.inputs(x0, (x1 - x0 + 7) / 8 * 8 + x0);
    const int taps = down.taps();
    if (scratch.line.size() < static_cast<std::size_t>(sourceWidth) + lineSlack)
        scratch.line.resize(static_cast<std::size_t>(sourceWidth) + lineSlack);
    if (scratch.rows.size() < static_cast<std::size_t>(taps))
        scratch.rows.resize(static_cast<std::size_t>(taps));

    const std::uint8_t* samples = source.planes[static_cast<std::size_t>(plane)];
    const std::ptrdiff_t stride = source.strides[static_cast<std::size_t>(plane)];
    const std::int32_t* starts = across.starts(x0);
    const std::int16_t* columnWeights = across.groupedWeights(x0);
    const int count = (x1 - x0 + 7) / 8 * 8;
    for (int y = part.y0 / divisor; y < part.y1 / divisor; ++y) {
        const std::int16_t* weights = down.weights(y);
        // Rows without weight are left out.
        int first = 0;
        int last = taps;
        while (last - first > 1 && weights[last - 1] == 0)
            --last;
        while (last - first > 1 && weights[first] == 0)
            ++first;
        for (int t = first; t < last; ++t)
            scratch.rows[static_cast<std::size_t>(t - first)] =
                samples + stride * (down.start(y) + t) + span.low;
        Kernels::weighRows(scratch.rows.data(), weights + first, last - first, scratch.line.data() + span.low,
                           span.high - span.low);
        Kernels::weighColumns(scratch.line.data(), starts, columnWeights, across.paddedTaps(),
                              target.row(plane, y - top / divisor) + x0 - left / divisor, count);
    }
}

ScaleTable::Span PictureScaler::sourceColumns(int from, int to) const {
    return joined(columns[0].inputs(from, to), columns[1].inputs(from / 2, std::max(to / 2, from / 2 + 1)));
}

ScaleTable::Span PictureScaler::sourceRows(int from, int to) const {
    return joined(lines[0].inputs(from, to), lines[1].inputs(from / 2, std::max(to / 2, from / 2 + 1)));
}

} // namespace RecordCore
