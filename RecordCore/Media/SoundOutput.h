#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace RecordCore {

/// Plays sound on the user's output device: 48 kHz stereo floats, interleaved. One thread at a time; no call
/// waits for the sound service, and none throws: where there is no sound, there is none.
class SoundOutput {
public:
    /// Fills `samples` whole with what comes next. Called on a thread of the output; must not wait.
    using Source = std::function<void(std::span<float> samples)>;

    virtual ~SoundOutput() = default;

    /// Plays what `source` gives from now on, in place of what was playing.
    virtual void start(Source source) = 0;
    /// Falls silent at once; what has not been heard is dropped. When it returns `source` is not called any
    /// more.
    virtual void stop() = 0;

    /// Sample positions heard since `start`: 0 while the sound is still on its way; none when there is no
    /// device or service to hear it on.
    virtual std::optional<double> heard() const = 0;
};

using SoundOutputFactory = std::function<std::unique_ptr<SoundOutput>()>;

} // namespace RecordCore
