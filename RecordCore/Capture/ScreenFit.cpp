#include "RecordCore/Capture/ScreenFit.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

ScreenFit ScreenFit::of(int contentWidth, int contentHeight, int pictureWidth, int pictureHeight) {
    if (contentWidth / 2 * 2 == pictureWidth && contentHeight / 2 * 2 == pictureHeight)
        return {0, 0, pictureWidth, pictureHeight, true};
    const double scale = std::min({1.0, static_cast<double>(pictureWidth) / std::max(contentWidth, 1),
                                   static_cast<double>(pictureHeight) / std::max(contentHeight, 1)});
    const auto even = [](double length, int most) {
        return std::clamp(static_cast<int>(length / 2 + 1e-9) * 2, 2, most);
    };
    ScreenFit fit;
    fit.width = even(contentWidth * scale, pictureWidth);
    fit.height = even(contentHeight * scale, pictureHeight);
    fit.x = (pictureWidth - fit.width) / 4 * 2;
    fit.y = (pictureHeight - fit.height) / 4 * 2;
    return fit;
}

CapturedArea capturedArea(const ScreenRect& frame, int pictureWidth, int pictureHeight) {
    if (frame.empty()) return {frame, frame};
    const ScreenFit fit = ScreenFit::of(static_cast<int>(frame.width), static_cast<int>(frame.height),
                                        pictureWidth, pictureHeight);
    if (fit.exact)
        return {frame,
                {frame.x, frame.y, static_cast<double>(pictureWidth), static_cast<double>(pictureHeight)}};
    // Desktop pixels to one of the picture; content at its own size only loses an odd last column or row.
    const auto ratio = [](double content, int fitted) {
        return static_cast<int>(content) / 2 * 2 == fitted ? 1.0 : content / fitted;
    };
    const double horizontal = ratio(frame.width, fit.width);
    const double vertical = ratio(frame.height, fit.height);
    return {frame,
            {frame.x - fit.x * horizontal, frame.y - fit.y * vertical, pictureWidth * horizontal,
             pictureHeight * vertical}};
}

void ScreenScaler::Axis::prepare(int sourceSize, int targetSize) {
    if (from == sourceSize && to == targetSize) return;
    from = sourceSize;
    to = targetSize;
    first.assign(static_cast<std::size_t>(targetSize), 0);
    start.assign(static_cast<std::size_t>(targetSize) + 1, 0);
    weights.clear();
    const double ratio = static_cast<double>(sourceSize) / targetSize;
    const double radius = std::max(ratio, 1.0);
    std::vector<double> exact;
    for (int i = 0; i < targetSize; ++i) {
        const double center = (i + 0.5) * ratio - 0.5;
        const int low = std::clamp(static_cast<int>(std::ceil(center - radius)), 0, sourceSize - 1);
        const int high = std::clamp(static_cast<int>(std::floor(center + radius)), low, sourceSize - 1);
        exact.clear();
        double sum = 0;
        for (int s = low; s <= high; ++s) {
            exact.push_back(std::max(1e-9, 1 - std::abs(s - center) / radius));
            sum += exact.back();
        }
        first[static_cast<std::size_t>(i)] = low;
        start[static_cast<std::size_t>(i)] = static_cast<int>(weights.size());
        std::int32_t left = 4096;
        for (std::size_t k = 0; k < exact.size(); ++k) {
            const auto weight = static_cast<std::int32_t>(std::lround(exact[k] / sum * 4096));
            weights.push_back(weight);
            left -= weight;
        }
        // What rounding left over goes to the middle tap, so that flat areas stay flat.
        weights[static_cast<std::size_t>(start[static_cast<std::size_t>(i)]) + exact.size() / 2] += left;
    }
    start.back() = static_cast<int>(weights.size());
}

void ScreenScaler::scale(const BgraView& source, int width, int height, std::vector<std::uint8_t>& out) {
    columns.prepare(source.width, width);
    rows.prepare(source.height, height);
    const auto rowBytes = static_cast<std::size_t>(width) * 4;
    narrowed.resize(rowBytes * static_cast<std::size_t>(source.height));
    out.resize(rowBytes * static_cast<std::size_t>(height));
    for (int y = 0; y < source.height; ++y) {
        const std::uint8_t* row = source.pixels + y * source.stride;
        std::uint8_t* target = narrowed.data() + static_cast<std::size_t>(y) * rowBytes;
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
            std::int32_t b = 2048, g = 2048, r = 2048;
            const std::uint8_t* pixel = row + static_cast<std::ptrdiff_t>(columns.first[x]) * 4;
            for (int k = columns.start[x]; k < columns.start[x + 1]; ++k, pixel += 4) {
                const std::int32_t weight = columns.weights[static_cast<std::size_t>(k)];
                b += weight * pixel[0];
                g += weight * pixel[1];
                r += weight * pixel[2];
            }
            target[4 * x] = static_cast<std::uint8_t>(b >> 12);
            target[4 * x + 1] = static_cast<std::uint8_t>(g >> 12);
            target[4 * x + 2] = static_cast<std::uint8_t>(r >> 12);
            target[4 * x + 3] = 255;
        }
    }
    std::vector<std::int32_t> sums(rowBytes);
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        std::fill(sums.begin(), sums.end(), 2048);
        const std::uint8_t* row = narrowed.data() + static_cast<std::size_t>(rows.first[y]) * rowBytes;
        for (int k = rows.start[y]; k < rows.start[y + 1]; ++k, row += rowBytes) {
            const std::int32_t weight = rows.weights[static_cast<std::size_t>(k)];
            for (std::size_t x = 0; x < rowBytes; ++x)
                sums[x] += weight * row[x];
        }
        std::uint8_t* target = out.data() + y * rowBytes;
        for (std::size_t x = 0; x < rowBytes; ++x)
            target[x] = static_cast<std::uint8_t>(sums[x] >> 12);
    }
}

} // namespace RecordCore
