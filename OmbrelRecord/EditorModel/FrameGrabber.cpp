#include "OmbrelRecord/EditorModel/FrameGrabber.h"

#include "OmbrelRecord/AppModel/Images.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

/// Recordings hold a key frame every two seconds of time: from here on jumping is cheaper than decoding.
constexpr double worthSeeking = 2;

/// The frames of a video at any times, one reader kept open.
class Reader {
public:
    explicit Reader(std::unique_ptr<VideoReader> video) : reader(std::move(video)) {}

    std::optional<VideoFrame> at(double time, double slack) {
        if (slack > 0)
            if (const auto cost = reader->seekCost(time); cost && cost->keyTime >= time - slack)
                time = std::min(time, cost->keyTime);
        if (!shown || time < shown->time || time > shown->time + worthSeeking) {
            reader->seek(time);
            shown = reader->next();
            following = shown ? reader->next() : std::nullopt;
        }
        while (following && following->time <= time + 1e-6) {
            shown = std::move(following);
            reader->skipTo(time);
            following = reader->next();
        }
        return shown;
    }

private:
    std::unique_ptr<VideoReader> reader;
    std::optional<VideoFrame> shown;
    std::optional<VideoFrame> following;
};

} // namespace

/// The thread, and what it is asked for. Knows nothing of the grabber, which may be gone before its end.
class FrameGrabber::Work {
public:
    using Tell = std::function<void(quint64 key, const QImage& picture)>; ///< on the thread

    Work(const MediaBackend& media, std::filesystem::path video, Tell tell) :
        media(media), video(std::move(video)), tell(std::move(tell)) {}
    ~Work() {
        end();
        if (thread.joinable()) thread.join();
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    void want(std::vector<Wanted> pictures);
    /// The picture in work is the last.
    void end() {
        {
            const std::lock_guard lock(mutex);
            ending = true;
        }
        changed.notify_all();
    }

private:
    void run();

    const MediaBackend& media;
    const std::filesystem::path video;
    const Tell tell;
    std::mutex mutex;
    std::condition_variable changed;
    // Guarded by the mutex.
    std::vector<Wanted> wanted; ///< the most urgent last
    bool ending = false;
    std::thread thread;
};

void FrameGrabber::Work::want(std::vector<Wanted> pictures) {
    std::reverse(pictures.begin(), pictures.end());
    {
        const std::lock_guard lock(mutex);
        wanted = std::move(pictures);
        if (!wanted.empty() && !thread.joinable()) thread = std::thread([this] { run(); });
    }
    changed.notify_all();
}

void FrameGrabber::Work::run() {
    std::optional<Reader> reader;
    bool broken = false;
    while (true) {
        Wanted next;
        {
            std::unique_lock lock(mutex);
            changed.wait(lock, [this] { return ending || !wanted.empty(); });
            if (ending) return;
            next = wanted.back();
            wanted.pop_back();
        }
        QImage picture;
        try {
            if (!reader && !broken) reader.emplace(media.openVideo(video, 1));
            if (const auto frame = reader ? reader->at(next.time, next.slack) : std::nullopt) {
                picture = imageOf(frame->picture);
                if (next.height > 0 && picture.height() > next.height)
                    picture = picture.scaledToHeight(next.height, Qt::SmoothTransformation);
            }
        } catch (const std::exception&) {
            // The timeline is of use without pictures, too.
            reader.reset();
            broken = true;
        }
        tell(next.key, picture);
    }
}

FrameGrabber::FrameGrabber(const MediaBackend& media, const std::filesystem::path& video, Disposal* disposal,
                           QObject* parent) :
    QObject(parent),
    work(std::make_shared<Work>(media, video,
                                [this, to = mailbox.address()](quint64 key, const QImage& picture) {
                                    to.post([this, key, picture] { Q_EMIT grabbed(key, picture); });
                                })),
    disposal(disposal) {}

FrameGrabber::~FrameGrabber() {
    work->end();
    Disposal::drop(disposal, std::move(work));
}

void FrameGrabber::want(std::vector<Wanted> pictures) {
    work->want(std::move(pictures));
}

} // namespace OmbrelRecord
