#include "OmbrelRecord/Entry/CaptureServices.h"

#include "RecordCore/Capture/CameraBackends.h"
#include "RecordCore/Capture/PipeWire/PipeWireCameras.h"
#include "RecordCore/Capture/PulseAudio/PulseSound.h"
#include "RecordCore/Capture/V4L2/V4L2Cameras.h"
#include "RecordCore/Capture/X11/X11ScreenBackend.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"

#include <utility>

namespace OmbrelRecord {

using namespace RecordCore;

RecordingSession::Services CaptureServices::session(const MediaBackend& media,
                                                    std::function<void(const std::string&)> log) const {
    return {{*screen, sound.get(), media, HostClock::system(), std::move(log)}, cameras.get()};
}

CaptureServices makeCaptureServices() {
    CaptureServices services;
    services.screen = std::make_unique<X11ScreenBackend>();
    services.sound = std::make_unique<PulseSound>();
    std::vector<std::unique_ptr<CameraBackend>> cameras;
    cameras.push_back(std::make_unique<PipeWireCameras>(FFmpeg::makePictureDecoder));
    cameras.push_back(std::make_unique<V4L2Cameras>(FFmpeg::makePictureDecoder));
    services.cameras = std::make_unique<CameraBackends>(std::move(cameras));
    return services;
}

} // namespace OmbrelRecord
