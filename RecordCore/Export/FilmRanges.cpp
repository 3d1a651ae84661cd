#include "RecordCore/Export/FilmRanges.h"

#include <algorithm>

namespace RecordCore {

std::vector<FilmRange> filmRanges(std::int64_t frames, int keyInterval, int keysPerRange) {
    const std::int64_t step = std::max(keyInterval, 1);
    const std::int64_t each = std::max(keysPerRange, 1);
    const std::int64_t keys = std::max<std::int64_t>((frames + step - 1) / step, 1);
    std::int64_t count = (keys + each / 2) / each;
    if (count < 3) count = 1;
    std::vector<FilmRange> ranges;
    ranges.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i)
        ranges.push_back({keys * i / count * step, std::min(keys * (i + 1) / count * step, frames)});
    return ranges;
}

} // namespace RecordCore
