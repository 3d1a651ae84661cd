#include "RecordCore/Model/Project.h"

#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Json.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace RecordCore {

namespace {

/// Times closer than this count as equal.
constexpr double nearly = 1e-6;
/// Kept stretches of at most this many seconds vanish.
constexpr double sliver = 0.01;
/// A split must lie more than this many seconds inside its kept stretch.
constexpr double splitMargin = 0.02;

/// Calls `visit(key, field)` for every stored field, in order. The one list of what a project file holds.
template <typename P, typename Visitor>
void visitFields(P& p, Visitor&& visit) {
    visit("format", p.format);
    visit("wallpaperPreset", p.wallpaperPreset);
    visit("wallpaper", p.wallpaper);
    visit("solidColor", p.solidColor);
    visit("backdrop", p.backdrop);
    visit("backgroundBlur", p.backgroundBlur);
    visit("padding", p.padding);
    visit("radius", p.radius);
    visit("shadow", p.shadow);
    visit("cursorSize", p.cursorSize);
    visit("cursorSmooth", p.cursorSmooth);
    visit("clickRipples", p.clickRipples);
    visit("hideIdleCursor", p.hideIdleCursor);
    visit("cursorStyle", p.cursorStyle);
    visit("clickEffect", p.clickEffect);
    visit("clickBounce", p.clickBounce);
    visit("cameraShow", p.cameraShow);
    visit("cameraCircle", p.cameraCircle);
    visit("cameraSize", p.cameraSize);
    visit("cameraCorner", p.cameraCorner);
    visit("cameraMirror", p.cameraMirror);
    visit("cameraShape", p.cameraShape);
    visit("cameraBorder", p.cameraBorder);
    visit("cameraMakeRoom", p.cameraMakeRoom);
    visit("showTitle", p.showTitle);
    visit("title", p.title);
    visit("subtitle", p.subtitle);
    visit("showEnd", p.showEnd);
    visit("endTitle", p.endTitle);
    visit("endSubtitle", p.endSubtitle);
    visit("showClock", p.showClock);
    visit("skipWaiting", p.skipWaiting);
    visit("followAction", p.followAction);
    visit("maxZoom", p.maxZoom);
    visit("maxSpeed", p.maxSpeed);
    visit("motion", p.motion);
    visit("captions", p.captions);
    visit("showCaptions", p.showCaptions);
    visit("captionStyle", p.captionStyle);
    visit("captionSize", p.captionSize);
    visit("captionBottom", p.captionBottom);
    visit("crop", p.crop);
    visit("trimStart", p.trimStart);
    visit("trimEnd", p.trimEnd);
    visit("cuts", p.cuts);
    visit("splits", p.splits);
    visit("speedBlocks", p.speedBlocks);
    visit("zoomBlocks", p.zoomBlocks);
}

struct Encoder {
    Json& object;
    template <typename T>
    void operator()(const char* key, const T& value) const {
        object[key] = JsonWriting::encode(value);
    }
    template <typename T>
    void operator()(const char* key, const std::optional<T>& value) const {
        JsonWriting::put(object, key, value);
    }
};

/// A key the file lacks keeps the default the project already holds.
struct Decoder {
    const Json& object;
    template <typename T>
    void operator()(const char* key, T& value) const {
        if (object.contains(key)) JsonReading::required(object, key, value);
    }
    template <typename T>
    void operator()(const char* key, std::optional<T>& value) const {
        if (object.contains(key)) JsonReading::optional(object, key, value);
    }
};

std::vector<TimeRange> merged(std::vector<TimeRange> ranges) {
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](const TimeRange& a, const TimeRange& b) { return a.start < b.start; });
    std::vector<TimeRange> result;
    for (const TimeRange& range : ranges) {
        if (range.end - range.start <= nearly) continue;
        if (!result.empty() && range.start <= result.back().end)
            result.back().end = std::max(result.back().end, range.end);
        else
            result.push_back(range);
    }
    return result;
}

std::int64_t croppedLength(double share, std::int64_t length) {
    const double pixels = std::trunc(share * static_cast<double>(length));
    constexpr double most = static_cast<double>(std::numeric_limits<std::int64_t>::max()) / 2;
    return std::max<std::int64_t>(static_cast<std::int64_t>(std::min(pixels, most)), 2);
}

} // namespace

SpeedBlock SpeedBlock::make(double start, double end, double speed, SpeedSegment::Reason reason) {
    SpeedBlock block;
    block.start = start;
    block.end = end;
    block.speed = speed;
    block.reason = reason;
    return block;
}

ZoomBlock ZoomBlock::make(double start, double end, double x, double y, double zoom) {
    ZoomBlock block;
    block.start = start;
    block.end = end;
    block.x = x;
    block.y = y;
    block.zoom = zoom;
    return block;
}

std::optional<Project> Project::load(const std::filesystem::path& file, std::string* problem) {
    try {
        const std::string text = readFile(file);
        try {
            const Json object = parseJson(text);
            if (!object.is_object()) throw RecordingError("is not an object");
            Project project;
            visitFields(project, Decoder{object});

            // Files of before the newer keys existed.
            if (!object.contains("cameraShape") && object.contains("cameraCircle") && !project.cameraCircle)
                project.cameraShape = "rounded";
            if (!object.contains("clickEffect") && object.contains("clickRipples") && !project.clickRipples)
                project.clickEffect = "none";
            return project;
        } catch (const RecordingError& error) {
            throw RecordingError(fmt::format("{}: {}", file.string(), error.what()));
        }
    } catch (const RecordingError& error) {
        if (problem) *problem = error.what();
        return std::nullopt;
    }
}

void Project::save(const std::filesystem::path& file) const {
    Json object = Json::object();
    visitFields(*this, Encoder{object});
    // The library's plain object sorts its keys.
    saveJson(Json(nlohmann::json(object)), file, 2);
}

OutputFormat Project::outputFormat() const {
    return RecordCore::outputFormat(format).value_or(OutputFormat::wide);
}

double Project::sourceAspect(const SourceInfo& info) const {
    const double a = info.aspect();
    return crop && crop->w > 0 && crop->h > 0 ? crop->w * a / crop->h : a;
}

std::vector<TimeRange> Project::mergedCuts() const {
    return merged(cuts);
}

std::vector<TimeRange> Project::kept(double duration) const {
    double lo = std::max(trimStart, 0.0);
    const double hi = std::min(duration, trimEnd.value_or(duration));
    std::vector<TimeRange> ranges;
    for (const TimeRange& cut : mergedCuts()) {
        if (cut.end <= lo) continue;
        if (hi <= cut.start) break;
        if (lo < cut.start) ranges.push_back({lo, std::min(hi, cut.start)});
        lo = std::max(lo, cut.end);
    }
    if (lo < hi) ranges.push_back({lo, hi});
    std::erase_if(ranges, [](const TimeRange& range) { return !(range.length() > sliver); });
    return ranges;
}

std::vector<TimeRange> Project::removed(double duration) const {
    std::vector<TimeRange> ranges = cuts;
    if (trimStart > 0) ranges.push_back({0, trimStart});
    if (trimEnd && *trimEnd < duration) ranges.push_back({*trimEnd, duration});
    return merged(std::move(ranges));
}

std::vector<TimeRange> Project::pieces(double duration) const {
    std::vector<double> sorted = splits;
    std::sort(sorted.begin(), sorted.end());
    std::vector<TimeRange> ranges;
    for (const TimeRange& range : kept(duration)) {
        double cursor = range.start;
        for (const double split : sorted) {
            if (range.start + splitMargin < split && split < range.end - splitMargin) {
                ranges.push_back({cursor, split});
                cursor = split;
            }
        }
        ranges.push_back({cursor, range.end});
    }
    return ranges;
}

std::optional<NRect> Project::cropInForce() const {
    if (!crop || crop->w <= 0.01 || crop->h <= 0.01) return std::nullopt;
    return crop;
}

Project::Cropped Project::cropped(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                  const std::optional<InputLog>& log) const {
    Cropped result{info, samples, log};
    const std::optional<NRect> region = cropInForce();
    if (!region) return result;
    const NRect& c = *region;

    result.info.width = croppedLength(c.w, info.width);
    result.info.height = croppedLength(c.h, info.height);
    for (ActivitySample& sample : result.samples) {
        if (!sample.focus) continue;
        const NRect& f = *sample.focus;
        const double x0 = std::max(f.x, c.x);
        const double y0 = std::max(f.y, c.y);
        const double x1 = std::min(f.maxX(), c.maxX());
        const double y1 = std::min(f.maxY(), c.maxY());
        if (x1 - x0 > 0 && y1 - y0 > 0) {
            sample.focus = NRect{(x0 - c.x) / c.w, (y0 - c.y) / c.h, (x1 - x0) / c.w, (y1 - y0) / c.h};
        } else {
            sample.focus.reset();
            sample.energy = 0;
        }
    }
    if (result.log) result.log = cropped(std::move(*result.log));
    return result;
}

InputLog Project::cropped(InputLog log) const {
    const std::optional<NRect> region = cropInForce();
    if (!region) return log;
    for (InputLog::CursorSample& sample : log.cursor) {
        sample.x = (sample.x - region->x) / region->w;
        sample.y = (sample.y - region->y) / region->h;
    }
    for (InputLog::Event& event : log.events) {
        if (event.x) event.x = (*event.x - region->x) / region->w;
        if (event.y) event.y = (*event.y - region->y) / region->h;
    }
    return log;
}

} // namespace RecordCore
