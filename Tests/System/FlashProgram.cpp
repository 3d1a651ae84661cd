// A program to be recorded: a window that turns from black to white and back with every click on it, as soon
// as the click arrives, and beeps for a twentieth of a second when it is told to ("beep"). Without "managed"
// it stands exactly where it is put, with it the window manager puts a frame around it and X and Y are the
// frame's. With "count" it is gray with a white square in the middle, and from a SIGUSR1 on becomes five
// levels lighter every quarter of a second, so that a picture of it tells its time. usage: FlashProgram X Y
// WIDTH HEIGHT [managed] [beep] [count]

#include <poll.h>
#include <pulse/simple.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xproto.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <numbers>
#include <vector>

namespace {

/// A short tone with a steep start, heard as soon as the daemon can.
class Beeper {
public:
    Beeper() {
        const pa_sample_spec format{PA_SAMPLE_S16LE, 48000, 1};
        // After the quiet in between, what arrives is played at once.
        const pa_buffer_attr buffer{~0U, 480 * 2, 2, ~0U, ~0U};
        stream = pa_simple_new(nullptr, "flash", PA_STREAM_PLAYBACK, nullptr, "beep", &format, nullptr,
                               &buffer, nullptr);
        for (int i = 0; i < 2400; ++i)
            tone.push_back(static_cast<std::int16_t>(
                16000 * std::cos(2 * std::numbers::pi * 1000 * i / static_cast<double>(format.rate))));
    }
    ~Beeper() {
        if (stream != nullptr) pa_simple_free(stream);
    }
    Beeper(const Beeper&) = delete;
    Beeper& operator=(const Beeper&) = delete;

    void beep() {
        if (stream != nullptr) pa_simple_write(stream, tone.data(), tone.size() * 2, nullptr);
    }

private:
    pa_simple* stream;
    std::vector<std::int16_t> tone;
};

volatile std::sig_atomic_t counting = 0;

/// Gray that says how many quarters of a second have passed since it was told to count, with a white square.
void count(xcb_connection_t* connection, xcb_window_t window, int width, int height) {
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_gc(connection, context, window, 0, nullptr);
    const auto fill = [&](std::uint32_t gray, int x, int y, int w, int h) {
        const std::uint32_t color = gray << 16 | gray << 8 | gray;
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &color);
        const xcb_rectangle_t area{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                   static_cast<std::uint16_t>(w), static_cast<std::uint16_t>(h)};
        xcb_poly_fill_rectangle(connection, window, context, 1, &area);
    };
    const auto seconds = [] {
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    };
    double began = 0;
    int shown = -1;
    pollfd waiting{xcb_get_file_descriptor(connection), POLLIN, 0};
    while (xcb_connection_has_error(connection) == 0) {
        if (counting != 0 && began == 0) began = seconds();
        const int now = began > 0 ? std::min(40, static_cast<int>((seconds() - began) * 4)) : 0;
        bool again = now != shown;
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection)) {
            again = again || (event->response_type & 0x7F) == XCB_EXPOSE;
            std::free(event);
        }
        if (again) {
            fill(20 + 5 * static_cast<std::uint32_t>(now), 0, 0, width, height);
            fill(255, width / 2 - 30, height / 2 - 30, 60, 60);
            xcb_flush(connection);
            shown = now;
        }
        poll(&waiting, 1, 10);
    }
}

bool viewable(xcb_connection_t* connection, xcb_window_t window) {
    xcb_get_window_attributes_reply_t* attributes =
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr);
    const bool is = attributes == nullptr || attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    std::free(attributes);
    return is;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 5) return 2;
    const int x = std::atoi(argv[1]), y = std::atoi(argv[2]);
    const int width = std::atoi(argv[3]), height = std::atoi(argv[4]);
    bool managed = false, beeps = false, counts = false;
    for (int i = 5; i < argc; ++i) {
        managed = managed || std::strcmp(argv[i], "managed") == 0;
        beeps = beeps || std::strcmp(argv[i], "beep") == 0;
        counts = counts || std::strcmp(argv[i], "count") == 0;
    }
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) return 1;
    Beeper* beeper = beeps ? new Beeper : nullptr; // for as long as the program runs
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    const std::uint32_t values[] = {screen->black_pixel, managed ? 0U : 1U,
                                    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                      values);
    constexpr char name[] = "flash\0Flash";
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        sizeof name, name);
    const std::uint32_t hints[18] = {1, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
    // A window manager that is just starting misses the first request: the window asks until it is mapped.
    do {
        xcb_map_window(connection, window);
        xcb_flush(connection);
        usleep(50000);
    } while (managed && !viewable(connection, window));
    if (counts) {
        std::signal(SIGUSR1, [](int) { counting = 1; });
        count(connection, window, width, height);
        return 0;
    }
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_gc(connection, context, window, 0, nullptr);
    xcb_flush(connection);
    bool white = false;
    while (xcb_generic_event_t* event = xcb_wait_for_event(connection)) {
        const bool click = (event->response_type & 0x7F) == XCB_BUTTON_PRESS;
        if (click) white = !white;
        std::free(event);
        const std::uint32_t color = white ? screen->white_pixel : screen->black_pixel;
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &color);
        const xcb_rectangle_t all{0, 0, static_cast<std::uint16_t>(width),
                                  static_cast<std::uint16_t>(height)};
        xcb_poly_fill_rectangle(connection, window, context, 1, &all);
        xcb_flush(connection);
        if (click && beeper != nullptr) beeper->beep();
    }
    delete beeper;
    xcb_disconnect(connection);
    return 0;
}
