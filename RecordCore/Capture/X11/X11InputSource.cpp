#include "RecordCore/Capture/X11/X11InputSource.h"

#include "RecordCore/Capture/HostClock.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace RecordCore {

namespace {

// The server makes up wheel buttons for devices that scroll smoothly and flags them so.
constexpr std::uint32_t emulatedFlag = XCB_INPUT_POINTER_EVENT_FLAGS_POINTER_EMULATED;

/// Windows within windows that are looked into for one of this program.
constexpr int deepest = 4;

struct SelectDevices {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
};

} // namespace

X11InputSource::X11InputSource() {
    if (const auto* input = presses.extension(xcb_input_id)) {
        opcode = input->major_opcode;
        for (const X11Connection* connection : {&presses, &motions}) {
            const auto version = connection->reply<xcb_input_xi_query_version_reply_t>(
                xcb_input_xi_query_version(connection->get(), 2, 2));
            observes = version && version->major_version >= 2;
        }
    }
    if (observes) {
        select(presses, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS);
        select(motions, XCB_INPUT_XI_EVENT_MASK_RAW_MOTION);
    }
    processId = presses.atom("_NET_WM_PID");
    wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wake < 0) throw RecordingError("too many open files");
    presses.waitUntilCut();
    motions.waitUntilCut();
}

X11InputSource::~X11InputSource() {
    close(wake);
}

void X11InputSource::select(const X11Connection& to, std::uint32_t mask) const {
    const SelectDevices selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, mask};
    xcb_input_xi_select_events(to.get(), to.root(), 1, &selection.head);
    xcb_flush(to.get());
}

std::optional<ScreenPoint> X11InputSource::pointer() {
    const auto reply =
        presses.reply<xcb_query_pointer_reply_t>(xcb_query_pointer(presses.get(), presses.root()));
    if (!reply || reply->same_screen == 0) return std::nullopt;
    return ScreenPoint{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
}

void X11InputSource::interrupt() {
    interrupted = true;
    const std::uint64_t one = 1;
    static_cast<void>(!write(wake, &one, sizeof one));
    presses.cut(); // also ends a wait for a server that hangs
    motions.cut();
}

bool X11InputSource::wait(double until, const std::function<void(InputSignal)>& handler) {
    for (;;) {
        drain(presses, handler);
        if (interrupted || presses.broken()) return false;
        const double left = until - HostClock::system().now();
        if (left <= 0) break;
        pollfd files[2] = {{presses.descriptor(), POLLIN, 0}, {wake, POLLIN, 0}};
        timespec time{};
        time.tv_sec = static_cast<time_t>(left);
        time.tv_nsec = static_cast<long>((left - std::floor(left)) * 1e9);
        ppoll(files, 2, &time, nullptr);
    }
    drain(motions, handler);
    return true;
}

void X11InputSource::drain(const X11Connection& from, const std::function<void(InputSignal)>& handler) {
    while (xcb_generic_event_t* next = xcb_poll_for_event(from.get())) {
        const XcbReply<xcb_generic_event_t> event(next);
        deliver(*event, handler);
    }
}

bool X11InputSource::ours(xcb_window_t window) const {
    const auto owner = presses.values(window, processId, XCB_ATOM_CARDINAL);
    return !owner.empty() && static_cast<pid_t>(owner.front()) == getpid();
}

bool X11InputSource::pointerOnOurs() const {
    // From the root down: around a window lies the frame of the window manager.
    xcb_window_t window = presses.root();
    for (int depth = 0; depth < deepest; ++depth) {
        const auto reply = presses.reply<xcb_query_pointer_reply_t>(xcb_query_pointer(presses.get(), window));
        if (!reply || reply->child == XCB_WINDOW_NONE) return false;
        window = reply->child;
        if (ours(window)) return true;
    }
    return false;
}

bool X11InputSource::focusOnOurs() const {
    const auto focus = presses.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(presses.get()));
    return focus && focus->focus > XCB_INPUT_FOCUS_POINTER_ROOT && ours(focus->focus);
}

void X11InputSource::deliver(const xcb_generic_event_t& event,
                             const std::function<void(InputSignal)>& handler) {
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC) return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != opcode) return;
    switch (generic.event_type) {
    case XCB_INPUT_RAW_KEY_PRESS:
        if (!focusOnOurs()) handler(InputSignal::key);
        break;
    case XCB_INPUT_RAW_BUTTON_PRESS: {
        const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
        if ((press.flags & emulatedFlag) != 0 || pointerOnOurs()) break;
        if (press.detail == 1) handler(InputSignal::primaryButton);
        if (press.detail == 3) handler(InputSignal::secondaryButton);
        if (press.detail >= 4 && press.detail <= 7) handler(InputSignal::scroll);
        break;
    }
    case XCB_INPUT_RAW_MOTION:
        if (isScroll(reinterpret_cast<const xcb_input_raw_motion_event_t&>(event)) && !pointerOnOurs())
            handler(InputSignal::scroll);
        break;
    default:
        break;
    }
}

bool X11InputSource::isScroll(const xcb_input_raw_motion_event_t& motion) {
    const auto known = scrollAxes.find(motion.sourceid);
    if (known == scrollAxes.end()) learnScrollAxes(motion.sourceid);
    const std::vector<std::uint16_t>& axes = scrollAxes[motion.sourceid];
    if (axes.empty()) return false;
    // One value for each bit of the mask, in order.
    const std::uint32_t* mask = xcb_input_raw_button_press_valuator_mask(&motion);
    const xcb_input_fp3232_t* values = xcb_input_raw_button_press_axisvalues_raw(&motion);
    int index = 0;
    for (int axis = 0; axis < motion.valuators_len * 32; ++axis) {
        if ((mask[axis / 32] >> (axis % 32) & 1) == 0) continue;
        const xcb_input_fp3232_t& value = values[index++];
        if ((value.integral != 0 || value.frac != 0) &&
            std::find(axes.begin(), axes.end(), static_cast<std::uint16_t>(axis)) != axes.end())
            return true;
    }
    return false;
}

void X11InputSource::learnScrollAxes(std::uint16_t device) {
    std::vector<std::uint16_t>& axes = scrollAxes[device];
    const auto reply =
        motions.reply<xcb_input_xi_query_device_reply_t>(xcb_input_xi_query_device(motions.get(), device));
    if (!reply) return;
    for (auto info = xcb_input_xi_query_device_infos_iterator(reply.get()); info.rem > 0;
         xcb_input_xi_device_info_next(&info)) {
        for (auto kind = xcb_input_xi_device_info_classes_iterator(info.data); kind.rem > 0;
             xcb_input_device_class_next(&kind)) {
            if (kind.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL) continue;
            axes.push_back(reinterpret_cast<const xcb_input_scroll_class_t*>(kind.data)->number);
        }
    }
}

} // namespace RecordCore
