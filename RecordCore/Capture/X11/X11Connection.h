#pragma once

#include "RecordCore/Capture/ScreenGeometry.h"
#include "RecordCore/Model/RecordingError.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace RecordCore {

struct FreeXcb {
    void operator()(void* reply) const { std::free(reply); }
};
/// What the X server answered, or an event.
template <class T>
using XcbReply = std::unique_ptr<T, FreeXcb>;

/// One connection to the X server. xcb itself may be used from several threads; events and replies belong to
/// one at a time. No wait for the server is without an end: a server that hangs while something is opened
/// or asked for is given up after `patience`, and `cut` ends the waits of a recording that runs.
class X11Connection {
public:
    static constexpr double patience = 10; ///< seconds

    /// Connects to `display`, empty: the DISPLAY of the environment. Throws RecordingError.
    explicit X11Connection(const std::string& display = {});
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* get() const { return connection; }
    const xcb_screen_t& screen() const { return *defaultScreen; }
    xcb_window_t root() const { return defaultScreen->root; }
    int descriptor() const { return xcb_get_file_descriptor(connection); }
    bool broken() const { return xcb_connection_has_error(connection) != 0; }

    /// Cuts the line to the server: whoever waits for a reply gets none. Any thread.
    void cut() const;

    /// From now on replies are waited for until the connection is cut: a server that hangs for a while during
    /// a recording must not end it.
    void waitUntilCut() { endless = true; }

    /// The answer to a request, none when the server refused it or the line was lost. Throws RecordingError
    /// when the server lets it wait too long. `Reply` is the type that belongs to the cookie.
    template <class Reply, class Cookie>
    XcbReply<Reply> reply(Cookie cookie) const {
        return XcbReply<Reply>(static_cast<Reply*>(await(cookie.sequence)));
    }

    /// Whether a checked request was done. Throws like `reply`.
    bool done(xcb_void_cookie_t checked) const;

    /// Waits until the server has done everything it was asked for. Throws like `reply`.
    void sync() const;

    /// The extension's data, none when the server lacks it.
    const xcb_query_extension_reply_t* extension(xcb_extension_t& id) const;
    /// The same, throwing RecordingError that names it.
    const xcb_query_extension_reply_t& require(xcb_extension_t& id, const char* name) const;

    xcb_atom_t atom(const char* name) const;

    /// A property of 32-bit values, empty when it is missing or of another kind.
    std::vector<std::uint32_t> values(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) const;
    /// A property of bytes.
    std::string bytes(xcb_window_t window, xcb_atom_t property, xcb_atom_t type = XCB_ATOM_ANY) const;

private:
    void* await(unsigned sequence) const;

    xcb_connection_t* connection = nullptr;
    bool endless = false;
    const xcb_screen_t* defaultScreen = nullptr;
};

/// Whether a server of this machine answers at DISPLAY, be it to refuse us.
bool x11ServerListens();

} // namespace RecordCore
