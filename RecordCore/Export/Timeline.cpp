#include "RecordCore/Export/Timeline.h"

#include <algorithm>

namespace RecordCore {

namespace {
constexpr double shortestCameraPart = 0.02; ///< source seconds
constexpr double shortestPiece = 0.001;     ///< output seconds
} // namespace

std::optional<double> Composition::cameraTime(double outputSeconds) const {
    const auto after =
        std::upper_bound(camera.begin(), camera.end(), outputSeconds,
                         [](double time, const Piece& piece) { return time < piece.output.start; });
    if (after == camera.begin()) return std::nullopt;
    const Piece& piece = *std::prev(after);
    if (!piece.output.contains(outputSeconds)) return std::nullopt;
    return piece.source.start + (outputSeconds - piece.output.start) * piece.speed;
}

namespace Timeline {

Composition composition(const Plan& plan, const std::optional<CameraFootage>& camera) {
    Composition result;
    double cursor = 0;
    for (const SpeedSegment& segment : plan.segments) {
        if (segment.isCut()) continue;
        const double length = (segment.end - segment.start) / segment.speed;
        const double start = cursor;
        cursor += length;

        const double sourceEnd = std::min(segment.end, plan.source.duration);
        if (sourceEnd > segment.start && length > shortestPiece)
            result.screen.push_back({{segment.start, sourceEnd}, {start, cursor}, segment.speed});
        if (!camera) continue;
        const double from = std::max(segment.start - camera->offset, 0.0);
        const double to = std::min(segment.end - camera->offset, camera->duration);
        if (to - from < shortestCameraPart) continue;
        const TimeRange output{start + (from + camera->offset - segment.start) / segment.speed,
                               start + (to + camera->offset - segment.start) / segment.speed};
        if (output.length() > shortestPiece) result.camera.push_back({{from, to}, output, segment.speed});
    }
    result.duration = cursor;
    return result;
}

} // namespace Timeline
} // namespace RecordCore
