#include "RecordCore/Capture/CameraBackends.h"

#include "RecordCore/Model/RecordingError.h"

namespace RecordCore {

namespace {

/// A way that does not exist on this machine has no cameras.
std::vector<CameraDevice> camerasOf(const CameraBackend& way) {
    try {
        return way.cameras();
    } catch (const RecordingError&) {
        return {};
    }
}

} // namespace

std::vector<CameraDevice> CameraBackends::cameras() const {
    for (const auto& way : ways)
        if (auto found = camerasOf(*way); !found.empty()) return found;
    return {};
}

std::unique_ptr<CameraStream> CameraBackends::openCamera(const std::string& id) const {
    for (const auto& way : ways)
        if (!camerasOf(*way).empty()) return way->openCamera(id);
    throw RecordingError("no camera");
}

} // namespace RecordCore
