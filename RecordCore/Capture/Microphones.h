#pragma once

#include "RecordCore/Capture/SoundStream.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// A buffer of sound as a device delivers it, borrowed; all channels count alike.
struct SampleBuffer {
    enum class Format { float32, int16, other };

    Format format = Format::other;
    const void* data = nullptr;
    std::size_t count = 0; ///< samples of all channels together
};

/// The microphones of the machine, the chosen one, and a live meter of it. Belongs to the main thread: all
/// members are used there, and what a meter hears elsewhere is handed over to it.
class Microphones {
public:
    using Device = SoundDevice;
    /// Runs a function on the main thread, soon.
    using Post = std::function<void(std::function<void()>)>;

    /// The backend must outlive the object; `post` may be called from any thread. What was posted before the
    /// object went does nothing afterwards.
    Microphones(const SoundBackend& backend, Post post);
    ~Microphones();
    Microphones(const Microphones&) = delete;
    Microphones& operator=(const Microphones&) = delete;

    const std::vector<Device>& devices() const { return listed; }
    const std::optional<std::string>& selectedID() const { return selected; }
    void select(std::optional<std::string> id);
    double level() const { return shown; } ///< 0…1
    bool metering() const { return stream != nullptr; }

    /// Called on the main thread after `level` or `metering` changed.
    std::function<void()> onChange;

    /// Lists the microphones anew. A choice that is no longer there falls back to the system's default. No
    /// sound service: no microphones.
    void refresh();

    /// The device to record with: the chosen one while it exists, else the system's default, none when the
    /// computer has no microphone.
    std::optional<Device> active() const;

    /// Whether sound may be captured. On Linux the service itself decides, without a question beforehand.
    static bool requestAccess() { return true; }

    /// Starts the meter on the active device; when that fails `metering` stays false.
    void startMeter();
    void stopMeter();

    /// The level of a buffer: its RMS on a scale from −50 dBFS (0) to 0 dBFS (1). None for an empty buffer or
    /// a format other than 32-bit float and 16-bit integer.
    static std::optional<double> loudness(const SampleBuffer& buffer);

    /// What the meter shows after `level`, when a buffer of loudness `heard` came: it rises at once and
    /// falls gently.
    static double smoothed(double level, double heard);

private:
    void heard(double value);

    const SoundBackend& backend;
    Post post;
    std::shared_ptr<bool> meterRun; ///< expires with the running meter
    std::vector<Device> listed;
    std::optional<std::string> selected;
    double shown = 0;
    std::unique_ptr<SoundStream> stream;
};

} // namespace RecordCore
