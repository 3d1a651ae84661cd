#include "OmbrelRecord/AppModel/SessionSources.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "RecordCore/Model/RecordingError.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

constexpr std::chrono::seconds stillPatience{2};
constexpr int stillRate = 10; ///< frames a second; only the first is taken

/// The first picture of a source; null when none comes.
QImage firstPicture(ScreenStream& stream, QSize largest) {
    std::mutex mutex;
    std::condition_variable arrived;
    QImage image; // guarded by the mutex
    bool over = false;
    stream.start({[&](const ScreenFrame& frame) {
                      const std::lock_guard lock(mutex);
                      if (over) return;
                      image = imageOf(frame.picture, largest);
                      over = true;
                      arrived.notify_all();
                  },
                  [&](const std::string&) {
                      const std::lock_guard lock(mutex);
                      over = true;
                      arrived.notify_all();
                  }});
    {
        std::unique_lock lock(mutex);
        arrived.wait_for(lock, stillPatience, [&] { return over; });
        over = true;
    }
    stream.stop();
    return image;
}

} // namespace

bool SessionSources::accessGranted() {
    try {
        return backend.accessGranted();
    } catch (const RecordingError&) {
        return false;
    }
}

void SessionSources::requestAccess(std::function<void(bool)> done) {
    mailbox.address().post([this, done = std::move(done)] { done(accessGranted()); });
}

void SessionSources::list(std::function<void(ShareableContent)> done) {
    questions.post([this, to = mailbox.address(), done = std::move(done)] {
        ShareableContent content;
        try {
            content.displays = backend.displays();
            content.windows = backend.windows();
        } catch (const RecordingError&) {
            // What could be had is listed.
        }
        to.post([done, content = std::move(content)] { done(content); });
    });
}

void SessionSources::activate(std::uint32_t window) {
    questions.post([this, window] {
        try {
            backend.activate(window);
        } catch (const RecordingError&) {
            // It is recorded where it is.
        }
    });
}

void SessionSources::still(const ScreenSource& source, QSize largest, std::function<void(QImage)> done) {
    stills.post([this, to = mailbox.address(), source, largest, done = std::move(done)] {
        QImage image;
        try {
            image = firstPicture(*backend.openScreen(source, stillRate), largest);
        } catch (const RecordingError&) {
            // A window that is gone has no picture.
        }
        to.post([done, image] { done(image); });
    });
}

void SessionSources::askAllowed(std::function<void(bool, bool)> done) {
    questions.post([this, to = mailbox.address(), done = std::move(done)] {
        to.post([done, access = accessGranted(), keys = seesKeys()] { done(access, keys); });
    });
}

bool SessionSources::seesKeys() {
    try {
        return backend.openInput()->seesKeys();
    } catch (const RecordingError&) {
        return false;
    }
}

} // namespace OmbrelRecord
