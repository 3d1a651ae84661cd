#pragma once

#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Capture/CapturePicture.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace RecordCore {

/// Shows a camera while nothing is recorded: keeps the newest frame for whoever draws it. `start`, `stop`
/// and `running` belong to one thread; `picture` may be called from any.
class CameraPreview {
public:
    /// The backend must outlive the object. An empty id is the default camera.
    explicit CameraPreview(const CameraBackend& cameras, std::string id = {});
    ~CameraPreview();
    CameraPreview(const CameraPreview&) = delete;
    CameraPreview& operator=(const CameraPreview&) = delete;

    /// Called on the camera's thread for every new picture. Set before `start`.
    std::function<void()> onPicture;
    /// Called on the camera's thread when the camera goes away. Set before `start`.
    std::function<void(const std::string& message)> onEnd;

    /// Nothing when it runs already. Throws RecordingError: "no camera", "camera busy", "camera output".
    void start();
    void stop();
    bool running() const { return stream != nullptr; }

    /// The newest picture, null before the first. It does not change while it is held.
    std::shared_ptr<const CapturePicture> picture() const;

private:
    /// Pictures that nobody holds any more, to be used again. Outlives the preview while one is held.
    struct Pool {
        std::mutex mutex;
        std::vector<std::unique_ptr<CapturePicture>> free;
    };

    void keep(const PlanarView& view);
    std::shared_ptr<CapturePicture> blank(int width, int height);

    const CameraBackend& cameras;
    const std::string id;
    std::unique_ptr<CameraStream> stream;

    mutable std::mutex mutex;
    std::shared_ptr<const CapturePicture> newest; ///< guarded by the mutex
    std::shared_ptr<Pool> pool = std::make_shared<Pool>();
};

} // namespace RecordCore
