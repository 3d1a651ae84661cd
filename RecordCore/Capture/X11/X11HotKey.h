#pragma once

#include "RecordCore/Capture/X11/X11Connection.h"

#include <xcb/xproto.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace RecordCore {

/// A letter with Super and Alt that reaches this program whatever window has the keyboard, and no other. It
/// is grabbed with Caps Lock and Num Lock on or off alike.
class X11HotKey {
public:
    /// `pressed` is called on a thread of the object's own, once for each press however long it is held.
    /// Throws RecordingError: "taken" when another program holds the combination, else why it cannot be had.
    X11HotKey(char letter, std::function<void()> pressed);
    ~X11HotKey();
    X11HotKey(const X11HotKey&) = delete;
    X11HotKey& operator=(const X11HotKey&) = delete;

private:
    struct Combination {
        xcb_keycode_t key = 0;
        std::uint16_t modifiers = 0;
    };

    std::vector<Combination> combinations() const;
    void grab();
    void release();
    void run();
    void handle(const xcb_generic_event_t& event);

    X11Connection connection;
    std::uint32_t keysym;
    std::function<void()> pressed;
    std::vector<Combination> held; ///< the thread's own once it runs
    xcb_timestamp_t released = 0;
    bool down = false;
    std::atomic<bool> ending{false};
    int wake = -1;
    std::thread thread;
};

} // namespace RecordCore
