#pragma once

#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Media/PictureDecoder.h"

namespace RecordCore {

/// The kernel's video devices, for systems without PipeWire. The id of a camera is its device file.
class V4L2Cameras : public CameraBackend {
public:
    explicit V4L2Cameras(PictureDecoderFactory makeDecoder) : makeDecoder(std::move(makeDecoder)) {}

    std::vector<CameraDevice> cameras() const override;
    std::unique_ptr<CameraStream> openCamera(const std::string& id) const override;

private:
    PictureDecoderFactory makeDecoder;
};

} // namespace RecordCore
