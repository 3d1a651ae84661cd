#include "RecordCore/Capture/PulseAudio/PulseSound.h"

#include "RecordCore/Capture/PulseAudio/PulseDevices.h"
#include "RecordCore/Capture/PulseAudio/PulseLoop.h"
#include "RecordCore/Capture/PulseAudio/PulseStream.h"
#include "RecordCore/Model/RecordingError.h"

namespace RecordCore {

namespace {

constexpr double patience = 2; // seconds

/// Connects, asks and disconnects.
PulseDevices devicesNow() {
    PulseLoop loop;
    std::optional<PulseDevices> devices;
    std::string failure;
    pa_context* context = nullptr;
    {
        const PulseLoop::Lock lock(loop);
        context = loop.makeContext();
        pa_context_set_state_callback(
            context, [](pa_context*, void* user) { static_cast<PulseLoop*>(user)->signal(); }, &loop);
        const auto settled = [context] {
            const pa_context_state_t state = pa_context_get_state(context);
            return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
        };
        const bool tried = pa_context_connect(context, nullptr, PA_CONTEXT_NOFLAGS, nullptr) >= 0;
        if (tried && !loop.wait(context, patience, settled)) {
            failure = "the sound service does not answer";
        } else if (pa_context_get_state(context) != PA_CONTEXT_READY) {
            failure = pulseUnreachable(context);
        } else {
            const PulseDeviceQuery query(context, [&](const PulseDevices& answer) {
                devices = answer;
                loop.signal();
            });
            const bool answered = loop.wait(context, patience, [&] {
                return devices || pa_context_get_state(context) != PA_CONTEXT_READY;
            });
            if (!answered || !devices) failure = "the sound service does not answer";
        }
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
    }
    loop.stop();
    pa_context_unref(context);
    if (!devices) throw RecordingError(failure);
    return *devices;
}

} // namespace

std::vector<SoundDevice> PulseSound::microphones() const {
    std::vector<SoundDevice> found;
    for (const PulseDevices::Source& source : devicesNow().sources)
        if (!source.monitor) found.push_back(source.device);
    return found;
}

std::string PulseSound::defaultMicrophone() const {
    const auto device = devicesNow().defaultMicrophone();
    return device ? device->id : std::string();
}

std::unique_ptr<SoundStream> PulseSound::openSystemSound() const {
    return std::make_unique<PulseStream>(PulseStream::Kind::systemSound, std::string());
}

std::unique_ptr<SoundStream> PulseSound::openMicrophone(const std::string& id) const {
    return std::make_unique<PulseStream>(PulseStream::Kind::microphone, id);
}

} // namespace RecordCore
