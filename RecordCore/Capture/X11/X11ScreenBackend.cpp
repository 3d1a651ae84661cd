#include "RecordCore/Capture/X11/X11ScreenBackend.h"

#include "RecordCore/Capture/X11/X11InputSource.h"
#include "RecordCore/Capture/X11/X11ScreenStream.h"
#include "RecordCore/Capture/X11/X11Screens.h"
#include "RecordCore/Capture/X11/X11WindowBounds.h"

namespace RecordCore {

/// X11 asks nobody: whoever the server lets in may capture. What it does not let in, though it listens, has
/// no access.
bool X11ScreenBackend::accessGranted() const {
    try {
        const X11Connection connection;
        return true;
    } catch (const RecordingError&) {
        return !x11ServerListens();
    }
}

std::vector<DisplayInfo> X11ScreenBackend::displays() const {
    return x11Displays(X11Connection());
}

std::vector<WindowInfo> X11ScreenBackend::windows() const {
    return x11Windows(X11Connection());
}

std::unique_ptr<ScreenStream> X11ScreenBackend::openScreen(const ScreenSource& source, int fps) const {
    return std::make_unique<X11ScreenStream>(source, fps);
}

std::unique_ptr<InputSource> X11ScreenBackend::openInput() const {
    return std::make_unique<X11InputSource>();
}

std::unique_ptr<WindowBounds> X11ScreenBackend::openBounds(std::uint32_t windowId, int pictureWidth,
                                                           int pictureHeight) const {
    return std::make_unique<X11WindowBounds>(windowId, pictureWidth, pictureHeight);
}

void X11ScreenBackend::activate(std::uint32_t windowId) const {
    const X11Connection connection;
    // The window manager's request (EWMH); source 2 stands for something the user did.
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = windowId;
    message.type = connection.atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = 2;
    xcb_send_event(connection.get(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    // Disconnecting throws away what was not sent; a reply proves that everything before it arrived.
    connection.sync();
}

} // namespace RecordCore
