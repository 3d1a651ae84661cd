#pragma once

#include "RecordCore/Capture/InputSource.h"
#include "RecordCore/Capture/ScreenStream.h"
#include "RecordCore/Capture/WindowBounds.h"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace RecordCore {

/// A display that can be recorded.
struct DisplayInfo {
    std::uint32_t id = 0;
    std::string name; ///< as the system calls it; "Display " and the id where it has no name
    ScreenRect frame;
    bool main = false;
    bool operator==(const DisplayInfo&) const = default;
};

/// A window as the system lists it, before any choice is made among them.
struct WindowInfo {
    std::uint32_t id = 0;
    std::string application; ///< empty: unknown
    std::string title;
    std::int64_t processId = 0; ///< 0: unknown
    int layer = 0;              ///< 0: a normal window; others are docks, menus, the desktop …
    bool onScreen = false;
    ScreenRect frame;
    bool operator==(const WindowInfo&) const = default;
};

struct DisplaySource {
    std::uint32_t id = 0;
    bool operator==(const DisplaySource&) const = default;
};
struct WindowSource {
    std::uint32_t id = 0;
    bool operator==(const WindowSource&) const = default;
};
using ScreenSource = std::variant<DisplaySource, WindowSource>;

/// The screen of the running session: what there is, its pictures and its input. Callable from any thread;
/// what it hands out is independent of it. Everything throws RecordingError.
class ScreenBackend {
public:
    virtual ~ScreenBackend() = default;

    /// Whether this program may capture the screen; true where there is no screen to ask about.
    virtual bool accessGranted() const = 0;

    /// The main display first.
    virtual std::vector<DisplayInfo> displays() const = 0;
    /// All windows, in the system's order; `recordableWindows` chooses among them.
    virtual std::vector<WindowInfo> windows() const = 0;

    virtual std::unique_ptr<ScreenStream> openScreen(const ScreenSource& source, int fps) const = 0;
    virtual std::unique_ptr<InputSource> openInput() const = 0;
    /// `pictureWidth` and `pictureHeight` are those of the window's ScreenStream.
    virtual std::unique_ptr<WindowBounds> openBounds(std::uint32_t windowId, int pictureWidth,
                                                     int pictureHeight) const = 0;
    /// Brings a window to the front.
    virtual void activate(std::uint32_t windowId) const = 0;
};

} // namespace RecordCore
