#pragma once

#include "RecordCore/Capture/ScreenGeometry.h"

#include <optional>

namespace RecordCore {

/// Where the captured thing stands on the desktop.
struct CapturedArea {
    ScreenRect frame; ///< the display or window itself
    /// The part of the desktop that the whole picture shows. Equal to `frame` but for a window that was
    /// resized while it is recorded (its picture is fitted into the size at start, with bars) and for the
    /// odd last column or row that an even picture leaves out.
    ScreenRect picture;
    bool operator==(const CapturedArea&) const = default;
};

/// Tells where the captured window is now. Used by one thread.
class WindowBounds {
public:
    virtual ~WindowBounds() = default;
    /// None while it cannot be told (closed, minimised).
    virtual std::optional<CapturedArea> current() = 0;
    /// Ends `current`, now and for good, whatever it waits for. From another thread.
    virtual void interrupt() = 0;
};

} // namespace RecordCore
