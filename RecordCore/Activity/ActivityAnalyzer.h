#pragma once

#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/PictureView.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace RecordCore {

/// Summarises pictures as activity: how much of the screen changed and where. Frames are reduced to a grid of
/// luma values, compared cell by cell (a cell is 4 × 4 grid pixels) and summarised over a sliding window.
/// Stateless.
namespace ActivityAnalyzer {

inline constexpr int cols = 64;         ///< cells across
inline constexpr int rows = 40;         ///< cells down
inline constexpr int points = 4;        ///< grid pixels per cell edge
inline constexpr double sampleFps = 15; ///< sampled frames per second
inline constexpr int window = 30;       ///< sampled frames on either side that a summary looks at

/// One flag per cell, row by row: not 0 where the cell changed.
using Mask = std::vector<std::uint8_t>;

/// One connected region of changed cells.
struct Group {
    std::vector<int> cells; ///< row × columns + column, in the order they were found
    int minX = 0;
    int minY = 0;
    int maxX = 0;
    int maxY = 0;
    bool operator==(const Group&) const = default;
};

/// Fills `grid` (gridW × gridH bytes, row by row) with a frame's luma, sampled at the middle of each grid
/// pixel. A view without pixels leaves the grid as it was.
void lumaGrid(const PlanarView& frame, int gridW, int gridH, std::span<std::uint8_t> grid);
void lumaGrid(const BgraView& frame, int gridW, int gridH, std::span<std::uint8_t> grid);

/// Marks the cells in which two grids of cols·4 × rows·4 differ visibly.
void changeMask(std::span<const std::uint8_t> current, std::span<const std::uint8_t> previous, int columns,
                int lines, Mask& mask);

/// The connected regions of a mask. Cells within two columns and rows of one another belong together.
std::vector<Group> components(const Mask& mask, int columns, int lines);

/// The smallest rectangle, normalised, that holds the largest group and all at least a quarter its size.
std::optional<NRect> mainArea(std::span<const Group> groups, int columns, int lines);

/// One sample per mask. Small regions that change all the time (a caret, a spinner) don't count.
std::vector<ActivitySample> summarize(std::span<const double> times, std::span<const Mask> masks, int columns,
                                      int lines, int halfWindow);

/// The same for masks that are kept in another form: `load` makes each when it is wanted, some times over, so
/// that an hour of them never has to stand in memory.
using LoadMask = std::function<void(std::size_t index, Mask& mask)>;
std::vector<ActivitySample> summarizeEach(std::span<const double> times, const LoadMask& load, int columns,
                                          int lines, int halfWindow);

} // namespace ActivityAnalyzer
} // namespace RecordCore
