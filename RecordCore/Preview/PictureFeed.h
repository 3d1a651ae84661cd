#pragma once

#include "RecordCore/Export/Timeline.h"
#include "RecordCore/Media/VideoReader.h"
#include "RecordCore/Motion/Scene.h"
#include "RecordCore/Preview/FrameSeeker.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace RecordCore {

/// The pictures that an output frame is composed of.
struct FeedFrame {
    std::int64_t index = 0; ///< of the output frame
    std::optional<VideoFrame> screen;
    std::optional<VideoFrame> camera; ///< none where there is no footage
    bool exact = true;                ///< false for one that stands in for a picture not decoded yet
};

/// Decodes for a player, on a thread of its own: one output frame, or a film from some frame on, a little
/// ahead of time. What is asked for last counts; what was asked for before is given up at the next frame
/// decoded. Callable from any thread.
class PictureFeed {
public:
    /// `news` is called on the feed's thread whenever there is something to take. `camera` may be null.
    PictureFeed(std::unique_ptr<VideoReader> screen, std::unique_ptr<VideoReader> camera,
                std::function<void()> news);
    ~PictureFeed();
    PictureFeed(const PictureFeed&) = delete;
    PictureFeed& operator=(const PictureFeed&) = delete;

    /// What plays: which moment of the recording each output frame shows. `scene` must not be null.
    struct Film {
        std::shared_ptr<const Scene> scene;
        Composition composition;
        double fps = 60;
    };

    /// One frame. When that takes a while, pictures that come near it are given first.
    void show(const Film& film, std::int64_t index);
    /// The film from a frame on; the first is found as `show` does.
    void play(const Film& film, std::int64_t index);
    /// The film has come to `seconds` just now and goes on at its pace: what is over need not be decoded, and
    /// what is about to be shown must come even if it is not exact.
    void playedTo(double seconds);

    /// The first frame not before `index`; those before it are dropped. None yet: none. Forgotten when taken.
    std::optional<FeedFrame> take(std::int64_t index);
    /// Of one frame: the latest that has been found.
    std::optional<FeedFrame> takeLatest();

    /// Why there are no pictures any more.
    std::optional<std::string> failure() const;

private:
    using Clock = std::chrono::steady_clock;
    struct Order {
        std::optional<Film> film;
        std::int64_t index = 0;
        bool playing = false;
    };

    void give(const Film& film, std::int64_t index, bool playing);
    void run();
    bool showOne(const Order& order);
    void playOn(const Order& order);
    bool findUntil(FrameSeeker& seeker, const std::function<bool()>& enough);
    bool superseded() const;
    bool push(FeedFrame frame);
    double lateness(double seconds) const;

    FrameSeeker screen;
    std::optional<FrameSeeker> camera;
    std::function<void()> news;

    mutable std::mutex mutex;
    std::condition_variable wake;
    // Guarded by the mutex.
    Order order;
    std::uint64_t serial = 0; ///< of the order
    std::uint64_t taken = 0;  ///< the order being carried out
    bool ending = false;
    std::deque<FeedFrame> frames;
    std::optional<std::string> problem;
    std::optional<double> playhead; ///< output seconds at `playheadAt`; none before the film runs
    Clock::time_point playheadAt;

    std::thread thread;
};

} // namespace RecordCore
