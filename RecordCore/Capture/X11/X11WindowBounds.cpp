#include "RecordCore/Capture/X11/X11WindowBounds.h"

#include "RecordCore/Capture/ScreenFit.h"

namespace RecordCore {

X11WindowBounds::X11WindowBounds(std::uint32_t window, int pictureWidth, int pictureHeight) :
    window(window), pictureWidth(pictureWidth), pictureHeight(pictureHeight),
    frameExtents(connection.atom("_GTK_FRAME_EXTENTS")) {
    connection.waitUntilCut();
}

void X11WindowBounds::interrupt() {
    connection.cut();
}

std::optional<CapturedArea> X11WindowBounds::current() {
    const auto place = x11WindowPlace(connection, window, frameExtents);
    if (!place || !place->viewable) return std::nullopt;
    return capturedArea(place->onDesktop, pictureWidth, pictureHeight);
}

} // namespace RecordCore
