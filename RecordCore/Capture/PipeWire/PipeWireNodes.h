#pragma once

#include "RecordCore/Capture/CameraMode.h"
#include "RecordCore/Capture/PipeWire/PipeWireLoop.h"

#include <cstdint>
#include <string>
#include <vector>

namespace RecordCore {

/// A camera that PipeWire offers.
struct PipeWireCameraNode {
    std::uint32_t id = 0; ///< of this connection's registry
    std::string serial;   ///< the daemon's own number for it, never used twice
    std::string name;     ///< stays the same from session to session
    std::string description;
    int priority = 0;
};

/// The cameras of the session, the default one first. Without the lock. Throws RecordingError.
std::vector<PipeWireCameraNode> pipeWireCameras(PipeWireLoop& loop);

/// What a camera offers, in its own order. Without the lock. Throws RecordingError.
std::vector<CameraMode> pipeWireCameraModes(PipeWireLoop& loop, std::uint32_t node);

} // namespace RecordCore
