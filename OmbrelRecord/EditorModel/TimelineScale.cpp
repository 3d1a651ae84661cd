#include "OmbrelRecord/EditorModel/TimelineScale.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace OmbrelRecord {

namespace {

struct Step {
    double label;
    int parts; ///< marks from one label to the next
};

constexpr std::array steps{Step{0.05, 3}, Step{0.1, 6},  Step{0.25, 5}, Step{0.5, 5},   Step{1, 5},
                           Step{2, 4},    Step{5, 5},    Step{10, 5},   Step{15, 3},    Step{30, 6},
                           Step{60, 6},   Step{120, 4},  Step{300, 5},  Step{600, 5},   Step{900, 3},
                           Step{1800, 6}, Step{3600, 6}, Step{7200, 4}, Step{14400, 4}, Step{43200, 6},
                           Step{86400, 4}};

const Step& stepFor(double secondsPerPixel, double labelRoom) {
    for (const Step& step : steps)
        if (step.label >= labelRoom * secondsPerPixel) return step;
    return steps.back();
}

} // namespace

TimelineScale TimelineScale::fitting(double duration, double width) {
    TimelineScale scale{duration, width, 0, 1};
    scale.secondsPerPixel = scale.coarsest();
    return scale;
}

double TimelineScale::timeInside(double atX) const {
    return std::clamp(time(atX), 0.0, std::max(duration, 0.0));
}

double TimelineScale::shown() const {
    return std::max(width - 2 * inset, 1.0) * secondsPerPixel;
}

double TimelineScale::coarsest() const {
    const double room = std::max(width - 2 * inset, 1.0);
    return std::max(duration, 1e-3) / room;
}

double TimelineScale::finest() const {
    return std::min(1.0 / (60 * widestFrame), coarsest());
}

TimelineScale TimelineScale::limited() const {
    TimelineScale scale = *this;
    scale.secondsPerPixel = std::clamp(secondsPerPixel, finest(), coarsest());
    scale.start = std::clamp(start, 0.0, std::max(0.0, duration - scale.shown()));
    return scale;
}

TimelineScale TimelineScale::magnified(double factor, double atX) const {
    if (!(factor > 0) || !std::isfinite(factor)) return *this;
    const double held = time(atX);
    TimelineScale scale = *this;
    scale.secondsPerPixel = std::clamp(secondsPerPixel / factor, finest(), coarsest());
    scale.start = held - (atX - inset) * scale.secondsPerPixel;
    return scale.limited();
}

TimelineScale TimelineScale::scrolled(double pixels) const {
    TimelineScale scale = *this;
    scale.start += pixels * secondsPerPixel;
    return scale.limited();
}

TimelineScale TimelineScale::resized(double newWidth) const {
    if (fits()) return fitting(duration, newWidth);
    TimelineScale scale = *this;
    scale.width = newWidth;
    return scale.limited();
}

TimelineScale TimelineScale::showing(double from, double to) const {
    const double length = std::max(to - from, 1e-3);
    TimelineScale scale = *this;
    scale.secondsPerPixel = length * 1.16 / std::max(width - 2 * inset, 1.0);
    scale = scale.limited();
    scale.start = (from + to) / 2 - scale.shown() / 2;
    return scale.limited();
}

TimelineScale TimelineScale::revealing(double moment, double ahead) const {
    const double end = start + shown();
    if (moment >= start && moment <= end - ahead * shown()) return *this;
    TimelineScale scale = *this;
    // A page is turned: what is looked for stands near the left edge, and there is room to go on.
    scale.start = moment - shown() * (moment > end - ahead * shown() ? 0.08 : 0.5);
    return scale.limited();
}

double TimelineScale::labelStep(double labelRoom) const {
    return stepFor(secondsPerPixel, labelRoom).label;
}

std::vector<TimelineScale::Tick> TimelineScale::ticks(double fromX, double toX, double labelRoom) const {
    std::vector<Tick> list;
    const Step& step = stepFor(secondsPerPixel, labelRoom);
    const double distance = step.label / step.parts;
    const double from = std::max(time(fromX), 0.0);
    const double to = std::min(time(toX), duration);
    if (!(to >= from)) return list;
    const auto first = static_cast<long long>(std::ceil(from / distance - 1e-9));
    const auto last = static_cast<long long>(std::floor(to / distance + 1e-9));
    for (long long i = first; i <= last; ++i)
        list.push_back({static_cast<double>(i) * step.label / step.parts, i % step.parts == 0});
    return list;
}

QString timeText(double seconds, double step) {
    const int decimals = step < 0.1 ? 2 : step < 1 ? (step == 0.25 ? 2 : 1) : 0;
    const int unit = decimals == 2 ? 100 : decimals == 1 ? 10 : 1;
    // What the text shows is decided once, in the smallest unit shown: 59.97 is "1:00.0", never "0:60.0".
    const double scaled = std::max(seconds, 0.0) * unit;
    const auto whole = static_cast<long long>(decimals ? std::round(scaled) : std::floor(scaled + 1e-6));
    const long long total = whole / unit;
    const QChar zero(QLatin1Char('0'));
    QString text = total >= 3600 ? QStringLiteral("%1:%2").arg(total / 3600).arg(total / 60 % 60, 2, 10, zero)
                                 : QString::number(total / 60);
    text += QStringLiteral(":%1").arg(total % 60, 2, 10, zero);
    if (decimals) text += QStringLiteral(".%1").arg(whole % unit, decimals, 10, zero);
    return text;
}

QString speedText(double speed) {
    const double tenths = std::round(speed * 10) / 10;
    const double shown = speed < 1 ? std::round(speed * 100) / 100 : tenths;
    return QString::number(shown, 'g', 6) + QStringLiteral("×");
}

} // namespace OmbrelRecord
