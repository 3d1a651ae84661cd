#pragma once

#include "RecordCore/Capture/SoundStream.h"

namespace RecordCore {

/// The sound of the session through the PulseAudio client interface, which PipeWire serves too. Stateless:
/// every question makes a connection of its own.
class PulseSound : public SoundBackend {
public:
    std::vector<SoundDevice> microphones() const override;
    std::string defaultMicrophone() const override;
    std::unique_ptr<SoundStream> openSystemSound() const override;
    std::unique_ptr<SoundStream> openMicrophone(const std::string& id) const override;
};

} // namespace RecordCore
