#pragma once

#include "RecordCore/Capture/ScreenGeometry.h"
#include "RecordCore/Capture/WindowBounds.h"
#include "RecordCore/Model/PictureView.h"

#include <cstdint>
#include <vector>

namespace RecordCore {

/// How content of some size stands in a picture whose size is fixed: at its own size in the middle when it
/// fits, else reduced, with bars around it. All even.
struct ScreenFit {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    /// The content's pixels are the picture's, from the top-left corner on; at most an odd last column or row
    /// is left out. Then x and y are 0 and the size is the picture's.
    bool exact = false;

    static ScreenFit of(int contentWidth, int contentHeight, int pictureWidth, int pictureHeight);

    bool operator==(const ScreenFit&) const = default;
};

/// Where on the desktop the picture of content at `frame` lies, bars included.
CapturedArea capturedArea(const ScreenRect& frame, int pictureWidth, int pictureHeight);

/// Reduces BGRA pictures: a triangle filter widened by the ratio, per axis. Keeps its tables while the sizes
/// stay.
class ScreenScaler {
public:
    /// Fills `out` (width × height × 4 bytes).
    void scale(const BgraView& source, int width, int height, std::vector<std::uint8_t>& out);

private:
    struct Axis {
        int from = 0;
        int to = 0;
        std::vector<int> first;            ///< first source position of each target position
        std::vector<int> start;            ///< where its weights start; one more at the end
        std::vector<std::int32_t> weights; ///< sum 4096 for each target position
        void prepare(int sourceSize, int targetSize);
    };
    Axis columns;
    Axis rows;
    std::vector<std::uint8_t> narrowed;
};

} // namespace RecordCore
