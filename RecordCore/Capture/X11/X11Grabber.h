#pragma once

#include "RecordCore/Capture/X11/X11Connection.h"
#include "RecordCore/Model/PictureView.h"

#include <xcb/shm.h>

#include <functional>
#include <span>
#include <vector>

namespace RecordCore {

/// Fetches rectangles of a drawable into shared memory (plain images over the connection where the server
/// cannot share memory). One thread.
class X11Grabber {
public:
    struct Rect {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };

    explicit X11Grabber(const X11Connection& connection);
    ~X11Grabber();
    X11Grabber(const X11Grabber&) = delete;
    X11Grabber& operator=(const X11Grabber&) = delete;

    /// Fetches all rectangles with as few waits as possible and hands each to `use` with its pixels, which
    /// live until the next call. False when the server refused one (the drawable has gone or shrunk); the
    /// others are still used.
    bool fetch(xcb_drawable_t drawable, std::span<const Rect> rects,
               const std::function<void(const Rect&, const BgraView&)>& use);

private:
    void reserve(std::size_t bytes);
    void release();

    const X11Connection& connection;
    bool shared = false; ///< memory can be shared
    xcb_shm_seg_t segment = 0;
    std::uint8_t* memory = nullptr;
    std::size_t capacity = 0;
    std::vector<xcb_shm_get_image_cookie_t> cookies;
};

/// Throws RecordingError when the server's pixels are not 32 bits of blue, green, red.
void requirePlainPixels(const X11Connection& connection);

} // namespace RecordCore
