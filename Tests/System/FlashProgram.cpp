// A program to be recorded: a window that turns from black to white and back with every click on it, as soon
// as the click arrives. usage: FlashProgram X Y WIDTH HEIGHT

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const int x = std::atoi(argv[1]), y = std::atoi(argv[2]);
    const int width = std::atoi(argv[3]), height = std::atoi(argv[4]);
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) return 1;
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t values[] = {screen->black_pixel, 1,
                                    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS};
    // Unmanaged, so that it stands exactly where it is put.
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values);
    xcb_map_window(connection, window);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_gc(connection, context, window, 0, nullptr);
    xcb_flush(connection);
    bool white = false;
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        if ((event->response_type & 0x7F) == XCB_BUTTON_PRESS) white = !white;
        std::free(event);
        const std::uint32_t color = white ? screen->white_pixel : screen->black_pixel;
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &color);
        const xcb_rectangle_t all{0, 0, static_cast<std::uint16_t>(width),
                                  static_cast<std::uint16_t>(height)};
        xcb_poly_fill_rectangle(connection, window, context, 1, &all);
        xcb_flush(connection);
    }
    xcb_disconnect(connection);
    return 0;
}
