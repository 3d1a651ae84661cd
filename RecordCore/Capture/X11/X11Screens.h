#pragma once

#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/X11/X11Connection.h"

#include <optional>
#include <vector>

namespace RecordCore {

/// The monitors (RandR), the main one first; the whole root window where the server has no RandR 1.5. A
/// display's id is the number of its name's atom, which stays the same as long as the server runs.
std::vector<DisplayInfo> x11Displays(const X11Connection& connection);

/// Every managed window, in the window manager's order (of mapping), or top-level windows where there is no
/// window manager.
std::vector<WindowInfo> x11Windows(const X11Connection& connection);

/// A client window as it stands on the screen.
struct X11WindowPlace {
    xcb_window_t frame = 0; ///< the child of the root that holds it: the window manager's frame, or itself
    int borderWidth = 0;    ///< of the frame
    int frameWidth = 0;     ///< of the frame, without its border
    int frameHeight = 0;
    /// What counts as the window, relative to the outer corner of the frame (as in its pixmap): the whole
    /// frame, without the shadow that some programs draw around themselves.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    ScreenRect onDesktop; ///< the same on the desktop
    bool viewable = false;

    bool operator==(const X11WindowPlace&) const = default;
};

/// None when the window does not exist.
std::optional<X11WindowPlace> x11WindowPlace(const X11Connection& connection, xcb_window_t client,
                                             xcb_atom_t frameExtents);

} // namespace RecordCore
