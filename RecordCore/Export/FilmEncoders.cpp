#include "RecordCore/Export/FilmEncoders.h"

#include "RecordCore/Model/RecordingError.h"

#include <algorithm>
#include <span>
#include <utility>

namespace RecordCore {

namespace {

double sum(std::span<const FrameForecast> frames) {
    double all = 0;
    for (const FrameForecast& frame : frames)
        all += std::max(0.0, static_cast<double>(frame.cost));
    return all;
}

} // namespace

FilmEncoders::FilmEncoders(const MediaBackend& media, const VideoSettings& film, int keysPerRange,
                           RangeSink rangeSink) :
    media(media),
    settings(film), sink(std::move(rangeSink)), forecast(sum(film.forecast)) {
    parts = filmRanges(film.expectedEnd, film.keyInterval, keysPerRange);
    first = openFirst();
    stream = first->description();
    encoderName = first->name();
}

std::unique_ptr<VideoEncoder> FilmEncoders::openFirst() {
    const std::vector<FilmRange> wanted = std::exchange(parts, {{0, settings.expectedEnd}});
    if (settings.hardware) {
        try {
            return open(0);
        } catch (const RecordingError&) {
            settings.hardware = false;
        }
    }
    if (wanted.size() > 1) {
        parts = wanted;
        std::unique_ptr<VideoEncoder> encoder = open(0);
        if (encoder->makesParts()) return encoder;
        parts = {{0, settings.expectedEnd}};
    }
    return open(0);
}

std::unique_ptr<VideoEncoder> FilmEncoders::open(std::size_t range) const {
    const auto put = [this, range](const Packet& packet) { sink(range, packet); };
    if (parts.size() == 1) return media.makeVideoEncoder(settings, put);
    const FilmRange& frames = parts[range];
    const std::span<const FrameForecast> own =
        std::span(settings.forecast)
            .subspan(static_cast<std::size_t>(frames.begin),
                     static_cast<std::size_t>(frames.end - frames.begin));
    VideoSettings part = settings;
    part.part = FilmPart{frames.begin, frames.end, sum(own) / forecast};
    part.forecast.assign(own.begin(), own.end());
    return media.makeVideoEncoder(part, put);
}

std::unique_ptr<VideoEncoder> FilmEncoders::make(std::size_t range) {
    return range == 0 && first ? std::move(first) : open(range);
}

} // namespace RecordCore
