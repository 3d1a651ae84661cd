#pragma once

#include "RecordCore/Capture/CameraMode.h"

#include <optional>
#include <spa/param/video/format.h>
#include <spa/pod/pod.h>
#include <vector>

namespace RecordCore {

/// Adds what one EnumFormat parameter of a node offers and we can read.
void addCameraModes(const spa_pod& param, std::vector<CameraMode>& modes);

/// The format that asks for exactly this mode, at any frame rate up to the mode's. Built into `memory`.
const spa_pod* modeFormat(const CameraMode& mode, std::vector<std::uint8_t>& memory);

/// A negotiated format.
struct PipeWireVideoFormat {
    RawFormat format = RawFormat::i420;
    int width = 0;
    int height = 0;
    bool bt709 = false;
    bool fullRange = false;
};

/// None when it is not one of ours.
std::optional<PipeWireVideoFormat> negotiatedFormat(const spa_pod& param);

} // namespace RecordCore
