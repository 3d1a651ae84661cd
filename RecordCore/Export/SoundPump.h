#pragma once

#include "RecordCore/Export/RetimedSound.h"
#include "RecordCore/Media/SoundEncoder.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

namespace RecordCore {

/// Encodes a film's sound on a thread of its own, a little ahead of the picture: what is ahead of the other
/// track is held in memory by whoever writes the file.
class SoundPump {
public:
    /// Both outlive the pump.
    SoundPump(RetimedSound& sound, SoundEncoder& encoder);
    ~SoundPump();
    SoundPump(const SoundPump&) = delete;
    SoundPump& operator=(const SoundPump&) = delete;

    /// The picture has come to `seconds`.
    void pictureAt(double seconds);

    /// Whether the sound has come near enough to `seconds` for the picture to be written there, or to its
    /// end; waits for it a while.
    bool follows(double seconds, std::chrono::milliseconds atMost);

    /// Lets the sound run to its end and throws what went wrong with it.
    void finish();

private:
    void stop();
    void run();
    void encode();
    bool waitFor(double seconds);

    RetimedSound& sound;
    SoundEncoder& encoder;
    std::exception_ptr failure; ///< read after the thread has ended

    std::mutex mutex; ///< guards all that follows
    std::condition_variable change;
    double allowed;
    double reached = 0;
    bool ended = false;
    bool stopped = false;

    std::thread thread;
};

} // namespace RecordCore
