#include "RecordCore/Capture/BlockMap.h"

#include <algorithm>

namespace RecordCore {

bool BlockMap::any() const {
    return std::any_of(marks.begin(), marks.end(), [](std::uint8_t mark) { return mark != 0; });
}

int BlockMap::count() const {
    return static_cast<int>(
        std::count_if(marks.begin(), marks.end(), [](std::uint8_t mark) { return mark != 0; }));
}

void BlockMap::clear() {
    std::fill(marks.begin(), marks.end(), std::uint8_t{0});
}

void BlockMap::markAll() {
    std::fill(marks.begin(), marks.end(), std::uint8_t{1});
}

void BlockMap::markPixels(int x, int y, int width, int height) {
    const int left = std::max(x, 0) / blockSize;
    const int top = std::max(y, 0) / blockSize;
    const int right = std::min(columns, (x + width + blockSize - 1) / blockSize);
    const int bottom = std::min(rows, (y + height + blockSize - 1) / blockSize);
    if (width <= 0 || height <= 0 || left >= right) return;
    for (int row = top; row < bottom; ++row)
        std::fill_n(marks.begin() + static_cast<std::ptrdiff_t>(index(left, row)), right - left,
                    std::uint8_t{1});
}

void BlockMap::add(const std::uint8_t* other) {
    for (std::size_t i = 0; i < marks.size(); ++i)
        marks[i] = static_cast<std::uint8_t>(marks[i] | other[i]);
}

void BlockMap::runs(int gap, std::vector<Run>& out) const {
    out.clear();
    std::size_t openFrom = 0; // runs of the row above start here
    for (int row = 0; row < rows; ++row) {
        const std::size_t firstOfRow = out.size();
        std::size_t above = openFrom;
        std::size_t joined = 0;
        int column = 0;
        while (column < columns) {
            if (!marked(column, row)) {
                ++column;
                continue;
            }
            int end = column + 1;
            for (int next = end; next < columns && next - end <= gap; ++next)
                if (marked(next, row)) end = next + 1;
            out.push_back({column, row, end - column, 1});
            column = end;
        }
        // Join only when the whole row repeats the one above: keeps the bookkeeping to one pass, and boxes,
        // the usual damage, are what repeats.
        const std::size_t count = out.size() - firstOfRow;
        if (count > 0 && firstOfRow - above == count) {
            for (std::size_t i = 0; i < count; ++i) {
                const Run& old = out[above + i];
                const Run& fresh = out[firstOfRow + i];
                joined += old.x == fresh.x && old.width == fresh.width && old.y + old.height == row ? 1u : 0u;
            }
        }
        if (count > 0 && joined == count) {
            for (std::size_t i = 0; i < count; ++i)
                ++out[above + i].height;
            out.resize(firstOfRow);
        } else {
            openFrom = firstOfRow;
        }
    }
}

} // namespace RecordCore
