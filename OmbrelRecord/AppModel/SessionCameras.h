#pragma once

#include "OmbrelRecord/AppModel/AppParts.h"
#include "OmbrelRecord/AppModel/Mailbox.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "RecordCore/Capture/CameraPreview.h"
#include "RecordCore/Capture/CameraStream.h"

#include <atomic>
#include <memory>

namespace OmbrelRecord {

/// The cameras of the session. Main thread; devices are opened and closed on the queue, so that a recording
/// posted to it finds the camera free.
class SessionCameras : public Cameras {
public:
    /// Both outlive the object; the backend may be none: there is no camera then.
    SessionCameras(const RecordCore::CameraBackend* backend, SerialQueue& queue);
    ~SessionCameras() override;

    void list(std::function<void(std::vector<Device>)> done) override;
    void startPreview(const std::string& id) override;
    void stopPreview() override;
    QImage picture() override;

private:
    struct Shown {
        Shown(const RecordCore::CameraBackend& backend, const std::string& id) : preview(backend, id) {}
        std::atomic<bool> told{false}; ///< the main thread is about to look at the newest picture
        Mailbox mailbox;               ///< what an earlier preview still says is not heard
        RecordCore::CameraPreview preview;
    };

    const RecordCore::CameraBackend* backend;
    SerialQueue& queue;
    SerialQueue questions;
    Mailbox mailbox;
    std::shared_ptr<Shown> shown;
};

} // namespace OmbrelRecord
