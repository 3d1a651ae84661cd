#pragma once

#include "RecordCore/Capture/SoundStream.h"

#include <functional>
#include <optional>
#include <pulse/pulseaudio.h>
#include <string>
#include <vector>

namespace RecordCore {

/// What the sound service has to record from at one moment.
struct PulseDevices {
    struct Source {
        SoundDevice device;
        bool monitor = false; ///< what a sink plays, not a microphone
        bool operator==(const Source&) const = default;
    };

    std::vector<Source> sources; ///< in the service's order
    std::string defaultSink;     ///< empty: none
    std::string defaultSource;   ///< empty: none; may be a monitor

    /// The microphone to use when none was chosen: the default source, or the first microphone when the
    /// default source is a monitor (that is what services name where nothing else was made the default).
    std::optional<SoundDevice> defaultMicrophone() const;
    /// The monitor of the default sink. Its name is spelled out: the alias for it that the service offers
    /// records the microphone on some versions of PipeWire.
    std::optional<SoundDevice> systemSound() const;
    std::optional<SoundDevice> microphone(const std::string& id) const;
};

/// Asks the service for its devices, one question at a time. Used on the loop's thread or under its lock.
class PulseDeviceQuery {
public:
    using Answer = std::function<void(const PulseDevices&)>;

    /// `answer` is called on the loop's thread, unless the connection goes down or the query is destroyed
    /// before. It may destroy the query.
    PulseDeviceQuery(pa_context* context, Answer answer);
    ~PulseDeviceQuery();
    PulseDeviceQuery(const PulseDeviceQuery&) = delete;
    PulseDeviceQuery& operator=(const PulseDeviceQuery&) = delete;

private:
    void ask(pa_operation* next);

    Answer answer;
    pa_operation* operation = nullptr;
    PulseDevices devices;
};

} // namespace RecordCore
