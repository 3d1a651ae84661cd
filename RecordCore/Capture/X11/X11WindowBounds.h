#pragma once

#include "RecordCore/Capture/WindowBounds.h"
#include "RecordCore/Capture/X11/X11Screens.h"

namespace RecordCore {

/// Asks the server where a window is.
class X11WindowBounds final : public WindowBounds {
public:
    X11WindowBounds(std::uint32_t window, int pictureWidth, int pictureHeight);
    std::optional<CapturedArea> current() override;
    void interrupt() override;

private:
    X11Connection connection;
    xcb_window_t window;
    int pictureWidth;
    int pictureHeight;
    xcb_atom_t frameExtents;
};

} // namespace RecordCore
