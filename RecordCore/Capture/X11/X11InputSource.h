#pragma once

#include "RecordCore/Capture/InputSource.h"
#include "RecordCore/Capture/X11/X11Connection.h"

#include <xcb/xinput.h>

#include <atomic>
#include <map>
#include <vector>

namespace RecordCore {

/// Pointer, buttons, keys and wheel through XInput 2 raw events, which arrive whatever has the focus and also
/// while a program has grabbed the keyboard. Only the kind of an event is looked at, never which key it was.
/// What is meant for a window of this program itself (its question during a recording) is left out.
class X11InputSource final : public InputSource {
public:
    X11InputSource();
    ~X11InputSource() override;

    std::optional<ScreenPoint> pointer() override;
    bool seesKeys() const override { return observes; }
    bool wait(double until, const std::function<void(InputSignal)>& handler) override;
    void interrupt() override;

private:
    void select(const X11Connection& to, std::uint32_t mask) const;
    bool ours(xcb_window_t window) const;
    bool pointerOnOurs() const;
    bool focusOnOurs() const;
    void deliver(const xcb_generic_event_t& event, const std::function<void(InputSignal)>& handler);
    void drain(const X11Connection& from, const std::function<void(InputSignal)>& handler);
    bool isScroll(const xcb_input_raw_motion_event_t& motion);
    void learnScrollAxes(std::uint16_t device);

    X11Connection presses; ///< buttons and keys: wakes the thread
    /// Motion, for the scroll axes that touchpads and fine wheels have. A fast mouse reports a thousand times
    /// a second; on a connection of its own that is looked at once for each wait, it does not wake the
    /// thread.
    X11Connection motions;
    xcb_atom_t processId = XCB_ATOM_NONE;
    std::uint8_t opcode = 0;
    bool observes = false;
    std::map<std::uint16_t, std::vector<std::uint16_t>> scrollAxes; ///< by device; empty: has none
    int wake = -1;
    std::atomic<bool> interrupted = false;
};

} // namespace RecordCore
