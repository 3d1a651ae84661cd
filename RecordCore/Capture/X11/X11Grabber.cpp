#include "RecordCore/Capture/X11/X11Grabber.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace RecordCore {

namespace {
std::size_t byteCount(const X11Grabber::Rect& rect) {
    return static_cast<std::size_t>(rect.width) * static_cast<std::size_t>(rect.height) * 4;
}
} // namespace

X11Grabber::X11Grabber(const X11Connection& connection) : connection(connection) {
    if (connection.extension(xcb_shm_id) == nullptr) return;
    const auto version =
        connection.reply<xcb_shm_query_version_reply_t>(xcb_shm_query_version(connection.get()));
    shared = version && (version->major_version > 1 || version->minor_version >= 2);
}

X11Grabber::~X11Grabber() {
    release();
}

void X11Grabber::release() {
    if (memory == nullptr) return;
    xcb_shm_detach(connection.get(), segment);
    xcb_flush(connection.get());
    munmap(memory, capacity);
    memory = nullptr;
    capacity = 0;
}

void X11Grabber::reserve(std::size_t bytes) {
    if (!shared || bytes <= capacity) return;
    release();
    const std::size_t wanted = (bytes + 0xFFFF) & ~std::size_t{0xFFFF};
    const int file = memfd_create("screen", MFD_CLOEXEC);
    shared = false; // until everything below has gone well
    if (file < 0) return;
    void* mapped = MAP_FAILED;
    if (ftruncate(file, static_cast<off_t>(wanted)) == 0)
        mapped = mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapped == MAP_FAILED) {
        close(file);
        return;
    }
    segment = xcb_generate_id(connection.get());
    // The library sends the descriptor and closes it. A connection over the network refuses here.
    if (!connection.done(xcb_shm_attach_fd_checked(connection.get(), segment, file, 0))) {
        munmap(mapped, wanted);
        return;
    }
    memory = static_cast<std::uint8_t*>(mapped);
    capacity = wanted;
    shared = true;
}

bool X11Grabber::fetch(xcb_drawable_t drawable, std::span<const Rect> rects,
                       const std::function<void(const Rect&, const BgraView&)>& use) {
    bool whole = true;
    std::size_t total = 0;
    for (const Rect& rect : rects)
        total += byteCount(rect);
    reserve(total);
    const auto view = [](const Rect& rect, const std::uint8_t* pixels) {
        return BgraView{pixels, static_cast<std::ptrdiff_t>(rect.width) * 4, rect.width, rect.height};
    };
    if (!shared) {
        for (const Rect& rect : rects) {
            const auto cookie = xcb_get_image(
                connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(rect.x),
                static_cast<std::int16_t>(rect.y), static_cast<std::uint16_t>(rect.width),
                static_cast<std::uint16_t>(rect.height), ~0U);
            const auto image = connection.reply<xcb_get_image_reply_t>(cookie);
            if (image && static_cast<std::size_t>(xcb_get_image_data_length(image.get())) >= byteCount(rect))
                use(rect, view(rect, xcb_get_image_data(image.get())));
            else
                whole = false;
        }
        return whole;
    }
    cookies.clear();
    std::size_t offset = 0;
    for (const Rect& rect : rects) {
        cookies.push_back(xcb_shm_get_image(
            connection.get(), drawable, static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height), ~0U,
            XCB_IMAGE_FORMAT_Z_PIXMAP, segment, static_cast<std::uint32_t>(offset)));
        offset += byteCount(rect);
    }
    offset = 0;
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const auto image = connection.reply<xcb_shm_get_image_reply_t>(cookies[i]);
        if (image && image->size >= byteCount(rects[i]))
            use(rects[i], view(rects[i], memory + offset));
        else
            whole = false;
        offset += byteCount(rects[i]);
    }
    return whole;
}

void requirePlainPixels(const X11Connection& connection) {
    const xcb_setup_t* setup = xcb_get_setup(connection.get());
    const xcb_screen_t& screen = connection.screen();
    int bits = 0;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem > 0; xcb_format_next(&format))
        if (format.data->depth == screen.root_depth) bits = format.data->bits_per_pixel;
    const xcb_visualtype_t* visual = nullptr;
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0; xcb_depth_next(&depth))
        for (auto type = xcb_depth_visuals_iterator(depth.data); type.rem > 0; xcb_visualtype_next(&type))
            if (type.data->visual_id == screen.root_visual) visual = type.data;
    const bool plain = bits == 32 && setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST &&
                       visual != nullptr && visual->red_mask == 0xFF0000 && visual->green_mask == 0xFF00 &&
                       visual->blue_mask == 0xFF;
    if (!plain)
        throw RecordingError(fmt::format("the screen has a color depth of {} bits; only 24 can be recorded",
                                         screen.root_depth));
}

} // namespace RecordCore
