#include "OmbrelRecord/EditorModel/Filmstrip.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

namespace {

constexpr qsizetype memory = 32'000; ///< kilobytes of pictures kept
constexpr double finest = 0.125;     ///< seconds between two pictures of level 0
constexpr int steps = 4;             ///< from one level to the one twice as far
constexpr int coarsest = 80;

} // namespace

Filmstrip::Filmstrip(const RecordCore::MediaBackend& media, const std::filesystem::path& video,
                     double duration, int height, Disposal* disposal, QObject* parent) :
    QObject(parent),
    duration(duration), height(height), pictures(memory), grabber(media, video, disposal) {
    connect(&grabber, &FrameGrabber::grabbed, this, [this](quint64 slot, const QImage& picture) {
        if (picture.isNull())
            unreadable.insert(slot);
        else
            pictures.insert(slot, new QImage(picture), std::max<qsizetype>(1, picture.sizeInBytes() / 1000));
        if (slot >= shownFirst && slot <= shownLast) Q_EMIT changed();
    });
}

int Filmstrip::levelFor(double seconds) {
    int level = 0;
    while (level < coarsest && distance(level + 1) <= seconds)
        ++level;
    return level;
}

double Filmstrip::distance(int level) {
    return std::ldexp(finest * (1 + level % steps / static_cast<double>(steps)), level / steps);
}

quint64 Filmstrip::key(int level, qint64 slot) {
    return static_cast<quint64>(level) << 40 | static_cast<quint64>(slot);
}

const QImage* Filmstrip::picture(int level, qint64 slot) const {
    return pictures.object(key(level, slot));
}

bool Filmstrip::complete(int level, qint64 first, qint64 last) const {
    for (qint64 slot = first; slot <= last; ++slot)
        if (!pictures.contains(key(level, slot)) && !unreadable.contains(key(level, slot))) return false;
    return true;
}

const QImage* Filmstrip::standIn(int level, qint64 slot) const {
    const double time = static_cast<double>(slot) * distance(level);
    for (int apart = 1; apart <= 3 * steps; ++apart)
        for (const int other : {level + apart, level - apart}) {
            if (other < 0 || other > coarsest) continue;
            if (const QImage* image = picture(other, std::llround(time / distance(other)))) return image;
        }
    return nullptr;
}

void Filmstrip::show(int level, qint64 first, qint64 last) {
    first = std::max<qint64>(first, 0);
    last = std::min(last, static_cast<qint64>(duration / distance(level)));
    shownFirst = key(level, first);
    shownLast = key(level, std::max(first, last));
    std::vector<FrameGrabber::Wanted> wanted;
    const auto ask = [&](qint64 slot) {
        const quint64 name = key(level, slot);
        if (slot < 0 || pictures.contains(name) || unreadable.contains(name)) return;
        const double time = static_cast<double>(slot) * distance(level);
        if (time > duration) return;
        // Where pictures stand far apart, a frame that can be had at once does as well.
        wanted.push_back({name, time, height, distance(level) / 2});
    };
    for (qint64 slot = first; slot <= last; ++slot)
        ask(slot);
    for (qint64 beyond = 1; beyond <= 4; ++beyond) {
        ask(last + beyond);
        ask(first - beyond);
    }
    grabber.want(std::move(wanted));
}

} // namespace OmbrelRecord
