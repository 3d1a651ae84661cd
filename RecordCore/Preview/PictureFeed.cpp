#include "RecordCore/Preview/PictureFeed.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace RecordCore {

namespace {

constexpr std::size_t screenBytes = std::size_t{96} << 20; ///< of decoded neighbours
constexpr std::size_t cameraBytes = std::size_t{16} << 20;
constexpr std::size_t mostAhead = 30;                     ///< output frames decoded ahead
constexpr std::size_t aheadBytes = std::size_t{96} << 20; ///< of the pictures in them
/// After this long a picture that comes near is shown until the right one is there, and a nearer one now and
/// then.
constexpr std::chrono::milliseconds patience{40};
constexpr std::chrono::milliseconds refresh{80};

std::size_t bytes(const PlanarView& picture) {
    return static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 3 / 2;
}

bool sameFrame(const std::optional<VideoFrame>& a, const std::optional<VideoFrame>& b) {
    return a.has_value() == b.has_value() && (!a || (a->owner == b->owner && a->time == b->time));
}

} // namespace

PictureFeed::PictureFeed(std::unique_ptr<VideoReader> screenReader, std::unique_ptr<VideoReader> cameraReader,
                         std::function<void()> newsHandler) :
    screen(std::move(screenReader), screenBytes),
    news(std::move(newsHandler)) {
    if (cameraReader) camera.emplace(std::move(cameraReader), cameraBytes);
    thread = std::thread([this] { run(); });
}

PictureFeed::~PictureFeed() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
        ++serial;
    }
    wake.notify_all();
    thread.join();
}

void PictureFeed::show(const Film& film, std::int64_t index) {
    give(film, index, false);
}

void PictureFeed::play(const Film& film, std::int64_t index) {
    give(film, index, true);
}

void PictureFeed::give(const Film& film, std::int64_t index, bool playing) {
    {
        const std::lock_guard lock(mutex);
        order = {film, index, playing};
        ++serial;
        frames.clear();
        playhead.reset();
    }
    wake.notify_all();
}

void PictureFeed::playedTo(double seconds) {
    {
        const std::lock_guard lock(mutex);
        playhead = seconds;
        playheadAt = Clock::now();
    }
    wake.notify_all();
}

std::optional<FeedFrame> PictureFeed::take(std::int64_t index) {
    std::optional<FeedFrame> result;
    {
        const std::lock_guard lock(mutex);
        while (!frames.empty() && frames.front().index < index)
            frames.pop_front();
        if (frames.empty()) return result;
        result = std::move(frames.front());
        frames.pop_front();
    }
    wake.notify_all();
    return result;
}

std::optional<FeedFrame> PictureFeed::takeLatest() {
    const std::lock_guard lock(mutex);
    if (frames.empty()) return std::nullopt;
    std::optional<FeedFrame> result = std::move(frames.back());
    frames.clear();
    return result;
}

std::optional<std::string> PictureFeed::failure() const {
    const std::lock_guard lock(mutex);
    return problem;
}

void PictureFeed::run() {
    while (true) {
        Order now;
        {
            std::unique_lock lock(mutex);
            wake.wait(lock, [this] { return ending || taken != serial; });
            if (ending) return;
            taken = serial;
            now = order;
        }
        try {
            if (now.playing)
                playOn(now);
            else
                showOne(now);
        } catch (const std::exception& error) {
            {
                const std::lock_guard lock(mutex);
                problem = error.what();
            }
            news();
        }
    }
}

bool PictureFeed::superseded() const {
    const std::lock_guard lock(mutex);
    return taken != serial;
}

/// Decodes until the seeker has found its frame (true), or `enough` or a newer order ends it.
bool PictureFeed::findUntil(FrameSeeker& seeker, const std::function<bool()>& enough) {
    while (!seeker.found()) {
        if (superseded() || enough()) return false;
        seeker.step();
    }
    return true;
}

/// False when a newer order has come.
bool PictureFeed::showOne(const Order& one) {
    const double seconds = static_cast<double>(one.index) / one.film->fps;
    screen.want(one.film->scene->times().sourceTime(seconds));
    const std::optional<double> cameraTime =
        camera ? one.film->composition.cameraTime(seconds) : std::nullopt;
    if (cameraTime) camera->want(*cameraTime);

    const auto gather = [&](bool exact) {
        FeedFrame frame{one.index, screen.best(), std::nullopt, exact};
        if (cameraTime) frame.camera = camera->best();
        return frame;
    };
    std::optional<VideoFrame> given;
    Clock::time_point due = Clock::now() + patience;
    const auto meanwhile = [&] {
        if (Clock::now() < due) return false;
        due = Clock::now() + refresh;
        FeedFrame standIn = gather(false);
        if (!standIn.screen || sameFrame(standIn.screen, given)) return false;
        given = standIn.screen;
        push(std::move(standIn));
        return false;
    };
    return findUntil(screen, meanwhile) && (!cameraTime || findUntil(*camera, meanwhile)) &&
           push(gather(true));
}

void PictureFeed::playOn(const Order& film) {
    const TimeMap& times = film.film->scene->times();
    const double fps = film.film->fps;
    const std::int64_t count = film.film->scene->frameCount();
    if (!showOne(film)) return;
    std::optional<VideoFrame> lastScreen = screen.best();
    std::optional<VideoFrame> lastCamera;
    std::int64_t index = film.index + 1;
    while (index < count) {
        {
            std::unique_lock lock(mutex);
            wake.wait(lock, [&] {
                if (taken != serial) return true;
                if (frames.size() >= mostAhead) return false;
                std::size_t total = 0;
                const void* counted = nullptr;
                for (const FeedFrame& frame : frames) {
                    if (!frame.screen || frame.screen->owner.get() == counted) continue;
                    counted = frame.screen->owner.get();
                    total += bytes(frame.screen->picture);
                }
                return frames.size() < 2 || total < aheadBytes;
            });
            if (taken != serial) return;
        }
        // What is over is not worth decoding; neither is what will be over when it is decoded.
        if (const double late = lateness(static_cast<double>(index) / fps) * fps; late >= 1)
            index = std::min(index + static_cast<std::int64_t>(late) + 1, count - 1);

        const double seconds = static_cast<double>(index) / fps;
        const auto tooLate = [&] { return lateness(seconds) > -0.5 / fps; };
        const double source = times.sourceTime(seconds);
        screen.want(source);
        FeedFrame frame{index, std::nullopt, std::nullopt, true};
        // A frame is decoded at the least, so that there is always some progress.
        if (!screen.found()) screen.step();
        if (findUntil(screen, tooLate)) {
            frame.screen = screen.best();
        } else {
            if (superseded()) return;
            // The best there is, but nothing from within a cut.
            frame.exact = false;
            frame.screen = screen.best();
            const SpeedSegment* segment = times.segmentAt(source);
            if (lastScreen && (!frame.screen || frame.screen->time < lastScreen->time ||
                               (segment && frame.screen->time < segment->start)))
                frame.screen = lastScreen;
        }
        if (camera) {
            if (const auto cameraTime = film.film->composition.cameraTime(seconds)) {
                camera->want(*cameraTime);
                if (!camera->found()) camera->step();
                if (findUntil(*camera, tooLate)) {
                    frame.camera = camera->best();
                } else {
                    if (superseded()) return;
                    frame.exact = false;
                    frame.camera = lastCamera ? lastCamera : camera->best();
                }
            }
        }
        lastScreen = frame.screen;
        lastCamera = frame.camera;
        if (!push(std::move(frame))) return;
        ++index;
    }
}

/// Seconds by which an output time is over.
double PictureFeed::lateness(double seconds) const {
    const std::lock_guard lock(mutex);
    if (!playhead) return -1;
    return *playhead + std::chrono::duration<double>(Clock::now() - playheadAt).count() - seconds;
}

/// False when nobody wants it any more.
bool PictureFeed::push(FeedFrame frame) {
    {
        const std::lock_guard lock(mutex);
        if (taken != serial) return false;
        frames.push_back(std::move(frame));
    }
    news();
    return true;
}

} // namespace RecordCore
