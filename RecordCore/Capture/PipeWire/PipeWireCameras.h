#pragma once

#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Media/PictureDecoder.h"

namespace RecordCore {

/// The cameras that PipeWire offers. Every question makes a connection of its own. Throws RecordingError when
/// PipeWire is not running.
class PipeWireCameras : public CameraBackend {
public:
    explicit PipeWireCameras(PictureDecoderFactory makeDecoder) : makeDecoder(std::move(makeDecoder)) {}

    std::vector<CameraDevice> cameras() const override;
    std::unique_ptr<CameraStream> openCamera(const std::string& id) const override;

private:
    PictureDecoderFactory makeDecoder;
};

} // namespace RecordCore
