#include "OmbrelRecord/AppModel/Images.h"

#include "RecordCore/Rendering/RgbImage.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace OmbrelRecord {

QImage imageOf(const RecordCore::PlanarView& picture) {
    QImage image(picture.width, picture.height, QImage::Format_RGB32);
    if (!image.isNull()) RecordCore::toBgra(picture, image.bits(), image.bytesPerLine(), 0, picture.height);
    return image;
}

namespace {

/// How one side is made smaller: where each sample of the source falls, and how much of it falls there; the
/// rest of it falls on the next.
struct Shares {
    struct Share {
        int to;
        float here, next;
    };
    std::vector<Share> of;

    Shares(int from, int to) : of(static_cast<std::size_t>(from)) {
        const double ratio = static_cast<double>(to) / from;
        for (int i = 0; i < from; ++i) {
            const double begin = i * ratio, end = begin + ratio;
            const int place = std::min(static_cast<int>(begin), to - 1);
            const double over = place + 1 < to ? std::max(0.0, end - (place + 1)) : 0.0;
            of[static_cast<std::size_t>(i)] = {place, static_cast<float>(ratio - over),
                                               static_cast<float>(over)};
        }
    }
};

} // namespace

QImage imageOf(const RecordCore::PlanarView& picture, QSize largest) {
    const QSize whole(picture.width, picture.height);
    if (whole.isEmpty() || (whole.width() <= largest.width() && whole.height() <= largest.height()))
        return imageOf(picture);
    QSize size = whole.scaled(largest, Qt::KeepAspectRatio).expandedTo({1, 1});
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) return image;

    constexpr int bandRows = 32;
    const Shares columns(whole.width(), size.width()), rows(whole.height(), size.height());
    const auto stride = static_cast<std::size_t>(whole.width()) * 4;
    std::vector<std::uint8_t> band(stride * bandRows);
    // One sample more: the last column's rest, which is nothing, falls there.
    std::vector<float> line((static_cast<std::size_t>(size.width()) + 1) * 3), sum(line.size()),
        next(line.size());
    const auto finish = [&](int row) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
        const auto value = [&](std::size_t i) { return std::clamp(static_cast<int>(sum[i] + 0.5F), 0, 255); };
        for (std::size_t x = 0; x < static_cast<std::size_t>(size.width()); ++x)
            pixels[x] = qRgb(value(3 * x + 2), value(3 * x + 1), value(3 * x));
    };
    for (int top = 0; top < whole.height(); top += bandRows) {
        const int bottom = std::min(top + bandRows, whole.height());
        // Where row 0 would be, so that row `top` is the band's first.
        auto* const first = reinterpret_cast<std::uint8_t*>(reinterpret_cast<std::uintptr_t>(band.data()) -
                                                            stride * static_cast<std::size_t>(top));
        RecordCore::toBgra(picture, first, static_cast<std::ptrdiff_t>(stride), top, bottom);
        for (int y = top; y < bottom; ++y) {
            const std::uint8_t* pixel = band.data() + stride * static_cast<std::size_t>(y - top);
            std::ranges::fill(line, 0.0F);
            for (const Shares::Share& share : columns.of) {
                float* at = line.data() + static_cast<std::ptrdiff_t>(share.to) * 3;
                for (int c = 0; c < 3; ++c) {
                    at[c] += share.here * static_cast<float>(pixel[c]);
                    at[c + 3] += share.next * static_cast<float>(pixel[c]);
                }
                pixel += 4;
            }
            const Shares::Share& share = rows.of[static_cast<std::size_t>(y)];
            for (std::size_t i = 0; i < line.size(); ++i) {
                sum[i] += share.here * line[i];
                next[i] += share.next * line[i];
            }
            const bool last =
                y + 1 == whole.height() || rows.of[static_cast<std::size_t>(y) + 1].to != share.to;
            if (!last) continue;
            finish(share.to);
            std::swap(sum, next);
            std::ranges::fill(next, 0.0F);
        }
    }
    return image;
}

} // namespace OmbrelRecord
