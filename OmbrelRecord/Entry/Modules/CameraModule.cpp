#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Capture/CameraBackends.h"
#include "RecordCore/Capture/PipeWire/PipeWireCameras.h"
#include "RecordCore/Capture/V4L2/V4L2Cameras.h"

#include <utility>
#include <vector>

namespace {

using namespace RecordCore;

std::unique_ptr<CameraBackend> cameras(PictureDecoderFactory decoder) {
    std::vector<std::unique_ptr<CameraBackend>> backends;
    backends.push_back(std::make_unique<PipeWireCameras>(decoder));
    backends.push_back(std::make_unique<V4L2Cameras>(std::move(decoder)));
    return std::make_unique<CameraBackends>(std::move(backends));
}

} // namespace

OMBREL_MODULE const OmbrelRecord::Modules::Camera ombrelModule{
    {OmbrelRecord::Modules::Camera::file, OMBREL_VERSION}, cameras};
