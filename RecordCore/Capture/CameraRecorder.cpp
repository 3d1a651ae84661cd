#include "RecordCore/Capture/CameraRecorder.h"

#include "RecordCore/Model/RecordingError.h"

#include <chrono>
#include <cmath>
#include <utility>

namespace RecordCore {

namespace {

constexpr int ticksPerSecond = 90000;
constexpr std::int64_t bitrate = 3000000;
constexpr double nominalRate = 30;
constexpr int keyFrames = 60; // two seconds of nominal rate; the encoder goes by time
constexpr int track = 0;      // the only one

PlanarView evenPart(PlanarView picture) {
    picture.width &= ~1;
    picture.height &= ~1;
    return picture;
}

} // namespace

CameraRecorder::CameraRecorder(const CameraBackend& allCameras, const MediaBackend& backend,
                               std::string camera) :
    cameras(allCameras),
    media(backend), id(std::move(camera)) {}

CameraRecorder::~CameraRecorder() {
    try {
        stop();
    } catch (const RecordingError&) {
        // Nobody is left to hear it.
    }
}

void CameraRecorder::start(const std::filesystem::path& destination) {
    std::error_code ignored;
    std::filesystem::remove(destination, ignored);
    {
        const std::scoped_lock lock(mutex);
        file = destination;
    }
    auto opened = cameras.openCamera(id);
    opened->start({[this](const CameraFrame& frame) { add(frame); },
                   [this](const std::string& message) {
                       if (onEnd) onEnd(message);
                   }});
    stream = std::move(opened);
    ticker = std::jthread([this](const std::stop_token& stop) {
        std::unique_lock lock(mutex);
        while (!stopped.wait_for(lock, stop, std::chrono::milliseconds(300), [] { return false; }) &&
               !stop.stop_requested())
            tick();
    });
}

void CameraRecorder::stop() {
    if (!stream) return;
    stream->stop();
    stream.reset();
    ticker = {};

    const std::scoped_lock lock(mutex);
    const auto finished = std::exchange(movie, nullptr);
    const auto coder = std::exchange(encoder, nullptr);
    if (failure) {
        std::error_code ignored;
        if (facts.frames == 0) std::filesystem::remove(file, ignored);
        std::rethrow_exception(std::exchange(failure, nullptr));
    }
    if (!finished) return;
    // The last frame is shown for as long as the others were on average.
    const std::int64_t span = facts.frames > 1 ? lastTick / (facts.frames - 1)
                                               : static_cast<std::int64_t>(ticksPerSecond / nominalRate);
    const std::int64_t end = lastTick + std::max<std::int64_t>(span, 1);
    coder->finish(end);
    finished->setEnd(track, end);
    finished->finish();
}

void CameraRecorder::add(const CameraFrame& frame) {
    const std::scoped_lock lock(mutex);
    if (failure) return;
    try {
        const PlanarView picture = evenPart(frame.picture);
        if (picture.empty() || picture.width == 0 || picture.height == 0) return;
        if (!movie) open(picture, frame.time);
        const std::int64_t tick = std::llround((frame.time - *first) * ticksPerSecond);
        const bool inOrder = facts.frames == 0 || tick > lastTick;
        if (!inOrder || picture.width != width || picture.height != height) {
            ++facts.dropped;
            return;
        }
        encoder->encode(picture, tick);
        lastTick = tick;
        ++facts.frames;
    } catch (...) {
        failure = std::current_exception();
    }
}

void CameraRecorder::open(const PlanarView& picture, double time) {
    VideoSettings settings;
    settings.codec = Codec::h264;
    settings.width = width = picture.width;
    settings.height = height = picture.height;
    settings.timeBase = {1, ticksPerSecond};
    settings.frameRate = nominalRate;
    settings.bitrate = bitrate;
    settings.keyInterval = keyFrames;
    settings.realTime = true;
    auto fresh = media.createMovie(file, MovieLayout::recording);
    auto coder = media.makeVideoEncoder(
        settings, [to = fresh.get()](const Packet& packet) { to->write(track, packet); });
    if (fresh->addTrack(coder->description()) != track) throw RecordingError("camera output");
    fresh->begin();
    movie = std::move(fresh);
    encoder = std::move(coder);
    first = time;
}

void CameraRecorder::tick() {
    if (!movie || failure) return;
    try {
        movie->tick();
    } catch (...) {
        failure = std::current_exception();
    }
}

std::optional<double> CameraRecorder::firstFrameTime() const {
    const std::scoped_lock lock(mutex);
    return first;
}

CameraRecorder::Report CameraRecorder::report() const {
    const std::scoped_lock lock(mutex);
    return facts;
}

} // namespace RecordCore
