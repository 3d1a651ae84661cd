// A screen to be recorded, the same in every run: `still` shows a page and nothing moves; `typical` types
// into it, blinks a caret, turns a spinner and scrolls for half a second every two; `busy` plays a video of a
// quarter of the screen and scrolls text beside it, 60 times a second. usage: CaptureScreen
// still|typical|busy

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int width = 1920;
constexpr int height = 1080;
constexpr int frameRate = 60;

class Screen {
public:
    Screen() : connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection) != 0) std::exit(1);
        screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        window = xcb_generate_id(connection);
        const std::uint32_t values[] = {0xF4F4F0, 1};
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, width, height, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
        xcb_map_window(connection, window);
        context = xcb_generate_id(connection);
        const std::uint32_t silent = 0;
        xcb_create_gc(connection, context, window, XCB_GC_GRAPHICS_EXPOSURES, &silent);
        xcb_prefetch_maximum_request_length(connection);
    }

    /// A picture in the server's memory.
    xcb_pixmap_t upload(int w, int h, const std::vector<std::uint32_t>& pixels) {
        const xcb_pixmap_t pixmap = xcb_generate_id(connection);
        xcb_create_pixmap(connection, 24, pixmap, window, static_cast<std::uint16_t>(w),
                          static_cast<std::uint16_t>(h));
        const int rows = std::max(1, 65536 / w);
        for (int y = 0; y < h; y += rows) {
            const int count = std::min(rows, h - y);
            xcb_put_image(
                connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, static_cast<std::uint16_t>(w),
                static_cast<std::uint16_t>(count), 0, static_cast<std::int16_t>(y), 0, 24,
                static_cast<std::uint32_t>(w * count * 4),
                reinterpret_cast<const std::uint8_t*>(pixels.data() + static_cast<std::ptrdiff_t>(y) * w));
        }
        return pixmap;
    }

    void copy(xcb_drawable_t from, int sx, int sy, int x, int y, int w, int h) {
        xcb_copy_area(connection, from, window, context, static_cast<std::int16_t>(sx),
                      static_cast<std::int16_t>(sy), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(w),
                      static_cast<std::uint16_t>(h));
    }

    void fill(std::uint32_t color, int x, int y, int w, int h) {
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &color);
        const xcb_rectangle_t rectangle{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                        static_cast<std::uint16_t>(w), static_cast<std::uint16_t>(h)};
        xcb_poly_fill_rectangle(connection, window, context, 1, &rectangle);
    }

    bool flush() { return xcb_flush(connection) > 0 && xcb_connection_has_error(connection) == 0; }

    xcb_window_t window = 0;

private:
    xcb_connection_t* connection;
    const xcb_screen_t* screen = nullptr;
    xcb_gcontext_t context = 0;
};

/// Lines of something like text: glyphs of 8 × 16 pixels, words, ragged ends.
std::vector<std::uint32_t> page(int w, int h, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<std::uint32_t> glyphs(64 * 8 * 16, 0xF4F4F0);
    for (int glyph = 0; glyph < 64; ++glyph)
        for (int y = 2; y < 13; ++y)
            for (int x = 0; x < 7; ++x)
                if (random() % 100 < 38)
                    glyphs[static_cast<std::size_t>((glyph * 16 + y) * 8 + x)] =
                        random() % 3 ? 0x202428 : 0x707880;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), 0xF4F4F0);
    for (int line = 0; line + 18 <= h; line += 18) {
        const int end = w * static_cast<int>(40 + random() % 55) / 100;
        for (int x = 16; x + 8 < end; x += 8) {
            if (random() % 6 == 0) continue;
            const auto glyph = static_cast<int>(random() % 64);
            for (int row = 0; row < 16; ++row)
                for (int column = 0; column < 8; ++column)
                    pixels[static_cast<std::size_t>((line + row) * w + x + column)] =
                        glyphs[static_cast<std::size_t>((glyph * 16 + row) * 8 + column)];
        }
    }
    return pixels;
}

/// One frame of a moving picture: soft shapes that drift, with grain.
std::vector<std::uint32_t> videoFrame(int w, int h, int index) {
    std::mt19937 random(static_cast<unsigned>(index));
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int a = (x * 2 + index * 9) % 512, b = (y * 3 + index * 5) % 512;
            const int grain = static_cast<int>(random() % 12);
            const int r = std::abs(a - 256) * 3 / 4 + grain, g = std::abs(b - 256) * 3 / 4 + grain,
                      blue = std::abs((a + b) % 512 - 256) * 3 / 4 + grain;
            pixels[static_cast<std::size_t>(y * w + x)] = static_cast<std::uint32_t>(r << 16 | g << 8 | blue);
        }
    return pixels;
}

} // namespace

int main(int argc, char** argv) {
    const std::string kind = argc > 1 ? argv[1] : "";
    if (kind != "still" && kind != "typical" && kind != "busy") return 2;
    Screen screen;
    constexpr int tall = 4000;
    const xcb_pixmap_t text = screen.upload(width, tall, page(width, tall, 1));
    const xcb_pixmap_t keys = screen.upload(800, 18, page(800, 18, 2));
    std::vector<xcb_pixmap_t> video;
    for (int i = 0; kind == "busy" && i < 48; ++i)
        video.push_back(screen.upload(960, 540, videoFrame(960, 540, i)));
    screen.copy(text, 0, 0, 0, 0, width, height);

    const auto began = std::chrono::steady_clock::now();
    for (std::int64_t frame = 0; screen.flush(); ++frame) {
        std::this_thread::sleep_until(began + frame * std::chrono::microseconds(1000000 / frameRate));
        const int i = static_cast<int>(frame % 100000);
        if (kind == "busy") {
            screen.copy(video[static_cast<std::size_t>(i) % video.size()], 0, 0, 40, 200, 960, 540);
            screen.copy(text, 0, i * 3 % (tall - 900), 1050, 100, 800, 800);
        } else if (kind == "typical") {
            if (i % 8 == 0) screen.copy(keys, i % 640, 0, 200 + i % 640, 500, 8, 18);
            if (i % 30 == 0) screen.fill(i % 60 == 0 ? 0x202428 : 0xF4F4F0, 900, 500, 2, 18);
            if (i % 4 == 0)
                screen.fill(0x404040U + static_cast<unsigned>(i / 4 % 8) * 0x181818U, 1880, 20, 20, 20);
            if (i % 120 < 30) screen.copy(text, 0, i % 120 * 24 + 300, 1100, 200, 700, 600);
        }
    }
    return 0;
}
