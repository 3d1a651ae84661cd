#pragma once

#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/X11/X11Connection.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/System/ChildProcess.h"

#include <cstdint>
#include <optional>
#include <string>

/// An X server of one test's own (Xvfb) with a window manager (openbox). While it lives, DISPLAY names it.
class XSession {
public:
    /// Whether the programs are installed.
    static bool installed() {
        return ChildProcess::installed("Xvfb") && ChildProcess::installed("openbox") &&
               ChildProcess::installed("xrandr");
    }

    XSession(int width, int height);
    ~XSession();

    const std::string& display() const { return name; }
    RecordCore::X11Connection& connection() { return *line; }

    /// Divides the screen into named monitors, left of each other, each this wide.
    void setMonitors(const std::vector<std::pair<std::string, int>>& widths);

    // The user's hands, through XTEST: real events of a real device.
    void movePointer(int x, int y);
    void press(int button);
    void release(int button);
    void click(int button);
    void typeKey(char letter);
    /// Presses keys one after another, then releases them in reverse.
    void typeKeys(const std::vector<std::uint32_t>& keysyms);

    /// The server answers nobody for a while.
    void freeze();
    void thaw();

    /// Waits until the server has done everything that was asked of it on this connection.
    void sync();

private:
    TemporaryFolder folder;
    std::string name;
    std::optional<ChildProcess> server;
    std::optional<ChildProcess> manager;
    std::unique_ptr<RecordCore::X11Connection> line;
    int width;
    int height;
};

/// A plain window of this process, managed like any other, filled with colors.
class TestWindow {
public:
    /// Shown, and managed, when the constructor returns.
    TestWindow(XSession& session, const std::string& title, int x, int y, int width, int height,
               std::uint32_t color);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    xcb_window_t id() const { return window; }
    void fill(std::uint32_t color);
    void fill(std::uint32_t color, int x, int y, int width, int height);
    /// The same without waiting for the server.
    void draw(std::uint32_t color, int x, int y, int width, int height);
    /// `color` also becomes what the server paints when the window is shown or enlarged.
    void resize(int width, int height, std::uint32_t color);
    void move(int x, int y);
    void raise();
    void iconify();
    void show();
    void close();

private:
    XSession& session;
    xcb_window_t window = 0;
    xcb_gcontext_t context = 0;
    int width;
    int height;
};

/// The middle gray of luma that a color has in a picture, and its chroma.
struct PlanarColor {
    int y = 0, cb = 0, cr = 0;
    static PlanarColor of(std::uint32_t rgb);
    /// Whether a picture shows it at a pixel, within a few units of coding noise.
    bool at(const RecordCore::PlanarView& picture, int x, int y, int tolerance = 3) const;
};
