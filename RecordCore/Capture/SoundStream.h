#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace RecordCore {

/// A piece of captured sound: 48 kHz stereo, interleaved floats, borrowed for the duration of the call.
struct SoundBlock {
    std::span<const float> samples;
    /// Host clock seconds at which the first sample was heard or played, as well as the service can tell;
    /// single values may jitter by some milliseconds.
    double time = 0;
    /// The sound before this block is missing or of another device; true for the first block.
    bool afterGap = false;
};

/// The sound of one device. Device changes are its own business: a device that goes away is reported, and
/// opened again when it returns.
class SoundStream {
public:
    /// Called on the stream's own thread, never at the same time; must not throw.
    struct Handlers {
        std::function<void(const SoundBlock&)> onSound;
        /// The device went away (present is false) or came back; the message is for the log.
        std::function<void(bool present, const std::string& message)> onDevice;
    };

    virtual ~SoundStream() = default;

    /// Called once. Throws RecordingError when there is no such service or device.
    virtual void start(Handlers handlers) = 0;

    /// No handler runs after it returns; must not be called from a handler. Returns within a second even
    /// when the service hangs.
    virtual void stop() = 0;
};

/// A microphone or another source of sound.
struct SoundDevice {
    std::string id;
    std::string name;
    bool operator==(const SoundDevice&) const = default;
};

/// The sound service of the session. Callable from any thread. Throws RecordingError.
class SoundBackend {
public:
    virtual ~SoundBackend() = default;

    virtual std::vector<SoundDevice> microphones() const = 0;
    /// The id of the system's default microphone, empty when there is none.
    virtual std::string defaultMicrophone() const = 0;
    /// What the computer plays.
    virtual std::unique_ptr<SoundStream> openSystemSound() const = 0;
    /// An empty id is the default microphone.
    virtual std::unique_ptr<SoundStream> openMicrophone(const std::string& id) const = 0;
};

} // namespace RecordCore
