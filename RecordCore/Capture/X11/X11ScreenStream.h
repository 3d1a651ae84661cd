#pragma once

#include "RecordCore/Capture/BlockMap.h"
#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Capture/FramePacer.h"
#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/ScreenFit.h"
#include "RecordCore/Capture/ScreenStream.h"
#include "RecordCore/Capture/X11/X11Grabber.h"
#include "RecordCore/Capture/X11/X11Screens.h"

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <atomic>
#include <optional>
#include <thread>
#include <vector>

namespace RecordCore {

/// The picture of a display or window on X11. The server tells what was drawn on (DAMAGE); only that is
/// fetched, and only what truly differs counts as a change. A window is recorded from its own memory
/// (Composite), so that what covers it does not show; while it is minimised its last picture stays.
class X11ScreenStream final : public ScreenStream {
public:
    X11ScreenStream(const ScreenSource& source, int fps);
    ~X11ScreenStream() override;

    int width() const override { return picture.width(); }
    int height() const override { return picture.height(); }
    void start(Handlers handlers) override;
    void stop() override;

private:
    void openDisplay(std::uint32_t id);
    void openWindow(std::uint32_t id);
    void preparePicture(int contentWidth, int contentHeight);

    void run();
    void handleEvents();
    void handle(const xcb_generic_event_t& event);
    void refreshDisplay();
    void refreshWindow();
    void namePixmap();
    void releaseWindow();
    void setContent(int x, int y, int width, int height);
    void collectDamage();
    bool grab(); ///< whether anything was fetched
    bool grabExact();
    bool grabScaled();
    void end(const std::string& message);

    X11Connection connection;
    X11Grabber grabber;
    std::uint8_t damageEvent = 0;
    std::uint8_t randrEvent = 0;
    bool hasRandr = false;
    xcb_atom_t frameExtents = 0;

    // What is recorded.
    std::uint32_t display = 0;
    std::uint32_t client = 0; ///< 0: a display
    std::optional<X11WindowPlace> place;
    xcb_pixmap_t pixmap = 0;
    xcb_drawable_t drawable = 0; ///< 0: nothing can be fetched now
    xcb_damage_damage_t damage = 0;
    xcb_xfixes_region_t region = 0;
    X11Grabber::Rect content; ///< within the drawable
    int damageOffset = 0;     ///< from damage coordinates to the drawable's (the frame's border)

    // The thread's own.
    CapturePicture picture;
    BlockMap damaged; ///< blocks to fetch
    BlockMap changed; ///< blocks that differ from the frame delivered last
    ScreenFit fit;
    ScreenScaler scaler;
    std::vector<std::uint8_t> scaled;
    std::vector<BlockMap::Run> runs;
    std::vector<X11Grabber::Rect> rects;
    FramePacer pacer;
    bool dirty = true;
    bool stale = false; ///< the window's place has to be asked for again
    bool renew = false; ///< the window's memory is another one
    bool ended = false;
    std::string endMessage;

    Handlers handlers;
    int wake = -1; ///< eventfd that ends the thread's sleep
    std::atomic<bool> stopping = false;
    std::atomic<bool> finished = false;
    std::thread thread;
};

} // namespace RecordCore
