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
}

std::shared_ptr<const CapturePicture> CameraPreview::picture() const {
    const std::scoped_lock lock(mutex);
    return newest;
}

std::shared_ptr<CapturePicture> CameraPreview::blank(int width, int height) {
    std::unique_ptr<CapturePicture> picture;
    {
        const std::scoped_lock lock(pool->mutex);
        if (!pool->free.empty()) {
            picture = std::move(pool->free.back());
            pool->free.pop_back();
        }
    }
    if (!picture || picture->width() != width || picture->height() != height)
        picture = std::make_unique<CapturePicture>(width, height);
    return {picture.release(), [home = pool](CapturePicture* used) {
                std::unique_ptr<CapturePicture> owned(used);
                const std::scoped_lock lock(home->mutex);
                if (home->free.size() < 2) home->free.push_back(std::move(owned));
            }};
}

void CameraPreview::keep(const PlanarView& view) {
    const int width = view.width & ~1;
    const int height = view.height & ~1;
    if (view.empty() || width == 0 || height == 0) return;
    const std::shared_ptr<CapturePicture> next = blank(width, height);
    for (int plane = 0; plane < 3; ++plane) {
        const auto i = static_cast<std::size_t>(plane);
        const int columns = plane == 0 ? width : width / 2;
        const int rows = plane == 0 ? height : height / 2;
        for (int y = 0; y < rows; ++y)
            std::memcpy(next->plane(plane) + y * next->stride(plane), view.planes[i] + y * view.strides[i],
                        static_cast<std::size_t>(columns));
    }
    std::shared_ptr<const CapturePicture> before = next; // goes back into the pool after the lock
    {
        const std::scoped_lock lock(mutex);
        newest.swap(before);
    }
    if (onPicture) onPicture();
}

} // namespace RecordCore
