#pragma once

#include "RecordCore/Export/RetimedSound.h"
#include "RecordCore/Export/Timeline.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace RecordCore {

/// Makes a film's sound a little ahead of when it is heard, on a thread of its own, into a buffer of bounded
/// size. Callable from any thread; `take` never waits for sound that is not made yet.
class SoundFeed {
public:
    using Opener = std::function<std::unique_ptr<RetimedSound>()>;

    /// `open` makes the sound, on the feed's thread; when it throws, or returns none, all is silent. `news`
    /// is called on that thread when `ready` may have changed.
    SoundFeed(Opener open, std::function<void()> news);
    ~SoundFeed();
    SoundFeed(const SoundFeed&) = delete;
    SoundFeed& operator=(const SoundFeed&) = delete;

    /// The sound of another film from now on; what has been made is dropped.
    void retime(const Composition& composition);
    /// Begins to make sound from a position of the film on.
    void play(std::int64_t position);
    void stop();
    /// Whether there is enough to begin with.
    bool ready() const;

    /// The next sound from the position played from; silence stands in for what is not made in time, so that
    /// the sound keeps in step with the clock.
    void take(std::span<float> samples);

private:
    void run();
    bool wantsMore() const;

    Opener open;
    std::function<void()> news;

    mutable std::mutex mutex;
    std::condition_variable wake;
    // Guarded by the mutex.
    std::optional<Composition> film; ///< to be taken over
    std::uint64_t serial = 0;        ///< of what is in the ring; what is made for an older one is dropped
    bool playing = false;
    bool ending = false;
    bool silent = false;     ///< there is no sound at all
    std::int64_t taken = 0;  ///< position of the next sample to be taken
    std::int64_t made = 0;   ///< position after the last one made
    std::vector<float> ring; ///< the sample of position p stands at p modulo its length

    std::thread thread;
};

} // namespace RecordCore
