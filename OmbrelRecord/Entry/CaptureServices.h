#pragma once

#include "RecordCore/Capture/CameraStream.h"
#include "RecordCore/Capture/RecordingSession.h"
#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/SoundStream.h"
#include "RecordCore/Media/SoundOutput.h"

#include <functional>
#include <memory>
#include <string>

namespace OmbrelRecord {

/// The system services that this build captures from.
struct CaptureServices {
    std::unique_ptr<RecordCore::ScreenBackend> screen;
    std::unique_ptr<RecordCore::SoundBackend> sound;
    std::unique_ptr<RecordCore::CameraBackend> cameras; ///< none: this build has none

    /// What a recording works with. Everything, `media` too, outlives it.
    RecordCore::RecordingSession::Services session(const RecordCore::MediaBackend& media,
                                                   std::function<void(const std::string&)> log) const;
};

/// Loads nothing and does not connect to anything yet.
CaptureServices makeCaptureServices();

/// The user's sound output; silence, told to `log`, where it cannot be had. Throws nothing.
std::unique_ptr<RecordCore::SoundOutput> makeSoundOutput(const std::function<void(const std::string&)>& log);

} // namespace OmbrelRecord
