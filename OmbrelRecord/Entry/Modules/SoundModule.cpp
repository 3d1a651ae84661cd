#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Capture/PulseAudio/PulseOutput.h"
#include "RecordCore/Capture/PulseAudio/PulseSound.h"

namespace {

std::unique_ptr<RecordCore::SoundBackend> sound() {
    return std::make_unique<RecordCore::PulseSound>();
}

std::unique_ptr<RecordCore::SoundOutput> output() {
    return std::make_unique<RecordCore::PulseOutput>();
}

} // namespace

OMBREL_MODULE const OmbrelRecord::Modules::Sound ombrelModule{
    {OmbrelRecord::Modules::Sound::file, OMBREL_VERSION}, sound, output};
