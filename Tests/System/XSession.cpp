#include "Tests/System/XSession.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <xcb/xtest.h>

using namespace RecordCore;

XSession::XSession(int width, int height) : width(width), height(height) {
    const auto file = folder / "display";
    const std::string size = std::to_string(width) + "x" + std::to_string(height) + "x24";
    // The server picks a free number and writes it where it is told.
    server.emplace(std::vector<std::string>{"sh", "-c",
                                            "exec Xvfb -displayfd 3 -screen 0 " + size +
                                                " -nolisten tcp -noreset 3>" + file.string()},
                   ChildProcess::Options{{}, folder / "server.log"});
    std::string number;
    if (!eventually(20, [&] {
            std::ifstream stream(file);
            return static_cast<bool>(std::getline(stream, number)) && !number.empty() && !stream.eof();
        }))
        throw std::runtime_error("Xvfb does not start");
    name = ":" + number;
    setenv("DISPLAY", name.c_str(), 1);
    line = std::make_unique<X11Connection>(name);
    manager.emplace(
        std::vector<std::string>{"openbox", "--sm-disable"},
        ChildProcess::Options{{{"DISPLAY", name}, {"HOME", folder.path().string()}}, folder / "manager.log"});
    const xcb_atom_t check = line->atom("_NET_SUPPORTING_WM_CHECK");
    if (!eventually(20, [&] { return !line->values(line->root(), check, XCB_ATOM_WINDOW).empty(); }))
        throw std::runtime_error("openbox does not start");
    movePointer(width - 1, height - 1);
    sync();
}

XSession::~XSession() {
    line.reset();
    manager.reset();
    server.reset();
}

void XSession::freeze() {
    ::kill(server->id(), SIGSTOP);
}

void XSession::thaw() {
    ::kill(server->id(), SIGCONT);
}

void XSession::sync() {
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(line->get(), xcb_get_input_focus(line->get()), nullptr));
}

void XSession::setMonitors(const std::vector<std::pair<std::string, int>>& widths) {
    int x = 0;
    for (const auto& [monitor, pixels] : widths) {
        const std::string geometry =
            std::to_string(pixels) + "/300x" + std::to_string(height) + "/200+" + std::to_string(x) + "+0";
        // The server's only output goes to the first one, or there would be a monitor of the whole screen,
        // too.
        ChildProcess::run(
            {"xrandr", "--display", name, "--setmonitor", monitor, geometry, x == 0 ? "screen" : "none"}, {});
        x += pixels;
    }
}

void XSession::movePointer(int x, int y) {
    xcb_test_fake_input(line->get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, line->root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    sync();
}

void XSession::press(int button) {
    xcb_test_fake_input(line->get(), XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button), XCB_CURRENT_TIME,
                        line->root(), 0, 0, 0);
    sync();
}

void XSession::release(int button) {
    xcb_test_fake_input(line->get(), XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button), XCB_CURRENT_TIME,
                        line->root(), 0, 0, 0);
    sync();
}

void XSession::click(int button) {
    press(button);
    release(button);
}

void XSession::typeKey(char letter) {
    typeKeys({static_cast<std::uint32_t>(letter)});
}

void XSession::typeKeys(const std::vector<std::uint32_t>& keysyms) {
    const xcb_setup_t* setup = xcb_get_setup(line->get());
    const int first = setup->min_keycode;
    const int count = setup->max_keycode - first + 1;
    const XcbReply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        line->get(),
        xcb_get_keyboard_mapping(line->get(), static_cast<xcb_keycode_t>(first),
                                 static_cast<std::uint8_t>(count)),
        nullptr));
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const auto keyOf = [&](std::uint32_t keysym) {
        for (int i = 0; i < count; ++i)
            if (symbols[i * mapping->keysyms_per_keycode] == keysym)
                return static_cast<std::uint8_t>(first + i);
        throw std::runtime_error("the keyboard has no such key");
    };
    const auto fake = [&](std::uint8_t type, std::uint32_t keysym) {
        xcb_test_fake_input(line->get(), type, keyOf(keysym), XCB_CURRENT_TIME, line->root(), 0, 0, 0);
    };
    for (const std::uint32_t keysym : keysyms)
        fake(XCB_KEY_PRESS, keysym);
    for (auto keysym = keysyms.rbegin(); keysym != keysyms.rend(); ++keysym)
        fake(XCB_KEY_RELEASE, *keysym);
    sync();
}

TestWindow::TestWindow(XSession& session, const std::string& title, int x, int y, int width, int height,
                       std::uint32_t color) :
    session(session),
    width(width), height(height) {
    X11Connection& line = session.connection();
    xcb_connection_t* c = line.get();
    window = xcb_generate_id(c);
    const std::uint32_t values[] = {color};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, line.root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      line.screen().root_visual, XCB_CW_BACK_PIXEL, values);
    context = xcb_generate_id(c);
    xcb_create_gc(c, context, window, 0, nullptr);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, line.atom("_NET_WM_NAME"), line.atom("UTF8_STRING"),
                        8, static_cast<std::uint32_t>(title.size()), title.data());
    constexpr char classes[] = "test\0Test";
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        sizeof classes, classes);
    const std::uint32_t pid = 4242;
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, line.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1,
                        &pid);
    // "The user has chosen this place": window managers then leave it alone.
    std::uint32_t hints[18] = {1 | 2, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                        32, 18, hints);
    show();
}

TestWindow::~TestWindow() {
    if (window != 0) close();
}

void TestWindow::show() {
    X11Connection& line = session.connection();
    // Managed: it is in the window manager's list, and viewable. A request that reaches the window manager
    // while it is still starting is lost, so it is made again.
    const xcb_atom_t list = line.atom("_NET_CLIENT_LIST");
    if (!eventually(10, [&] {
            const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
                line.get(), xcb_get_window_attributes(line.get(), window), nullptr));
            if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
                xcb_map_window(line.get(), window);
                return false;
            }
            for (const std::uint32_t each : line.values(line.root(), list, XCB_ATOM_WINDOW))
                if (each == window) return true;
            return false;
        }))
        throw std::runtime_error("the window does not come up");
}

void TestWindow::fill(std::uint32_t color) {
    fill(color, 0, 0, width, height);
}

void TestWindow::fill(std::uint32_t color, int x, int y, int w, int h) {
    draw(color, x, y, w, h);
    session.sync();
}

void TestWindow::draw(std::uint32_t color, int x, int y, int w, int h) {
    xcb_connection_t* c = session.connection().get();
    xcb_change_gc(c, context, XCB_GC_FOREGROUND, &color);
    const xcb_rectangle_t rectangle{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                    static_cast<std::uint16_t>(w), static_cast<std::uint16_t>(h)};
    xcb_poly_fill_rectangle(c, window, context, 1, &rectangle);
}

void TestWindow::resize(int w, int h, std::uint32_t color) {
    xcb_connection_t* c = session.connection().get();
    xcb_change_window_attributes(c, window, XCB_CW_BACK_PIXEL, &color);
    const std::uint32_t values[] = {static_cast<std::uint32_t>(w), static_cast<std::uint32_t>(h)};
    xcb_configure_window(c, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    width = w;
    height = h;
    if (!eventually(10, [&] {
            const XcbReply<xcb_get_geometry_reply_t> geometry(
                xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
            return geometry && geometry->width == w && geometry->height == h;
        }))
        throw std::runtime_error("the window keeps its size");
    fill(color);
}

void TestWindow::move(int x, int y) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
    xcb_configure_window(session.connection().get(), window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         values);
    session.sync();
}

void TestWindow::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(session.connection().get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    session.sync();
}

void TestWindow::iconify() {
    X11Connection& line = session.connection();
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = line.atom("WM_CHANGE_STATE");
    message.data.data32[0] = 3; // IconicState
    xcb_send_event(line.get(), 0, line.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    if (!eventually(10, [&] {
            const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
                line.get(), xcb_get_window_attributes(line.get(), window), nullptr));
            return attributes && attributes->map_state != XCB_MAP_STATE_VIEWABLE;
        }))
        throw std::runtime_error("the window is not minimised");
}

void TestWindow::close() {
    xcb_destroy_window(session.connection().get(), window);
    window = 0;
    session.sync();
}

PlanarColor PlanarColor::of(std::uint32_t rgb) {
    const double r = rgb >> 16 & 255, g = rgb >> 8 & 255, b = rgb & 255;
    const double luma = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    return {static_cast<int>(std::lround(16 + luma * 219 / 255)),
            static_cast<int>(std::lround(128 + (b - luma) / 1.8556 * 224 / 255)),
            static_cast<int>(std::lround(128 + (r - luma) / 1.5748 * 224 / 255))};
}

bool PlanarColor::at(const PlanarView& picture, int px, int py, int tolerance) const {
    const auto value = [&](std::size_t plane, int x, int y2) {
        return static_cast<int>(picture.planes[plane][y2 * picture.strides[plane] + x]);
    };
    return std::abs(value(0, px, py) - y) <= tolerance &&
           std::abs(value(1, px / 2, py / 2) - cb) <= tolerance &&
           std::abs(value(2, px / 2, py / 2) - cr) <= tolerance;
}
