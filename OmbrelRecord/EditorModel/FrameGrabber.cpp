#include "OmbrelRecord/EditorModel/FrameGrabber.h"

#include "OmbrelRecord/AppModel/Images.h"

#include <QtCore/QMetaObject>
#include <algorithm>
#include <optional>

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

FrameGrabber::FrameGrabber(const MediaBackend& media, std::filesystem::path video, QObject* parent) :
    QObject(parent), media(media), video(std::move(video)) {}

FrameGrabber::~FrameGrabber() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    changed.notify_all();
    if (thread.joinable()) thread.join();
}

void FrameGrabber::want(std::vector<Wanted> pictures) {
    std::reverse(pictures.begin(), pictures.end());
    {
        const std::lock_guard lock(mutex);
        wanted = std::move(pictures);
        if (!wanted.empty() && !thread.joinable()) thread = std::thread([this] { run(); });
    }
    changed.notify_all();
}

void FrameGrabber::run() {
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
        QMetaObject::invokeMethod(this, [this, key = next.key, picture] { Q_EMIT grabbed(key, picture); });
    }
}

} // namespace OmbrelRecord
