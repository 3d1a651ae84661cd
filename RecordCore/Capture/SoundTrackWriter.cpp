#include "RecordCore/Capture/SoundTrackWriter.h"

#include "RecordCore/Media/SoundReader.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace RecordCore {

namespace {

constexpr std::size_t chunk = 480; // frames between two corrections of the speed
constexpr double pullSeconds = 4;  // an error is worked off with this time constant, …
constexpr double maxPull = 0.004;  // … by at most this change of speed (7 cents), …
constexpr double maxError = 0.030; // … unless it is so large that a cut is the lesser evil
constexpr double maxBacklog = 3;   // seconds of sound kept for a picture that has not begun
constexpr double patience = 1;     // seconds without sound after which silence takes its place

} // namespace

SoundTrackWriter::SoundTrackWriter(const HostClock& host, Sink receiver) :
    hostClock(host), sink(std::move(receiver)) {}

void SoundTrackWriter::add(const SoundBlock& block) {
    const std::scoped_lock lock(mutex);
    if (failure || end || block.samples.empty()) return;
    try {
        if (block.afterGap || !running) startRun();
        blocksCame = true;
        deviceClock.observe(static_cast<double>(pushed), block.time);
        resampler.push(block.samples);
        pushed += static_cast<std::int64_t>(block.samples.size() / soundChannels);
        write();
    } catch (...) {
        failure = std::current_exception();
    }
}

void SoundTrackWriter::begin(double firstFrameTime) {
    const std::scoped_lock lock(mutex);
    origin = firstFrameTime;
}

void SoundTrackWriter::advance() {
    const double now = hostClock.now();
    const std::scoped_lock lock(mutex);
    if (failure) std::rethrow_exception(failure);
    if (end || !origin) return;
    if (blocksCame || !quietSince) {
        blocksCame = false;
        quietSince = now;
        return;
    }
    if (now - *quietSince < patience) return;
    try {
        drain();
        giveSilence(std::llround((now - patience - slot()) * soundRate));
    } catch (...) {
        failure = std::current_exception();
        throw;
    }
}

void SoundTrackWriter::finish(double endTime) {
    const std::scoped_lock lock(mutex);
    if (end) return;
    end = endTime;
    if (failure) std::rethrow_exception(failure);
    if (!origin) return;
    if (running) deviceClock.settleNow();
    drain();
    giveSilence(std::llround((endTime - slot()) * soundRate));
}

SoundTrackWriter::Report SoundTrackWriter::report() const {
    const std::scoped_lock lock(mutex);
    Report result = facts;
    result.frames = written;
    result.drift = deviceClock.secondsPerSecond() - 1;
    return result;
}

/// Sound after a gap has nothing to do with the sound before it: both counts start again.
void SoundTrackWriter::startRun() {
    drain();
    resampler.reset();
    deviceClock.restart();
    pushed = 0;
    aligned = false;
    running = true;
}

/// Writes the last samples of a run, for which the resampler waits in vain for what follows them.
void SoundTrackWriter::drain() {
    if (!aligned) {
        write();
        if (!aligned) return;
    }
    const std::array<float, 2 * 64> nothing{};
    resampler.push(nothing);
    write();
    aligned = false;
    running = false;
}

void SoundTrackWriter::write() {
    if (!running || !origin || !deviceClock.settled()) {
        if (resampler.end() - resampler.position() > maxBacklog * soundRate)
            resampler.moveTo(resampler.end() - maxBacklog * soundRate);
        return;
    }
    if (!aligned) align();
    for (;;) {
        double error = deviceClock.timeAt(resampler.position()) - slot();
        if (std::abs(error) > maxError) {
            if (resampler.position() >= resampler.end()) return;
            align();
            ++facts.corrections;
            error = 0;
        }
        const double heard = std::floor(((end ? *end : hostClock.now()) - slot()) * soundRate);
        if (heard < 1) return;
        facts.greatestError = std::max(facts.greatestError, std::abs(error));
        const double pull = std::clamp(error / pullSeconds, -maxPull, maxPull);
        output.clear();
        const std::size_t wanted = heard < chunk ? static_cast<std::size_t>(heard) : chunk;
        const std::size_t got = resampler.read((1 - pull) / deviceClock.secondsPerSecond(), wanted, output);
        give(output);
        if (got < chunk) return;
    }
}

/// Brings the run's position and the track's to the same time at once: by silence when the sound is ahead, by
/// leaving out sound when it is behind.
void SoundTrackWriter::align() {
    const double ahead = deviceClock.timeAt(resampler.position()) - slot();
    if (ahead > 0)
        giveSilence(std::llround(ahead * soundRate));
    else
        resampler.moveTo(resampler.position() - ahead * soundRate / deviceClock.secondsPerSecond());
    aligned = true;
}

void SoundTrackWriter::giveSilence(std::int64_t frames) {
    static constexpr std::array<float, 2 * 4800> silence{};
    while (frames > 0) {
        const std::int64_t now = std::min<std::int64_t>(frames, 4800);
        give(std::span(silence).first(static_cast<std::size_t>(2 * now)));
        facts.silentFrames += now;
        frames -= now;
    }
}

void SoundTrackWriter::give(std::span<const float> samples) {
    if (samples.empty()) return;
    sink(samples);
    written += static_cast<std::int64_t>(samples.size() / soundChannels);
}

double SoundTrackWriter::slot() const {
    return *origin + static_cast<double>(written) / soundRate;
}

} // namespace RecordCore
