#include "RecordCore/Capture/X11/X11Connection.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace RecordCore {

bool x11ServerListens() {
    char* host = nullptr;
    int number = 0;
    if (xcb_parse_display(nullptr, &host, &number, nullptr) == 0) return false;
    const std::unique_ptr<char, FreeXcb> owned(host);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = fmt::format("/tmp/.X11-unix/X{}", number);
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (file < 0) return false;
    const bool listens = connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(file);
    return listens;
}

X11Connection::X11Connection(const std::string& display) {
    int number = 0;
    connection = xcb_connect(display.empty() ? nullptr : display.c_str(), &number);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        const char* variable = std::getenv("DISPLAY");
        const std::string name = !display.empty() ? display : variable != nullptr ? variable : "";
        throw RecordingError(name.empty() ? "no display: DISPLAY is not set"
                                          : fmt::format("no display: the X server {} does not answer", name));
    }
    xcb_screen_iterator_t iterator = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (number > 0 && iterator.rem > 1) {
        xcb_screen_next(&iterator);
        --number;
    }
    defaultScreen = iterator.data;
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection);
}

void X11Connection::cut() const {
    shutdown(descriptor(), SHUT_RDWR);
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t& id) const {
    const xcb_query_extension_reply_t* data = xcb_get_extension_data(connection, &id);
    return data != nullptr && data->present != 0 ? data : nullptr;
}

const xcb_query_extension_reply_t& X11Connection::require(xcb_extension_t& id, const char* name) const {
    const xcb_query_extension_reply_t* data = extension(id);
    if (data == nullptr) throw RecordingError(fmt::format("the X server has no {} extension", name));
    return *data;
}

xcb_atom_t X11Connection::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::vector<std::uint32_t> X11Connection::values(xcb_window_t window, xcb_atom_t property,
                                                 xcb_atom_t type) const {
    // A client list of 64 Ki windows is more than any server holds.
    const auto cookie = xcb_get_property(connection, 0, window, property, type, 0, 65536);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* data = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {data, data + xcb_get_property_value_length(reply.get()) / 4};
}

std::string X11Connection::bytes(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) const {
    const auto cookie = xcb_get_property(connection, 0, window, property, type, 0, 1024);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

} // namespace RecordCore
