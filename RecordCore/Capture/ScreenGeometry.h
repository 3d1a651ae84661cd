#pragma once

namespace RecordCore {

/// A place on the desktop in pixels: the origin is the top-left corner of the whole desktop, y grows
/// downward.
struct ScreenPoint {
    double x = 0;
    double y = 0;
    bool operator==(const ScreenPoint&) const = default;
};

/// A rectangle in the same space.
struct ScreenRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool empty() const { return !(width > 0) || !(height > 0); }
    bool operator==(const ScreenRect&) const = default;
};

} // namespace RecordCore
