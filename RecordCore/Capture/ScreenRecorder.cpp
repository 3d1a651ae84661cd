#include "RecordCore/Capture/ScreenRecorder.h"

#include "RecordCore/Capture/Microphones.h"

#include "RecordCore/Capture/DiskSpace.h"
#include "RecordCore/Capture/EncoderChoice.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <pthread.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace RecordCore {

namespace {

constexpr int pictures = 6; // a key frame takes several frames' time
constexpr std::int64_t soundBitrate = 192000;
constexpr double keyInterval = 2;    // seconds between key frames
constexpr double refineAfter = 0.25; // seconds: a still is sent once more, for quality
constexpr double repeatEvery = 0.7;  // seconds: a still is repeated, so that a crash does not cost its length
constexpr double dropReportEvery = 5; // seconds
constexpr double flushEvery = 0.7;    // seconds, the most a crash may take
constexpr double upkeepEvery = 0.1;   // seconds

FrameQueue::Deadline deadline(double hostTime, double now) {
    return std::chrono::steady_clock::now() +
           std::chrono::duration_cast<std::chrono::steady_clock::duration>(
               std::chrono::duration<double>(std::max(hostTime - now, 0.0)));
}

} // namespace

ScreenRecorder::ScreenRecorder(Setup setup, Services services) :
    setup(std::move(setup)), services(std::move(services)) {
    if (!this->services.log) this->services.log = [](const std::string&) {};
}

ScreenRecorder::~ScreenRecorder() {
    closeDevices();
    if (queue) queue->close();
    if (encoding.joinable()) encoding.join();
}

std::optional<double> ScreenRecorder::firstFrameTime() const {
    const std::lock_guard lock(mutex);
    return firstFrame;
}

ScreenRecorder::Report ScreenRecorder::report() const {
    const std::lock_guard lock(mutex);
    Report report = counts;
    if (queue) report.dropped = queue->dropped();
    for (const auto& sound : sounds)
        report.sound.push_back(sound->writer->report());
    return report;
}

void ScreenRecorder::start(const std::filesystem::path& target, RecordingJournal* to) {
    file = target;
    journal = to;
    const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
    const DiskSpace space = DiskSpace::of(folder);
    if (space.free < space.reserve())
        throw RecordingError(fmt::format("{}: the disk is full", folder.string()));
    stream = services.screen.openScreen(setup.source, setup.fps);
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    try {
        movie = services.media.createMovie(file, MovieLayout::recording);
        encoder = chooseEncoder(
            services.media, stream->width(), stream->height(), setup.fps,
            [this](const Packet& packet) { movie->write(videoTrack, packet); }, services.log);
        counts.encoder = encoder->name();
        videoTrack = movie->addTrack(encoder->description());
        if ((setup.systemAudio || setup.microphone) && services.sound == nullptr)
            throw RecordingError("there is no sound service");
        if (setup.systemAudio) addSound(services.sound->openSystemSound());
        if (setup.microphone)
            addSound(services.sound->openMicrophone(setup.microphoneID.value_or(""))).microphone = true;
        movie->begin();
        for (const auto& sound : sounds) {
            SoundTrack* track = sound.get();
            track->stream->start({[this, track](const SoundBlock& block) { heard(*track, block); },
                                  [this](bool present, const std::string& message) {
                                      services.log(fmt::format("record: sound device {}: {}",
                                                               present ? "is back" : "went away", message));
                                  }});
            track->open = true;
        }
        queue = std::make_unique<FrameQueue>(stream->width(), stream->height(), pictures);
        encoding = std::thread([this] { encodeFrames(); });
        stream->start({[this](const ScreenFrame& frame) { capture(frame); },
                       [this](const std::string& message) { endByItself(message); }});
    } catch (...) {
        closeDevices();
        if (queue) queue->close();
        if (encoding.joinable()) encoding.join();
        movie.reset();
        std::filesystem::remove(file, ignored);
        throw;
    }
}

/// On a sound stream's thread.
void ScreenRecorder::heard(const SoundTrack& track, const SoundBlock& block) const {
    track.writer->add(block);
    if (!track.microphone || !setup.onMicrophoneLevel) return;
    if (const auto level = Microphones::loudness(
            {SampleBuffer::Format::float32, block.samples.data(), block.samples.size()}))
        setup.onMicrophoneLevel(*level);
}

ScreenRecorder::SoundTrack& ScreenRecorder::addSound(std::unique_ptr<SoundStream> sound) {
    auto track = std::make_unique<SoundTrack>();
    SoundTrack* it = track.get();
    track->stream = std::move(sound);
    track->encoder = services.media.makeSoundEncoder(
        soundBitrate, [this, it](const Packet& packet) { movie->write(it->track, packet); });
    track->writer = std::make_unique<SoundTrackWriter>(
        services.clock, [it](std::span<const float> samples) { it->encoder->encode(samples); });
    track->track = movie->addTrack(track->encoder->description());
    sounds.push_back(std::move(track));
    return *it;
}

void ScreenRecorder::closeDevices() {
    if (stream) stream->stop();
    for (const auto& sound : sounds)
        if (std::exchange(sound->open, false)) sound->stream->stop();
}

/// On the capture thread.
void ScreenRecorder::capture(const ScreenFrame& frame) {
    double first = 0;
    bool isFirst = false;
    {
        const std::lock_guard lock(mutex);
        isFirst = !firstFrame;
        if (held && !isFirst) return;
        if (isFirst) firstFrame = frame.time;
        first = *firstFrame;
    }
    if (isFirst) {
        if (journal != nullptr) journal->origin(first);
        for (const auto& sound : sounds)
            sound->writer->begin(first);
    }
    queue->push(frame);
    const double t = frame.time - first;
    if (live.add(frame.picture, t) && journal != nullptr) journal->activity(t, live.lastMask());
}

void ScreenRecorder::endByItself(const std::string& message) {
    {
        const std::lock_guard lock(mutex);
        if (std::exchange(ended, true)) return;
    }
    services.log(fmt::format("record: stopped by itself: {}", message));
    if (onStop) onStop(message);
}

std::int64_t ScreenRecorder::ticks(double time) const {
    return std::llround((time - *firstFrameTime()) * recordingTimeBase.den / recordingTimeBase.num);
}

void ScreenRecorder::encodeFrames() {
    pthread_setname_np(pthread_self(), "encode");
    while (!queue->finished()) {
        try {
            encodeNext();
            keepUp();
        } catch (const std::exception& error) {
            failed = true;
            endByItself(error.what());
        }
    }
}

void ScreenRecorder::encodeNext() {
    const double now = services.clock.now();
    const bool still = queue->current() != nullptr && !failed;
    const double idle = !still    ? now + upkeepEvery
                        : refined ? lastWritten + repeatEvery
                                  : lastChange + refineAfter;
    const FrameQueue::Frame* frame = queue->take(deadline(std::min(idle, now + upkeepEvery), now));
    if (failed) return;
    if (frame != nullptr) {
        const std::int64_t pts = std::max(ticks(frame->time), lastPts + 1);
        FrameHints hints;
        hints.changedBlocks = frame->changed.marks;
        hints.keyFrame = lastPts < 0 || pts - lastKey >= static_cast<std::int64_t>(keyInterval * 90000);
        if (hints.keyFrame) lastKey = pts;
        encoder->encode(frame->picture.view(), pts, hints);
        lastPts = pts;
        lastChange = lastWritten = frame->time;
        refined = false;
        const std::lock_guard lock(mutex);
        ++counts.frames;
        return;
    }
    if (!still || services.clock.now() < idle) return;
    const std::int64_t pts = std::max(ticks(idle), lastPts + 1);
    // A picture that stays is worth a second look by the encoder; after that it is only repeated.
    const PlanarView shown = queue->current()->picture.view();
    if (refined)
        encoder->repeat(shown, pts);
    else
        encoder->encode(shown, pts);
    refined = true;
    stillWritten = true;
    lastPts = pts;
    lastWritten = idle;
    const std::lock_guard lock(mutex);
    ++counts.repeats;
}

/// What has to happen a few times a second, whatever the screen does.
void ScreenRecorder::keepUp() {
    const double now = services.clock.now();
    if (now - lastUpkeep < upkeepEvery) return;
    lastUpkeep = now;
    if (journal != nullptr) journal->flush();
    if (onUpkeep) onUpkeep();
    // Told as it happens, but once in a while only: a machine that is too slow loses frames all the time.
    if (const std::int64_t dropped = queue->dropped(); dropped != droppedKnown && now >= nextDropReport) {
        services.log(fmt::format("record: {} frames dropped so far, the encoder is too slow", dropped));
        droppedKnown = dropped;
        nextDropReport = now + dropReportEvery;
    }
    if (failed) return;
    for (const auto& sound : sounds)
        sound->writer->advance();
    if (now - lastFlush >= flushEvery || stillWritten) {
        movie->flush();
        lastFlush = now;
        stillWritten = false;
        watchDisk();
    }
}

void ScreenRecorder::watchDisk() {
    const DiskSpace space = DiskSpace::of(file.has_parent_path() ? file.parent_path() : ".");
    if (space.free < space.reserve()) throw RecordingError("the disk is full");
    if (space.free < space.warning() && !std::exchange(warned, true))
        services.log(fmt::format("record: only {} MB left on the disk", space.free / 1000000));
}

void ScreenRecorder::stop() {
    closeDevices();
    const double end = services.clock.now();
    if (queue) queue->close();
    if (encoding.joinable()) encoding.join();
    if (!movie) throw RecordingError("no frames were captured");
    if (lastPts < 0 && !failed) {
        movie.reset();
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        throw RecordingError("no frames were captured");
    }
    // Whatever goes wrong from here on, the fragments on the disk stay readable.
    const auto attempt = [this](const auto& step) {
        try {
            step();
        } catch (const std::exception& error) {
            failed = true;
            services.log(fmt::format("record: {}", error.what()));
        }
    };
    if (!failed) {
        for (const auto& sound : sounds) {
            attempt([&] { sound->writer->finish(end); });
            attempt([&] { sound->encoder->finish(); });
        }
        const std::int64_t endPts = std::max(ticks(end), lastPts + 1);
        attempt([&] { encoder->finish(endPts); });
        attempt([&] { movie->setEnd(videoTrack, endPts); });
    }
    attempt([&] { movie->finish(); });
    encoder.reset();
    movie.reset();
    const Report report = this->report();
    services.log(fmt::format("record: {} frames, {} repeated, {} dropped, {}", report.frames, report.repeats,
                             report.dropped, report.encoder));
    if (failed) static_cast<void>(services.media.sourceInfo(file)); // throws when nothing of it can be read
}

} // namespace RecordCore
