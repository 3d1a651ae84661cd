#include "RecordCore/Export/Exporter.h"

#include "RecordCore/Export/CostForecast.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Export/RetimedSound.h"
#include "RecordCore/Export/Timeline.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Planning/CaptionLayout.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <limits>
#include <mutex>
#include <numeric>
#include <optional>
#include <thread>
#include <utility>

namespace RecordCore::Exporter {

namespace {

constexpr std::int64_t soundBitrate = 192'000;
/// Sound is encoded at most this far ahead of the picture: the muxer holds what is ahead in memory.
constexpr double soundLead = 2.0; ///< seconds

/// The time base in which frame i of a film has the time stamp i.
TimeBase frameTimeBase(double fps) {
    const int num = fps == std::floor(fps) ? 1 : 1000;
    const int den = static_cast<int>(std::lround(fps * num));
    const int divisor = std::gcd(num, den);
    return {num / divisor, den / divisor};
}

/// Encodes the film's sound on a thread of its own, a little ahead of the picture.
class SoundPump {
public:
    SoundPump(RetimedSound& sound, SoundEncoder& encoder) :
        sound(sound), encoder(encoder), thread([this] { run(); }) {}

    ~SoundPump() { stop(); }
    SoundPump(const SoundPump&) = delete;
    SoundPump& operator=(const SoundPump&) = delete;

    /// The picture has come to `seconds`.
    void pictureAt(double seconds) {
        {
            const std::lock_guard lock(mutex);
            allowed = seconds + soundLead;
        }
        wake.notify_one();
    }

    /// Lets the sound run to its end and throws what went wrong with it.
    void finish() {
        pictureAt(std::numeric_limits<double>::infinity());
        thread.join();
        if (failure) std::rethrow_exception(failure);
    }

private:
    void stop() {
        {
            const std::lock_guard lock(mutex);
            stopped = true;
        }
        wake.notify_one();
        if (!thread.joinable()) return;
        sound.interrupt(); // stretching ten seconds takes longer than whoever cancelled should wait
        thread.join();
    }

    void run() {
        try {
            constexpr std::int64_t block = 4096;
            std::vector<float> samples(static_cast<std::size_t>(block) * soundChannels);
            const std::int64_t length = sound.length();
            for (std::int64_t position = 0; position < length; position += block) {
                if (!waitFor(static_cast<double>(position) / soundRate)) return;
                const auto frames = static_cast<std::size_t>(std::min(block, length - position));
                const std::span<float> part(samples.data(), frames * soundChannels);
                sound.read(position, part);
                encoder.encode(part);
            }
            encoder.finish();
        } catch (...) {
            failure = std::current_exception();
        }
    }

    bool waitFor(double seconds) {
        std::unique_lock lock(mutex);
        wake.wait(lock, [&] { return stopped || seconds <= allowed; });
        return !stopped;
    }

    RetimedSound& sound;
    SoundEncoder& encoder;
    std::exception_ptr failure; ///< read after the thread has ended

    std::mutex mutex; ///< guards the two below
    double allowed = soundLead;
    bool stopped = false;
    std::condition_variable wake;

    std::thread thread;
};

/// In hardware where it is wanted and opens, else in software; `settings` then says which it was.
std::unique_ptr<VideoEncoder> openEncoder(const MediaBackend& media, VideoSettings& settings,
                                          PacketSink sink) {
    if (settings.hardware) {
        try {
            return media.makeVideoEncoder(settings, sink);
        } catch (const RecordingError&) {
            settings.hardware = false;
        }
    }
    return media.makeVideoEncoder(settings, std::move(sink));
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

ExportStats run(const MediaBackend& media, const std::filesystem::path& source, const Plan& plan,
                const ExportOptions& options, const std::filesystem::path& destination, const Hooks& hooks) {
    const auto started = std::chrono::steady_clock::now();
    requireFilm(plan, options.fps);

    FrameCursor frames(media.openVideo(source));
    std::optional<CameraSource> camera;
    if (options.camera && options.project.cameraShow)
        camera.emplace(media.openVideo(*options.camera), plan,
                       options.log ? options.log->cameraOffset.value_or(0) : 0);
    const auto compositor = std::make_shared<const Compositor>(
        compositorSettings(plan, options.project, frames.info(), options.scale, options.watermark,
                           camera.has_value(), source.parent_path()));
    Canvas canvas(compositor);
    const Scene scene(plan, options.project, options.log, options.fps);

    const std::unique_ptr<MovieWriter> movie = media.createMovie(destination, MovieLayout::film);
    int videoTrack = -1;
    int soundTrack = -1;

    VideoSettings video;
    video.width = compositor->width();
    video.height = compositor->height();
    video.timeBase = frameTimeBase(options.fps);
    video.frameRate = options.fps;
    video.bitrate = options.bitrate.value_or(defaultBitrate(video.width, video.height, options.fps));
    video.expectedEnd = scene.frameCount();
    video.keyInterval = static_cast<int>(2 * options.fps);
    video.forecast = costForecast(scene, options.fps, frames.stored(), video.keyInterval);
    video.hardware = options.hardware;
    const std::unique_ptr<VideoEncoder> encoder =
        openEncoder(media, video, [&](const Packet& packet) { movie->write(videoTrack, packet); });
    videoTrack = movie->addTrack(encoder->description());

    std::optional<RetimedSound> sound;
    std::unique_ptr<SoundEncoder> soundEncoder;
    if (auto tracks = media.openSound(source); !tracks.empty()) {
        sound.emplace(Timeline::composition(plan), std::move(tracks), media.makeTimeStretcher());
        soundEncoder = media.makeSoundEncoder(
            soundBitrate, [&](const Packet& packet) { movie->write(soundTrack, packet); });
        soundTrack = movie->addTrack(soundEncoder->description());
    }
    movie->begin();

    FrameRenderer renderer({scene, canvas, frames, camera ? &*camera : nullptr, *encoder, options.fps},
                           hooks.progress);
    {
        std::optional<SoundPump> soundPump;
        if (sound) soundPump.emplace(*sound, *soundEncoder);
        do {
            if (hooks.cancel && *hooks.cancel) throw RecordingError("cancelled");
            if (soundPump) soundPump->pictureAt(static_cast<double>(renderer.framesDone()) / options.fps);
        } while (renderer.appendNext());
        if (renderer.error()) throw *renderer.error();
        encoder->finish(renderer.framesDone());
        if (soundPump) soundPump->finish();
    }
    movie->finish();
    if (hooks.progress) hooks.progress(1);

    ExportStats stats;
    stats.frames = renderer.framesDone();
    stats.repeated = renderer.framesRepeated();
    stats.outputSeconds = plan.outputDuration();
    stats.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    stats.encoder = encoder->name();
    stats.hardware = video.hardware;
    return stats;
}

} // namespace RecordCore::Exporter
