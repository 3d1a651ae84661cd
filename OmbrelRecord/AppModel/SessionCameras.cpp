#include "OmbrelRecord/AppModel/SessionCameras.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

SessionCameras::SessionCameras(const CameraBackend* backend, SerialQueue& queue) :
    backend(backend), queue(queue) {}

SessionCameras::~SessionCameras() {
    stopPreview();
}

void SessionCameras::list(std::function<void(std::vector<Device>)> done) {
    questions.post([this, to = mailbox.address(), done = std::move(done)] {
        std::vector<Device> devices;
        try {
            if (backend)
                for (const CameraDevice& camera : backend->cameras())
                    devices.push_back({camera.id, camera.name});
        } catch (const RecordingError&) {
            // No camera service: no cameras.
        }
        to.post([done, devices] { done(devices); });
    });
}

void SessionCameras::startPreview(const std::string& id) {
    stopPreview();
    if (!backend) {
        mailbox.address().post([this] {
            if (onFailure) onFailure("no camera");
        });
        return;
    }
    shown = std::make_shared<Shown>(*backend, id);
    const Mailbox::Address to = shown->mailbox.address();
    Shown* it = shown.get(); // lives as long as what it calls
    it->preview.onPicture = [this, it, to] {
        if (it->told.exchange(true)) return;
        to.post([this, it] {
            it->told = false;
            if (onPicture) onPicture();
        });
    };
    it->preview.onEnd = [this, to](const std::string& message) {
        to.post([this, message] {
            if (onFailure) onFailure(message);
        });
    };
    queue.post([this, preview = shown, to] {
        try {
            preview->preview.start();
        } catch (const RecordingError& error) {
            to.post([this, message = std::string(error.what())] {
                if (onFailure) onFailure(message);
            });
        }
    });
}

void SessionCameras::stopPreview() {
    if (!shown) return;
    shown->mailbox = {}; // nothing it still says is heard
    queue.post([preview = std::move(shown)] { preview->preview.stop(); });
    shown = nullptr;
}

QImage SessionCameras::picture() {
    const std::shared_ptr<const CapturePicture> newest = shown ? shown->preview.picture() : nullptr;
    return newest ? imageOf(newest->view()) : QImage();
}

} // namespace OmbrelRecord
