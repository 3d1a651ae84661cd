#include "RecordCore/Rendering/Bitmap.h"

#include <algorithm>

namespace RecordCore {

void Bitmap::reset(int newWidth, int newHeight) {
    constexpr int longest = 16384;
    constexpr int most = 1 << 26;
    width = std::clamp(newWidth, 1, longest);
    height = std::clamp(newHeight, 1, std::min(longest, most / width));
    pixels.assign(static_cast<std::size_t>(stride()) * static_cast<std::size_t>(height), 0);
}

} // namespace RecordCore
