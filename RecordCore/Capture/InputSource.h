#pragma once

#include "RecordCore/Capture/ScreenGeometry.h"

#include <functional>
#include <optional>

namespace RecordCore {

/// What happened, and nothing more: a source never learns or passes on which key it was.
enum class InputSignal { primaryButton, secondaryButton, key, scroll };

/// The user's pointer, buttons, keys and wheel, whatever program they are meant for. Used by one thread,
/// but for `interrupt`.
class InputSource {
public:
    virtual ~InputSource() = default;

    /// Where the pointer is now; none when it cannot be told.
    virtual std::optional<ScreenPoint> pointer() = 0;

    /// Whether key presses of other programs can be observed, now.
    virtual bool seesKeys() const = 0;

    /// Waits until the host clock shows `until` and calls `handler` for every signal as it comes, on this
    /// thread. Returns early, false, once `interrupt` was called or the source is gone for good.
    virtual bool wait(double until, const std::function<void(InputSignal)>& handler) = 0;

    /// Makes `wait` return, now and ever after. Any thread.
    virtual void interrupt() = 0;
};

} // namespace RecordCore
