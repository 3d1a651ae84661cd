#pragma once

#include "RecordCore/Capture/BlockMap.h"
#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Model/PictureView.h"

namespace RecordCore {

/// Where pixels of the screen go in the picture: `source` holds the screen's pixels from column `left` and
/// row `top` of the picture on.
struct ScreenPatch {
    BgraView source;
    int left = 0; ///< even
    int top = 0;  ///< even
};

/// Converts the rectangle x, y, width, height of the picture (all even) from the patch into `picture`:
/// BT.709, video range, chroma averaged over two rows and, sited left, 1-2-1 over the columns. The patch
/// should hold two more columns on either side of the rectangle: chroma looks at them, and the chroma column
/// to the right, which looks at the rectangle's last pixel, is converted too. Where the patch ends its edge
/// repeats. Blocks whose converted pixels differ from what the picture held are marked in `changed` (of the
/// picture's size).
///
/// Formulas: ITU-R BT.709-6, 8 bit. Results are within one unit of the exact value.
/// Thread: any, one per picture.
void convertScreen(const ScreenPatch& patch, int x, int y, int width, int height, CapturePicture& picture,
                   BlockMap& changed);

} // namespace RecordCore
