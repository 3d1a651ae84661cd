#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace RecordCore {

/// Which 16×16 blocks of a picture are marked. Plain value.
class BlockMap {
public:
    static constexpr int blockSize = 16;

    BlockMap() = default;
    BlockMap(int pictureWidth, int pictureHeight) :
        columns((pictureWidth + blockSize - 1) / blockSize),
        rows((pictureHeight + blockSize - 1) / blockSize),
        marks(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), 0) {}

    /// A run of blocks as a rectangle, in blocks.
    struct Run {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        bool operator==(const Run&) const = default;
    };

    std::uint8_t& at(int column, int row) { return marks[index(column, row)]; }
    bool marked(int column, int row) const { return marks[index(column, row)] != 0; }
    bool any() const;
    int count() const;

    void clear();
    void markAll();
    /// Marks every block that the pixel rectangle touches; parts outside the picture are ignored.
    void markPixels(int x, int y, int width, int height);
    /// Marks what the other map (of the same size) marks.
    void add(const std::uint8_t* other);

    /// Covers the marked blocks with rectangles that do not overlap: runs of each row, with gaps of at most
    /// `gap` blocks closed, and equal runs of neighbouring rows joined.
    void runs(int gap, std::vector<Run>& out) const;

    int columns = 0;
    int rows = 0;
    std::vector<std::uint8_t> marks; ///< row by row, 0 or not 0

private:
    std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(column);
    }
};

} // namespace RecordCore
