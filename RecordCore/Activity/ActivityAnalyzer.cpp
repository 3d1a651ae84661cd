#include "RecordCore/Activity/ActivityAnalyzer.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace RecordCore::ActivityAnalyzer {

namespace {

constexpr int cellDifference = 128; ///< a cell has changed when its differences sum to more …
constexpr int pixelDifference = 25; ///< … or two of its pixels differ by at least this
constexpr int bigPixels = 2;
constexpr std::size_t smallGroup = 11; ///< groups with fewer cells may be blinkers
constexpr int reach = 2;               ///< cells this far apart still belong together

/// The source position a grid pixel samples.
int sampled(int gridIndex, int gridLength, int length) {
    return std::min(length - 1, static_cast<int>((gridIndex + 0.5) * length / gridLength));
}

template <typename Luma>
void fillGrid(int width, int height, int gridW, int gridH, std::span<std::uint8_t> grid, Luma luma) {
    if (width <= 0 || height <= 0 || gridW <= 0 || gridH <= 0) return;
    std::vector<int> columns(static_cast<std::size_t>(gridW));
    for (int gx = 0; gx < gridW; ++gx)
        columns[static_cast<std::size_t>(gx)] = sampled(gx, gridW, width);
    std::uint8_t* out = grid.data();
    for (int gy = 0; gy < gridH; ++gy) {
        const int sy = sampled(gy, gridH, height);
        for (const int sx : columns)
            *out++ = luma(sx, sy);
    }
}

/// Finds the groups of one mask after the other without allocating for each.
class GroupFinder {
public:
    GroupFinder(int columns, int lines) :
        columns(columns), lines(lines),
        visited(static_cast<std::size_t>(columns) * static_cast<std::size_t>(lines)) {}

    /// Calls `found(group)` for each group, in the order of their first cells.
    template <typename Found>
    void find(const Mask& mask, Found found) {
        std::fill(visited.begin(), visited.end(), std::uint8_t{0});
        const int count = columns * lines;
        for (int first = 0; first < count; ++first) {
            if (!mask[static_cast<std::size_t>(first)] || visited[static_cast<std::size_t>(first)]) continue;
            group.cells.clear();
            group.minX = group.maxX = first % columns;
            group.minY = group.maxY = first / columns;
            visit(first);
            while (!stack.empty()) {
                const int cell = stack.back();
                stack.pop_back();
                take(cell, mask);
            }
            found(group);
        }
    }

private:
    void visit(int cell) {
        visited[static_cast<std::size_t>(cell)] = 1;
        stack.push_back(cell);
    }

    void take(int cell, const Mask& mask) {
        const int x = cell % columns;
        const int y = cell / columns;
        group.cells.push_back(cell);
        group.minX = std::min(group.minX, x);
        group.maxX = std::max(group.maxX, x);
        group.minY = std::min(group.minY, y);
        group.maxY = std::max(group.maxY, y);
        for (int ny = std::max(0, y - reach); ny <= std::min(lines - 1, y + reach); ++ny) {
            for (int nx = std::max(0, x - reach); nx <= std::min(columns - 1, x + reach); ++nx) {
                const int neighbour = ny * columns + nx;
                const auto index = static_cast<std::size_t>(neighbour);
                if (mask[index] && !visited[index]) visit(neighbour);
            }
        }
    }

    int columns;
    int lines;
    std::vector<std::uint8_t> visited;
    std::vector<int> stack;
    Group group;
};

/// The main area without the list of groups: what `mainArea` needs of each.
struct Extent {
    std::size_t cells;
    int minX;
    int minY;
    int maxX;
    int maxY;
};

Extent extentOf(const Group& group) {
    return {group.cells.size(), group.minX, group.minY, group.maxX, group.maxY};
}

std::optional<NRect> mainAreaOf(std::span<const Extent> groups, int columns, int lines) {
    std::size_t largest = 0;
    for (const Extent& group : groups)
        largest = std::max(largest, group.cells);
    std::optional<NRect> area;
    for (const Extent& group : groups) {
        if (group.cells * 4 < largest) continue;
        const NRect rect{static_cast<double>(group.minX) / columns, static_cast<double>(group.minY) / lines,
                         static_cast<double>(group.maxX - group.minX + 1) / columns,
                         static_cast<double>(group.maxY - group.minY + 1) / lines};
        area = area ? area->united(rect) : rect;
    }
    return area;
}

} // namespace

void lumaGrid(const PlanarView& frame, int gridW, int gridH, std::span<std::uint8_t> grid) {
    if (frame.empty()) return;
    fillGrid(frame.width, frame.height, gridW, gridH, grid,
             [&](int x, int y) { return frame.planes[0][y * frame.strides[0] + x]; });
}

void lumaGrid(const BgraView& frame, int gridW, int gridH, std::span<std::uint8_t> grid) {
    if (!frame.pixels) return;
    fillGrid(frame.width, frame.height, gridW, gridH, grid, [&](int x, int y) {
        const std::uint8_t* pixel = frame.pixels + y * frame.stride + std::ptrdiff_t{4} * x;
        return static_cast<std::uint8_t>((pixel[2] * 54 + pixel[1] * 183 + pixel[0] * 19) >> 8);
    });
}

void changeMask(std::span<const std::uint8_t> current, std::span<const std::uint8_t> previous, int columns,
                int lines, Mask& mask) {
    const auto width = static_cast<std::size_t>(columns) * points;
    mask.assign(static_cast<std::size_t>(columns) * static_cast<std::size_t>(lines), 0);
    for (std::size_t r = 0; r < static_cast<std::size_t>(lines); ++r) {
        for (std::size_t c = 0; c < static_cast<std::size_t>(columns); ++c) {
            int sum = 0;
            int big = 0;
            for (std::size_t py = 0; py < points; ++py) {
                const std::size_t row = (r * points + py) * width + c * points;
                for (std::size_t px = 0; px < points; ++px) {
                    const int d = std::abs(int{current[row + px]} - int{previous[row + px]});
                    sum += d;
                    big += d >= pixelDifference;
                }
            }
            mask[r * static_cast<std::size_t>(columns) + c] = sum > cellDifference || big >= bigPixels;
        }
    }
}

std::vector<Group> components(const Mask& mask, int columns, int lines) {
    std::vector<Group> groups;
    if (columns <= 0 || lines <= 0) return groups;
    GroupFinder(columns, lines).find(mask, [&](const Group& group) { groups.push_back(group); });
    return groups;
}

std::optional<NRect> mainArea(std::span<const Group> groups, int columns, int lines) {
    std::vector<Extent> extents;
    extents.reserve(groups.size());
    for (const Group& group : groups)
        extents.push_back(extentOf(group));
    return mainAreaOf(extents, columns, lines);
}

std::vector<ActivitySample> summarize(std::span<const double> times, std::span<const Mask> masks, int columns,
                                      int lines, int halfWindow) {
    return summarizeEach(
        times.first(masks.size()), [masks](std::size_t index, Mask& mask) { mask = masks[index]; }, columns,
        lines, halfWindow);
}

std::vector<ActivitySample> summarizeEach(std::span<const double> times, const LoadMask& load, int columns,
                                          int lines, int halfWindow) {
    std::vector<ActivitySample> samples;
    if (times.empty()) return samples;
    samples.reserve(times.size());

    const auto count = static_cast<std::ptrdiff_t>(times.size());
    const auto w = static_cast<std::ptrdiff_t>(halfWindow);
    const auto cells = static_cast<std::size_t>(columns) * static_cast<std::size_t>(lines);
    std::vector<int> changes(cells); // of each cell within the window
    Mask mask(cells);
    const auto count1 = [&](std::ptrdiff_t index, int by) {
        load(static_cast<std::size_t>(index), mask);
        for (std::size_t cell = 0; cell < cells; ++cell)
            changes[cell] += mask[cell] ? by : 0;
    };
    for (std::ptrdiff_t i = 0; i <= std::min(count - 1, w); ++i)
        count1(i, 1);

    GroupFinder finder(columns, lines);
    std::vector<Extent> kept;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        if (i > 0 && i + w < count) count1(i + w, 1);
        if (i > 0 && i - w - 1 >= 0) count1(i - w - 1, -1);
        const auto length =
            static_cast<double>(std::min(count - 1, i + w) - std::max<std::ptrdiff_t>(0, i - w) + 1);

        kept.clear();
        std::size_t total = 0;
        load(static_cast<std::size_t>(i), mask);
        finder.find(mask, [&](const Group& group) {
            if (group.cells.size() < smallGroup) {
                const auto persistent = std::count_if(group.cells.begin(), group.cells.end(), [&](int cell) {
                    return changes[static_cast<std::size_t>(cell)] >= length * 0.5;
                });
                if (static_cast<double>(persistent) >= 0.6 * static_cast<double>(group.cells.size())) return;
            }
            total += group.cells.size();
            kept.push_back(extentOf(group));
        });
        samples.push_back({times[static_cast<std::size_t>(i)],
                           static_cast<double>(total) / static_cast<double>(cells),
                           mainAreaOf(kept, columns, lines)});
    }
    return samples;
}

} // namespace RecordCore::ActivityAnalyzer
