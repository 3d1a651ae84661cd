#include "RecordCore/Capture/X11/X11ScreenStream.h"

#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/Kernels/ScreenConversion.h"

#include <fmt/format.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <xcb/composite.h>
#include <xcb/randr.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace RecordCore {

namespace {
// Each rectangle is a request of its own; beyond this many, boxes around rows of them are cheaper.
constexpr std::size_t mostRects = 48;
constexpr int closedGap = 2; // blocks

/// A monitor may be declared larger than the screen that holds it; only what exists can be fetched.
X11Grabber::Rect withinRoot(const X11Connection& connection, const ScreenRect& frame) {
    const auto root =
        connection.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(connection.get(), connection.root()));
    if (!root) return {};
    const int left = std::max(static_cast<int>(frame.x), 0);
    const int top = std::max(static_cast<int>(frame.y), 0);
    const int right = std::min(static_cast<int>(frame.x + frame.width), static_cast<int>(root->width));
    const int bottom = std::min(static_cast<int>(frame.y + frame.height), static_cast<int>(root->height));
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}
} // namespace

X11ScreenStream::X11ScreenStream(const ScreenSource& source, int fps) : grabber(connection), pacer(fps) {
    requirePlainPixels(connection);
    xcb_connection_t* c = connection.get();
    damageEvent = connection.require(xcb_damage_id, "DAMAGE").first_event;
    connection.require(xcb_xfixes_id, "XFIXES");
    // A client may use these extensions only after it has said which version it speaks.
    connection.reply<xcb_damage_query_version_reply_t>(xcb_damage_query_version(c, 1, 1));
    connection.reply<xcb_xfixes_query_version_reply_t>(xcb_xfixes_query_version(c, 5, 0));
    if (const auto* randr = connection.extension(xcb_randr_id)) {
        hasRandr = true;
        randrEvent = randr->first_event;
    }
    if (const auto* one = std::get_if<DisplaySource>(&source))
        openDisplay(one->id);
    else
        openWindow(std::get<WindowSource>(source).id);
    region = xcb_generate_id(c);
    xcb_xfixes_create_region(c, region, 0, nullptr);
    wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wake < 0) throw RecordingError("too many open files");
}

X11ScreenStream::~X11ScreenStream() {
    stop();
    if (wake >= 0) close(wake);
}

void X11ScreenStream::openDisplay(std::uint32_t id) {
    display = id;
    for (const DisplayInfo& info : x11Displays(connection)) {
        if (info.id != id) continue;
        content = withinRoot(connection, info.frame);
    }
    if (content.width < 2 || content.height < 2)
        throw RecordingError(fmt::format("there is no display {}", id));
    drawable = connection.root();
    damage = xcb_generate_id(connection.get());
    xcb_damage_create(connection.get(), damage, drawable, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    if (hasRandr)
        xcb_randr_select_input(connection.get(), connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    preparePicture(content.width, content.height);
}

void X11ScreenStream::openWindow(std::uint32_t id) {
    client = id;
    frameExtents = connection.atom("_GTK_FRAME_EXTENTS");
    xcb_connection_t* c = connection.get();
    connection.require(xcb_composite_id, "Composite");
    connection.reply<xcb_composite_query_version_reply_t>(xcb_composite_query_version(c, 0, 4));
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, client, XCB_CW_EVENT_MASK, &mask);
    refreshWindow();
    if (!place) throw RecordingError(fmt::format("there is no window {}", id));
    if (place->width < 2 || place->height < 2)
        throw RecordingError(fmt::format("window {} is too small to be recorded", id));
    preparePicture(place->width, place->height);
}

void X11ScreenStream::preparePicture(int contentWidth, int contentHeight) {
    picture = CapturePicture(contentWidth / 2 * 2, contentHeight / 2 * 2);
    damaged = BlockMap(picture.width(), picture.height());
    changed = damaged;
    fit = ScreenFit::of(contentWidth, contentHeight, picture.width(), picture.height());
    damaged.markAll();
    changed.markAll();
}

void X11ScreenStream::start(Handlers to) {
    handlers = std::move(to);
    connection.waitUntilCut();
    thread = std::thread([this] { run(); });
}

void X11ScreenStream::stop() {
    if (!thread.joinable()) return;
    stopping = true;
    const std::uint64_t one = 1;
    static_cast<void>(!write(wake, &one, sizeof one));
    // The thread may wait for a server that hangs. After a second the line is cut, which ends every wait.
    using namespace std::chrono_literals;
    for (int i = 0; i < 1000 && !finished; ++i)
        std::this_thread::sleep_for(1ms);
    connection.cut(); // also when it has ended: nothing that is cleaned up later can wait then
    thread.join();
}

void X11ScreenStream::end(const std::string& message) {
    if (ended) return;
    ended = true;
    endMessage = message;
}

void X11ScreenStream::run() {
    pthread_setname_np(pthread_self(), "capture");
    const HostClock& clock = HostClock::system();
    while (!stopping && !ended) {
        handleEvents();
        if (connection.broken()) end("the connection to the X server was lost");
        if (ended || stopping) break;
        double wait = -1;
        if (dirty && drawable != 0) {
            const double now = clock.now();
            wait = pacer.due() - now;
            if (wait <= 0) {
                try {
                    // Fetching counts even when the pixels turn out the same: it is what costs.
                    if (grab()) pacer.taken(now);
                    if (changed.any()) {
                        handlers.onFrame({picture.view(), now, changed.marks});
                        changed.clear();
                    }
                } catch (const std::exception& error) { // out of memory
                    end(error.what());
                }
                continue;
            }
        }
        xcb_flush(connection.get());
        // What the last replies brought along is already here and would not wake us.
        if (xcb_generic_event_t* waiting = xcb_poll_for_queued_event(connection.get())) {
            const XcbReply<xcb_generic_event_t> event(waiting);
            handle(*event);
            continue;
        }
        pollfd files[2] = {{connection.descriptor(), POLLIN, 0}, {wake, POLLIN, 0}};
        timespec time{};
        if (wait > 0) {
            time.tv_sec = static_cast<time_t>(wait);
            time.tv_nsec = static_cast<long>((wait - std::floor(wait)) * 1e9);
        }
        ppoll(files, 2, wait > 0 ? &time : nullptr, nullptr);
    }
    if (ended && !stopping && handlers.onEnd) handlers.onEnd(endMessage);
    finished = true;
}

void X11ScreenStream::handleEvents() {
    while (xcb_generic_event_t* next = xcb_poll_for_event(connection.get())) {
        const XcbReply<xcb_generic_event_t> event(next);
        handle(*event);
    }
    if (stale && !ended) {
        stale = false;
        if (client != 0)
            refreshWindow();
        else
            refreshDisplay();
    }
}

void X11ScreenStream::handle(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & 0x7F;
    if (type == damageEvent + XCB_DAMAGE_NOTIFY) {
        dirty = true;
    } else if (hasRandr && (type == randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                            type == randrEvent + XCB_RANDR_NOTIFY)) {
        stale = true;
    } else if (type == XCB_DESTROY_NOTIFY) {
        const auto& gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        if (gone.window == client && client != 0)
            end("the window was closed");
        else
            stale = true;
    } else if (client != 0 && type == XCB_CONFIGURE_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        stale = true;
        if (place && change.window == place->frame &&
            (change.width != place->frameWidth || change.height != place->frameHeight))
            renew = true;
    } else if (client != 0 &&
               (type == XCB_MAP_NOTIFY || type == XCB_UNMAP_NOTIFY || type == XCB_REPARENT_NOTIFY)) {
        stale = true;
        renew = true;
    } else if (type == XCB_PROPERTY_NOTIFY) {
        if (reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == frameExtents) stale = true;
    }
}

void X11ScreenStream::refreshDisplay() {
    for (const DisplayInfo& info : x11Displays(connection)) {
        if (info.id != display) continue;
        const X11Grabber::Rect rect = withinRoot(connection, info.frame);
        setContent(rect.x, rect.y, rect.width, rect.height);
        return;
    }
    end("the display was disconnected");
}

void X11ScreenStream::releaseWindow() {
    xcb_connection_t* c = connection.get();
    if (pixmap != 0) xcb_free_pixmap(c, pixmap);
    if (damage != 0) xcb_damage_destroy(c, damage);
    pixmap = 0;
    damage = 0;
    drawable = 0;
}

void X11ScreenStream::refreshWindow() {
    const auto now = x11WindowPlace(connection, client, frameExtents);
    if (!now) {
        // Gone: the message of its end is on its way. While opening there is none to wait for.
        if (place) end("the window was closed");
        place.reset();
        return;
    }
    const std::optional<X11WindowPlace> before = std::exchange(place, now);
    xcb_connection_t* c = connection.get();
    if (!before || before->frame != place->frame) {
        releaseWindow();
        // Its own memory instead of what is left of it on the screen. Ends with this connection.
        xcb_composite_redirect_window(c, place->frame, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        if (place->frame != client) {
            const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
            xcb_change_window_attributes(c, place->frame, XCB_CW_EVENT_MASK, &mask);
        }
        damage = xcb_generate_id(c);
        xcb_damage_create(c, damage, place->frame, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    }
    if (!place->viewable) {
        // Minimised, perhaps squeezed for it: the last picture stays.
        if (pixmap != 0) xcb_free_pixmap(c, pixmap);
        pixmap = 0;
        drawable = 0;
        return;
    }
    const bool same = before && before->width == place->width && before->height == place->height &&
                      before->x == place->x && before->y == place->y;
    if (!std::exchange(renew, false) && drawable != 0 && same) return; // it has only moved
    namePixmap();
    if (picture.width() != 0) setContent(place->x, place->y, place->width, place->height);
    content = {place->x, place->y, place->width, place->height};
    damageOffset = place->borderWidth;
}

/// The window's memory is another one after each change of size and each mapping. While the window is
/// unmapped it has none: the picture stays as it is.
void X11ScreenStream::namePixmap() {
    xcb_connection_t* c = connection.get();
    const xcb_pixmap_t fresh = xcb_generate_id(c);
    const bool named = connection.done(xcb_composite_name_window_pixmap_checked(c, place->frame, fresh));
    if (pixmap != 0) xcb_free_pixmap(c, pixmap);
    pixmap = named ? fresh : 0;
    drawable = pixmap;
    if (picture.width() != 0) damaged.markAll();
    dirty = true;
}

void X11ScreenStream::setContent(int x, int y, int width, int height) {
    if (x == content.x && y == content.y && width == content.width && height == content.height) return;
    content = {x, y, width, height};
    const ScreenFit old = std::exchange(fit, ScreenFit::of(width, height, picture.width(), picture.height()));
    damaged.markAll();
    dirty = true;
    if (fit == old || fit.exact) return;
    picture.fillBlack(); // the bars
    changed.markAll();
}

void X11ScreenStream::collectDamage() {
    xcb_connection_t* c = connection.get();
    xcb_damage_subtract(c, damage, XCB_XFIXES_REGION_NONE, region);
    const auto reply = connection.reply<xcb_xfixes_fetch_region_reply_t>(xcb_xfixes_fetch_region(c, region));
    if (!reply) return;
    const xcb_rectangle_t* rectangles = xcb_xfixes_fetch_region_rectangles(reply.get());
    const int count = xcb_xfixes_fetch_region_rectangles_length(reply.get());
    const int offsetX = damageOffset - content.x;
    const int offsetY = damageOffset - content.y;
    for (int i = 0; i < count; ++i) {
        int left = rectangles[i].x + offsetX;
        int top = rectangles[i].y + offsetY;
        const int right = std::min(left + rectangles[i].width, content.width);
        const int bottom = std::min(top + rectangles[i].height, content.height);
        left = std::max(left, 0);
        top = std::max(top, 0);
        if (left >= right || top >= bottom) continue;
        if (fit.exact)
            damaged.markPixels(left, top, right - left, bottom - top);
        else
            damaged.markAll(); // scaled content is fetched whole
    }
}

bool X11ScreenStream::grab() {
    dirty = false;
    collectDamage();
    if (!damaged.any() || content.width < 1 || content.height < 1) return false;
    const bool whole = fit.exact ? grabExact() : grabScaled();
    // Refused: the size has just changed, and the event that says so is on its way; what is marked stays
    // marked.
    if (whole) damaged.clear();
    return true;
}

bool X11ScreenStream::grabExact() {
    constexpr int block = BlockMap::blockSize;
    damaged.runs(closedGap, runs);
    if (runs.size() > mostRects) {
        // One box for each row of blocks.
        damaged.runs(damaged.columns, runs);
    }
    rects.clear();
    for (const BlockMap::Run& run : runs) {
        const int left = std::max(run.x * block - 2, 0);
        const int right = std::min((run.x + run.width) * block + 2, picture.width());
        const int top = run.y * block;
        const int bottom = std::min((run.y + run.height) * block, picture.height());
        rects.push_back({content.x + left, content.y + top, right - left, bottom - top});
    }
    return grabber.fetch(drawable, rects, [this](const X11Grabber::Rect& rect, const BgraView& pixels) {
        const int left = rect.x - content.x;
        const int top = rect.y - content.y;
        // Without the columns that were fetched for the chroma of their neighbours only.
        const int from = left == 0 ? 0 : left + 2;
        const int right = left + rect.width;
        const int to = right == picture.width() ? right : right - 2;
        convertScreen({pixels, left, top}, from, top, to - from, rect.height, picture, changed);
    });
}

bool X11ScreenStream::grabScaled() {
    rects.assign(1, content);
    return grabber.fetch(drawable, rects, [this](const X11Grabber::Rect&, const BgraView& pixels) {
        BgraView source = pixels;
        if (fit.width != content.width / 2 * 2 || fit.height != content.height / 2 * 2) {
            scaler.scale(pixels, fit.width, fit.height, scaled);
            source = {scaled.data(), static_cast<std::ptrdiff_t>(fit.width) * 4, fit.width, fit.height};
        }
        convertScreen({source, fit.x, fit.y}, fit.x, fit.y, fit.width, fit.height, picture, changed);
    });
}

} // namespace RecordCore
