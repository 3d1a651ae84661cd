#include "RecordCore/Export/Exporter.h"

#include "RecordCore/Export/CostForecast.h"
#include "RecordCore/Export/FilmEncoders.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Export/RangeWorkers.h"
#include "RecordCore/Export/RetimedSound.h"
#include "RecordCore/Export/SoundPump.h"
#include "RecordCore/Export/Timeline.h"
#include "RecordCore/Export/WorkForecast.h"
#include "RecordCore/Model/Processors.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Planning/CaptionLayout.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>
#include <optional>
#include <utility>

namespace RecordCore::Exporter {

namespace {

constexpr std::int64_t soundBitrate = 192'000;
constexpr std::int64_t framesPerReport = 30;

/// The time base in which frame i of a film has the time stamp i.
TimeBase frameTimeBase(double fps) {
    const int num = fps == std::floor(fps) ? 1 : 1000;
    const int den = static_cast<int>(std::lround(fps * num));
    const int divisor = std::gcd(num, den);
    return {num / divisor, den / divisor};
}

/// How many ranges are made at the same time, and with how many threads each for decoding and composing (0:
/// as many as suit the machine). One range's own threads fill two or three processors; more are kept busy by
/// more ranges.
struct Shares {
    int workers = 1;
    int threads = 0;
};

Shares sharesFor(int wanted, std::size_t ranges) {
    constexpr int fewProcessors = 4; ///< with less than this one range at a time does it
    constexpr int mostWorkers = 8;   ///< each takes memory, and begins a step after the one before
    const int machine = processors();
    int workers = machine < fewProcessors ? 1 : std::min(machine / 2, mostWorkers);
    if (wanted > 0) workers = wanted;
    workers = static_cast<int>(std::min(static_cast<std::size_t>(workers), ranges));
    return {workers, workers > 1 ? std::max(machine / workers, 1) : 0};
}

std::vector<double> keyTimes(const std::vector<VideoReader::Stored>& stored) {
    std::vector<double> times;
    for (const VideoReader::Stored& frame : stored)
        if (frame.key) times.push_back(frame.time);
    return times;
}

/// Writes the picture's packets until all are there, in step with the sound.
void writePicture(MovieWriter& movie, int track, const TimeBase& timeBase, PacketQueue& packets,
                  RangeWorkers& workers, SoundPump* sound, const std::function<void()>& progress) {
    constexpr std::chrono::milliseconds pause{25}; // until it is looked whether to go on
    while (!packets.ended()) {
        for (const PacketQueue::Stored& packet : packets.take(pause)) {
            const double seconds = timeBase.seconds(packet.pts);
            if (sound) sound->pictureAt(seconds);
            while (sound && !sound->follows(seconds, pause))
                workers.check();
            movie.write(track, packet.packet());
        }
        workers.check();
        progress();
    }
}

} // namespace

std::int64_t defaultBitrate(int width, int height, double fps) {
    return static_cast<std::int64_t>(static_cast<double>(width) * height * fps * 0.06);
}

CompositorSettings compositorSettings(const Plan& plan, const Project& project, const SourceInfo& source,
                                      double scale, bool watermark, bool camera,
                                      const std::filesystem::path& folder) {
    CompositorSettings settings;
    settings.format = project.outputFormat();
    settings.sourceAspect = project.sourceAspect(source);
    settings.look = Look::of(project, folder);
    settings.cards = Cards::of(project);
    settings.scale = scale;
    settings.crop = project.cropInForce();
    settings.watermark = watermark;
    if (camera) settings.camera = CameraStyle::of(project);
    settings.pointer = PointerStyle::of(project);
    settings.captions = CaptionLayout::look(project, plan);
    return settings;
}

namespace {

/// One attempt. `hardwareFailed` tells, when it throws, that it was a hardware encoder's fault.
ExportStats makeFilm(const MediaBackend& media, const std::filesystem::path& source, const Plan& plan,
                     const ExportOptions& options, const std::filesystem::path& destination,
                     const Hooks& hooks, const Sharing& sharing, std::atomic<bool>& hardwareFailed) {

    // Whoever cancels waits for no more than one of the steps in which an export is set up.
    const auto check = [&] {
        if (hooks.cancel && *hooks.cancel) throw RecordingError("cancelled");
    };
    check();
    const Scene scene(plan, options.project, options.log, options.fps);
    const std::int64_t frameCount = scene.frameCount();
    const int keyInterval = static_cast<int>(2 * options.fps);
    Shares shares =
        sharesFor(sharing.workers, filmRanges(frameCount, keyInterval, sharing.keysPerRange).size());

    const auto open = [&](int threads) {
        RangeWorkers::Sources sources{FrameCursor(media.openVideo(source, threads)), {}};
        if (options.camera && options.project.cameraShow)
            sources.camera.emplace(media.openVideo(*options.camera, threads), plan,
                                   options.log ? options.log->cameraOffset.value_or(0) : 0);
        return sources;
    };
    RangeWorkers::Sources first = open(shares.threads);
    const std::vector<VideoReader::Stored> stored = first.screen.stored();
    const auto compositor = std::make_shared<const Compositor>(
        compositorSettings(plan, options.project, first.screen.info(), options.scale, options.watermark,
                           first.camera.has_value(), source.parent_path()),
        check);

    const std::unique_ptr<MovieWriter> movie = media.createMovie(destination, MovieLayout::film);

    VideoSettings video;
    video.width = compositor->width();
    video.height = compositor->height();
    video.timeBase = frameTimeBase(options.fps);
    video.frameRate = options.fps;
    video.bitrate = options.bitrate.value_or(defaultBitrate(video.width, video.height, options.fps));
    video.expectedEnd = frameCount;
    video.keyInterval = keyInterval;
    video.forecast = costForecast(scene, options.fps, stored, keyInterval);
    video.hardware = options.hardware;
    check();
    std::optional<PacketQueue> packets;
    FilmEncoders encoders(
        media, video, sharing.keysPerRange,
        [&](std::size_t range, const Packet& packet) { packets->put(range, packet); }, hardwareFailed);
    packets.emplace(encoders.ranges().size());
    if (shares.workers > 1 && encoders.ranges().size() == 1) { // it takes one encoder: all threads are for it
        shares = {};
        first = open(shares.threads);
    }
    const int videoTrack = movie->addTrack(encoders.description());

    check();
    int soundTrack = -1;
    std::optional<RetimedSound> sound;
    std::unique_ptr<SoundEncoder> soundEncoder;
    if (auto tracks = media.openSound(source); !tracks.empty()) {
        sound.emplace(Timeline::composition(plan), std::move(tracks), media.makeTimeStretcher());
        soundEncoder = media.makeSoundEncoder(
            soundBitrate, [&](const Packet& packet) { movie->write(soundTrack, packet); });
        soundTrack = movie->addTrack(soundEncoder->description());
    }
    movie->begin();

    const WorkForecast work(scene, options.fps, stored);
    ExportStats stats;
    {
        std::optional<SoundPump> soundPump;
        if (sound) soundPump.emplace(*sound, *soundEncoder);
        RangeWorkers workers({scene, work, compositor, encoders, *packets, options.fps, keyInterval,
                              [&] { return open(shares.threads); }, keyTimes(stored), shares.threads,
                              hooks.cancel},
                             shares.workers, std::move(first));
        std::int64_t reported = 0;
        const auto report = [&] {
            if (!hooks.progress || workers.framesDone() - reported < framesPerReport) return;
            reported = workers.framesDone();
            hooks.progress(workers.shareDone());
        };
        writePicture(*movie, videoTrack, video.timeBase, *packets, workers, soundPump ? &*soundPump : nullptr,
                     report);
        if (soundPump) soundPump->finish();
        stats.frames = workers.framesDone();
        stats.repeated = workers.framesRepeated();
    }
    movie->finish();
    if (hooks.progress) hooks.progress(1);

    stats.outputSeconds = plan.outputDuration();
    stats.encoder = encoders.name();
    stats.hardware = encoders.hardware();
    return stats;
}

} // namespace

ExportStats run(const MediaBackend& media, const std::filesystem::path& source, const Plan& plan,
                const ExportOptions& options, const std::filesystem::path& destination, const Hooks& hooks,
                const Sharing& sharing) {
    const auto started = std::chrono::steady_clock::now();
    requireFilm(plan, options.fps);
    std::atomic<bool> hardwareFailed{false};
    const auto film = [&](const ExportOptions& how) {
        return makeFilm(media, source, plan, how, destination, hooks, sharing, hardwareFailed);
    };
    ExportStats stats;
    try {
        stats = film(options);
    } catch (const RecordingError&) {
        if (!hardwareFailed) throw;
        ExportOptions software = options;
        software.hardware = false;
        stats = film(software);
    }
    stats.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    return stats;
}

} // namespace RecordCore::Exporter
