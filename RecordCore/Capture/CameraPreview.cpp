#include "RecordCore/Capture/CameraPreview.h"

#include <cstring>
#include <utility>

namespace RecordCore {

CameraPreview::CameraPreview(const CameraBackend& allCameras, std::string camera) :
    cameras(allCameras), id(std::move(camera)) {}

CameraPreview::~CameraPreview() {
    stop();
}

void CameraPreview::start() {
    if (running()) return;
    auto opened = cameras.openCamera(id);
    opened->start({[this](const CameraFrame& frame) { keep(frame.picture); },
                   [this](const std::string& message) {
                       if (onEnd) onEnd(message);
                   }});
    stream = std::move(opened);
}

void CameraPreview::stop() {
    if (!running()) return;
    stream->stop();
    stream.reset();
    const std::scoped_lock lock(mutex);
    newest.reset();
    spare.reset();
}

std::shared_ptr<const CapturePicture> CameraPreview::picture() const {
    const std::scoped_lock lock(mutex);
    return newest;
}

void CameraPreview::keep(const PlanarView& view) {
    const int width = view.width & ~1;
    const int height = view.height & ~1;
    if (view.empty() || width == 0 || height == 0) return;
    std::shared_ptr<CapturePicture> next = std::move(spare);
    if (!next || next.use_count() > 1 || next->width() != width || next->height() != height)
        next = std::make_shared<CapturePicture>(width, height);
    for (int plane = 0; plane < 3; ++plane) {
        const auto i = static_cast<std::size_t>(plane);
        const int columns = plane == 0 ? width : width / 2;
        const int rows = plane == 0 ? height : height / 2;
        for (int y = 0; y < rows; ++y)
            std::memcpy(next->plane(plane) + y * next->stride(plane), view.planes[i] + y * view.strides[i],
                        static_cast<std::size_t>(columns));
    }
    {
        const std::scoped_lock lock(mutex);
        spare = std::exchange(newest, std::move(next));
    }
    if (onPicture) onPicture();
}

} // namespace RecordCore
