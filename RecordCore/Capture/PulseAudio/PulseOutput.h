#pragma once

#include "RecordCore/Capture/PulseAudio/PulseLoop.h"
#include "RecordCore/Media/SoundOutput.h"

#include <cstdint>

namespace RecordCore {

/// Plays on the default output through the PulseAudio client interface, which PipeWire serves too. The
/// service moves what plays when the default changes. One that went away is looked for again at the next
/// `start`.
class PulseOutput : public SoundOutput {
public:
    PulseOutput() = default;
    ~PulseOutput() override;

    void start(Source source) override;
    void stop() override;
    std::optional<double> heard() const override;

private:
    void connectContext();
    void dropContext();
    void contextChanged();
    void connectStream();
    void dropStream();
    void write(std::size_t bytes);

    mutable PulseLoop loop;
    // All below is touched on the loop's thread or under its lock.
    pa_context* context = nullptr;
    pa_stream* stream = nullptr;
    Source source;
    bool failed = false;      ///< there is nothing to play on
    std::int64_t written = 0; ///< sample positions, since `start`
};

} // namespace RecordCore
