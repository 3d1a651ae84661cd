#include "RecordCore/Export/SoundPump.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace RecordCore {

namespace {

constexpr double soundLead = 2.0; ///< seconds
/// Writers put the tracks' packets into one order only while neither is ahead by too much; ten seconds with
/// the one that we have.
constexpr double pictureLead = 5.0;

} // namespace

SoundPump::SoundPump(RetimedSound& sound, SoundEncoder& encoder) :
    sound(sound), encoder(encoder), allowed(soundLead), thread([this] { run(); }) {}

SoundPump::~SoundPump() {
    stop();
}

void SoundPump::pictureAt(double seconds) {
    {
        const std::lock_guard lock(mutex);
        allowed = seconds + soundLead;
    }
    change.notify_all();
}

bool SoundPump::follows(double seconds, std::chrono::milliseconds atMost) {
    std::unique_lock lock(mutex);
    return change.wait_for(lock, atMost, [&] { return ended || reached + pictureLead >= seconds; });
}

void SoundPump::finish() {
    pictureAt(std::numeric_limits<double>::infinity());
    thread.join();
    if (failure) std::rethrow_exception(failure);
}

void SoundPump::stop() {
    {
        const std::lock_guard lock(mutex);
        stopped = true;
    }
    change.notify_all();
    if (!thread.joinable()) return;
    sound.interrupt(); // stretching ten seconds takes longer than whoever cancelled should wait
    thread.join();
}

void SoundPump::run() {
    try {
        encode();
    } catch (...) {
        failure = std::current_exception();
    }
    {
        const std::lock_guard lock(mutex);
        ended = true;
    }
    change.notify_all();
}

void SoundPump::encode() {
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
}

/// Tells that the sound has come to `seconds` and waits until it may go on.
bool SoundPump::waitFor(double seconds) {
    std::unique_lock lock(mutex);
    reached = seconds;
    change.notify_all();
    change.wait(lock, [&] { return stopped || seconds <= allowed; });
    return !stopped;
}

} // namespace RecordCore
