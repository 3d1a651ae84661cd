#pragma once

#include "RecordCore/Model/PictureView.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace RecordCore {

/// One camera picture, borrowed for the duration of the call. Its size may differ from frame to frame.
struct CameraFrame {
    PlanarView picture;
    double time = 0; ///< host clock seconds
};

/// The pictures of one camera.
class CameraStream {
public:
    /// Called on the stream's own thread, never at the same time; must not throw.
    struct Handlers {
        std::function<void(const CameraFrame&)> onFrame;
        /// The camera is gone for good; nothing more is delivered.
        std::function<void(const std::string& message)> onEnd;
    };

    virtual ~CameraStream() = default;

    /// Called once. Throws RecordingError ("no camera", "camera busy", "camera output").
    virtual void start(Handlers handlers) = 0;
    /// No handler runs after it returns; must not be called from a handler. Returns within a second even
    /// when the device hangs.
    virtual void stop() = 0;
};

struct CameraDevice {
    std::string id;
    std::string name;
    bool operator==(const CameraDevice&) const = default;
};

/// The cameras of the machine. Callable from any thread. Throws RecordingError.
class CameraBackend {
public:
    virtual ~CameraBackend() = default;

    /// The default camera first.
    virtual std::vector<CameraDevice> cameras() const = 0;
    /// An empty id is the default camera. 1280 × 720 where the camera offers it, else its best size.
    virtual std::unique_ptr<CameraStream> openCamera(const std::string& id) const = 0;
};

} // namespace RecordCore
