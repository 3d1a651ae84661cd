#include "RecordCore/Capture/X11/X11Screens.h"

#include <fmt/format.h>
#include <xcb/randr.h>

#include <algorithm>

namespace RecordCore {

namespace {

std::string atomName(const X11Connection& connection, xcb_atom_t atom) {
    const auto cookie = xcb_get_atom_name(connection.get(), atom);
    const auto reply = connection.reply<xcb_get_atom_name_reply_t>(cookie);
    if (!reply) return {};
    return {xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

bool hasMonitors(const X11Connection& connection) {
    if (connection.extension(xcb_randr_id) == nullptr) return false;
    const auto cookie = xcb_randr_query_version(connection.get(), 1, 5);
    const auto version = connection.reply<xcb_randr_query_version_reply_t>(cookie);
    return version && (version->major_version > 1 || version->minor_version >= 5);
}

std::string utf8FromLatin1(const std::string& text) {
    std::string out;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code < 0x80) {
            out += character;
        } else {
            out += static_cast<char>(0xC0 | code >> 6);
            out += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return out;
}

struct WindowAtoms {
    explicit WindowAtoms(const X11Connection& connection) :
        clientList(connection.atom("_NET_CLIENT_LIST")), name(connection.atom("_NET_WM_NAME")),
        utf8(connection.atom("UTF8_STRING")), pid(connection.atom("_NET_WM_PID")),
        type(connection.atom("_NET_WM_WINDOW_TYPE")), frameExtents(connection.atom("_GTK_FRAME_EXTENTS")),
        state(connection.atom("WM_STATE")) {
        for (const char* normal :
             {"_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_WINDOW_TYPE_UTILITY"})
            normalTypes.push_back(connection.atom(normal));
    }
    xcb_atom_t clientList, name, utf8, pid, type, frameExtents, state;
    std::vector<xcb_atom_t> normalTypes;
};

std::vector<xcb_window_t> childrenOf(const X11Connection& connection, xcb_window_t window) {
    const auto cookie = xcb_query_tree(connection.get(), window);
    const auto tree = connection.reply<xcb_query_tree_reply_t>(cookie);
    if (!tree) return {};
    const xcb_window_t* first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

/// The window manager's list; without one, the mapped top-level windows that ask to be managed.
std::vector<xcb_window_t> clientWindows(const X11Connection& connection, const WindowAtoms& atoms) {
    std::vector<xcb_window_t> clients =
        connection.values(connection.root(), atoms.clientList, XCB_ATOM_WINDOW);
    if (!clients.empty()) return clients;
    for (const xcb_window_t child : childrenOf(connection, connection.root())) {
        const auto cookie = xcb_get_window_attributes(connection.get(), child);
        const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(cookie);
        if (attributes && attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT &&
            attributes->override_redirect == 0 && attributes->map_state == XCB_MAP_STATE_VIEWABLE)
            clients.push_back(child);
    }
    return clients;
}

} // namespace

std::vector<DisplayInfo> x11Displays(const X11Connection& connection) {
    std::vector<DisplayInfo> displays;
    if (hasMonitors(connection)) {
        const auto cookie = xcb_randr_get_monitors(connection.get(), connection.root(), 1);
        const auto reply = connection.reply<xcb_randr_get_monitors_reply_t>(cookie);
        if (reply) {
            for (auto monitor = xcb_randr_get_monitors_monitors_iterator(reply.get()); monitor.rem > 0;
                 xcb_randr_monitor_info_next(&monitor)) {
                const xcb_randr_monitor_info_t& info = *monitor.data;
                if (info.width == 0 || info.height == 0) continue;
                DisplayInfo display;
                display.id = info.name;
                display.name = atomName(connection, info.name);
                display.frame = {static_cast<double>(info.x), static_cast<double>(info.y),
                                 static_cast<double>(info.width), static_cast<double>(info.height)};
                display.main = info.primary != 0;
                if (display.name.empty()) display.name = fmt::format("Display {}", display.id);
                displays.push_back(std::move(display));
            }
        }
    }
    if (displays.empty()) {
        const xcb_screen_t& screen = connection.screen();
        displays.push_back({1,
                            "Display 1",
                            {0, 0, static_cast<double>(screen.width_in_pixels),
                             static_cast<double>(screen.height_in_pixels)},
                            true});
    }
    std::stable_sort(displays.begin(), displays.end(),
                     [](const DisplayInfo& a, const DisplayInfo& b) { return a.main && !b.main; });
    displays.front().main = true; // no primary monitor set: the first one counts as it
    return displays;
}

std::optional<X11WindowPlace> x11WindowPlace(const X11Connection& connection, xcb_window_t client,
                                             xcb_atom_t frameExtents) {
    xcb_connection_t* c = connection.get();
    X11WindowPlace place;
    place.frame = client;
    for (;;) {
        const auto tree = connection.reply<xcb_query_tree_reply_t>(xcb_query_tree(c, place.frame));
        if (!tree || tree->parent == XCB_WINDOW_NONE) return std::nullopt;
        if (tree->parent == tree->root) break;
        place.frame = tree->parent;
    }
    const auto frameCookie = xcb_get_geometry(c, place.frame);
    const auto attributesCookie = xcb_get_window_attributes(c, client);
    const auto clientCookie = xcb_get_geometry(c, client);
    const auto cornerCookie = xcb_translate_coordinates(c, client, place.frame, 0, 0);
    const auto frame = connection.reply<xcb_get_geometry_reply_t>(frameCookie);
    const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(attributesCookie);
    const auto inner = connection.reply<xcb_get_geometry_reply_t>(clientCookie);
    const auto corner = connection.reply<xcb_translate_coordinates_reply_t>(cornerCookie);
    if (!frame || !attributes || !inner || !corner) return std::nullopt;

    place.borderWidth = frame->border_width;
    place.frameWidth = frame->width;
    place.frameHeight = frame->height;
    place.width = frame->width + 2 * frame->border_width;
    place.height = frame->height + 2 * frame->border_width;
    // Left, right, top, bottom of the shadow, inside the client window.
    const auto extents = connection.values(client, frameExtents, XCB_ATOM_CARDINAL);
    if (extents.size() >= 4 && (extents[0] | extents[1] | extents[2] | extents[3]) != 0) {
        const int width = inner->width - static_cast<int>(extents[0] + extents[1]);
        const int height = inner->height - static_cast<int>(extents[2] + extents[3]);
        if (width > 0 && height > 0) {
            place.x = frame->border_width + corner->dst_x + static_cast<int>(extents[0]);
            place.y = frame->border_width + corner->dst_y + static_cast<int>(extents[2]);
            place.width = width;
            place.height = height;
        }
    }
    place.onDesktop = {static_cast<double>(frame->x + place.x), static_cast<double>(frame->y + place.y),
                       static_cast<double>(place.width), static_cast<double>(place.height)};
    place.viewable = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    return place;
}

std::vector<WindowInfo> x11Windows(const X11Connection& connection) {
    const WindowAtoms atoms(connection);
    std::vector<WindowInfo> windows;
    for (const xcb_window_t client : clientWindows(connection, atoms)) {
        const auto place = x11WindowPlace(connection, client, atoms.frameExtents);
        if (!place) continue; // closed since the list was made
        WindowInfo window;
        window.id = client;
        window.frame = place->onDesktop;
        window.onScreen = place->viewable;
        window.title = connection.bytes(client, atoms.name, atoms.utf8);
        if (window.title.empty())
            window.title = utf8FromLatin1(connection.bytes(client, XCB_ATOM_WM_NAME, XCB_ATOM_STRING));
        // WM_CLASS holds the instance's name and the class, each ended by a zero; the class names the
        // program.
        const std::string classes = connection.bytes(client, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING);
        const std::size_t end = classes.find('\0');
        std::string name = end == std::string::npos ? std::string() : classes.substr(end + 1);
        name = name.substr(0, name.find('\0'));
        if (name.empty()) name = classes.substr(0, end);
        window.application = utf8FromLatin1(name);
        const auto pid = connection.values(client, atoms.pid, XCB_ATOM_CARDINAL);
        if (!pid.empty()) window.processId = pid.front();
        const auto types = connection.values(client, atoms.type, XCB_ATOM_ATOM);
        // The first type that is known decides; programs list the preferred one first.
        if (!types.empty() && std::none_of(types.begin(), types.end(), [&](xcb_atom_t type) {
                return std::find(atoms.normalTypes.begin(), atoms.normalTypes.end(), type) !=
                       atoms.normalTypes.end();
            }))
            window.layer = 1;
        windows.push_back(std::move(window));
    }
    return windows;
}

} // namespace RecordCore
