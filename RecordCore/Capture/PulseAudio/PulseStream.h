#pragma once

#include "RecordCore/Capture/PulseAudio/PulseDevices.h"
#include "RecordCore/Capture/PulseAudio/PulseLoop.h"
#include "RecordCore/Capture/SoundStream.h"

#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// Records what the computer plays, or a microphone.
///
/// System sound and a microphone that was not chosen follow the default device as it changes; a chosen
/// microphone is waited for while it is away. A service that goes down is looked for twice a second.
/// All handlers run on the thread of the stream's own loop.
class PulseStream : public SoundStream {
public:
    enum class Kind { systemSound, microphone };

    /// `id` is empty for the default microphone.
    PulseStream(Kind kind, std::string id);
    ~PulseStream() override;

    void start(Handlers handlers) override;
    void stop() override;

private:
    void connectContext(pa_context* fresh);
    void renewContext();
    void dropContext();
    void contextChanged();
    void askForDevices();
    void choose(const PulseDevices& devices);
    void connectStream(const SoundDevice& device);
    void dropStream();
    void streamChanged();
    void lost(const std::string& message);
    void retryLater(double seconds);
    void read();
    void deliver(const float* samples, std::size_t bytes);
    const char* what() const;

    const Kind kind;
    const std::string id;

    PulseLoop loop;
    // All below is touched on the loop's thread or under its lock.
    Handlers handlers;
    pa_context* context = nullptr;
    pa_stream* stream = nullptr;
    pa_time_event* retry = nullptr;
    std::optional<PulseDeviceQuery> query;
    bool askAgain = false;          ///< devices changed while they were being asked for
    SoundDevice current;            ///< the device `stream` records from
    bool present = false;           ///< the stream delivers
    bool afterGap = true;           ///< the next block follows a gap
    bool starting = false;          ///< `start` is waiting
    std::optional<std::string> why; ///< why there is no sound
    std::vector<float> silence;     ///< stands in for holes in the stream
};

} // namespace RecordCore
