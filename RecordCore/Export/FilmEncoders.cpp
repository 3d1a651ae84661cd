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

/// Notes that an encoder fails: drivers open and then give up at a picture they do not like, or in the
/// middle.
class WatchedEncoder final : public VideoEncoder {
public:
    WatchedEncoder(std::unique_ptr<VideoEncoder> watched, std::atomic<bool>& failed) :
        encoder(std::move(watched)), failed(failed) {}

    const StreamDescription& description() const override { return encoder->description(); }
    std::string name() const override { return encoder->name(); }
    void encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) override {
        watch([&] { encoder->encode(picture, pts, hints); });
    }
    void repeat(const PlanarView& picture, std::int64_t pts) override {
        watch([&] { encoder->repeat(picture, pts); });
    }
    void finish(std::int64_t endPts) override {
        watch([&] { encoder->finish(endPts); });
    }

private:
    template <typename Call>
    void watch(const Call& call) {
        try {
            call();
        } catch (const RecordingError&) {
            failed = true;
            throw;
        }
    }

    std::unique_ptr<VideoEncoder> encoder;
    std::atomic<bool>& failed;
};

} // namespace

FilmEncoders::FilmEncoders(const MediaBackend& media, const VideoSettings& film, int keysPerRange,
                           RangeSink rangeSink, std::atomic<bool>& hardwareFailed) :
    media(media),
    settings(film), sink(std::move(rangeSink)), forecast(sum(film.forecast)), hardwareFailed(hardwareFailed) {
    parts = filmRanges(film.expectedEnd, film.keyInterval, keysPerRange);
    first = openFirst();
    stream = first->description();
    encoderName = first->name();
}

std::unique_ptr<VideoEncoder> FilmEncoders::openFirst() {
    const std::vector<FilmRange> wanted = std::exchange(parts, {{0, settings.expectedEnd}});
    if (settings.hardware) {
        try {
            return std::make_unique<WatchedEncoder>(open(0), hardwareFailed);
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

std::unique_ptr<VideoEncoder> FilmEncoders::open(std::size_t range) {
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
