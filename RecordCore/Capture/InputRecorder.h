#pragma once

#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/InputSource.h"
#include "RecordCore/Capture/RecordingJournal.h"
#include "RecordCore/Capture/ScreenBackend.h"
#include "RecordCore/Capture/WindowBounds.h"
#include "RecordCore/Model/InputLog.h"

#include <memory>
#include <thread>
#include <vector>

namespace RecordCore {

/// Watches the pointer (60 times a second) and the user's clicks, key presses and scrolls while a recording
/// runs, and turns them into an InputLog. A key press is a moment, nothing else. Works on a thread of its own
/// between `start` and `stop`; both are called by the owner.
class InputRecorder {
public:
    /// What is captured: a display's area, which stays where it is, or a window.
    struct Region {
        static Region display(const CapturedArea& area) { return {area, nullptr}; }
        static Region window(std::unique_ptr<WindowBounds> bounds) { return {{}, std::move(bounds)}; }
        /// What a screen stream of that size captures. A display that is no longer listed counts as the main
        /// one.
        static Region of(const ScreenBackend& screen, const ScreenSource& source, int pictureWidth,
                         int pictureHeight);

        CapturedArea area;
        std::unique_ptr<WindowBounds> bounds; ///< none: a display
    };

    /// `clock` and `journal` (may be none) outlive the recorder.
    InputRecorder(Region region, std::unique_ptr<InputSource> source, const HostClock& clock,
                  RecordingJournal* journal = nullptr);
    ~InputRecorder();
    InputRecorder(const InputRecorder&) = delete;
    InputRecorder& operator=(const InputRecorder&) = delete;

    void start();

    /// Ends the watching and returns the log, its times counted from `origin` (host clock seconds of the
    /// first screen frame, 0 when there was none); what came before is dropped.
    InputLog stop(double origin);

private:
    void run();
    void join();
    void tick();
    void handle(InputSignal signal);
    void refreshBounds();
    void append(InputLog::Event event);
    ScreenPoint normalized(const ScreenPoint& point, const ScreenRect& area) const;

    const HostClock& clock;
    RecordingJournal* journal;
    std::unique_ptr<InputSource> source;
    std::thread thread;

    // The thread's own while it runs.
    Region region;
    int tickCount = 0;
    double lastScrollTime = 0;
    std::vector<InputLog::CursorSample> cursor; ///< host clock times
    std::vector<InputLog::Event> events;        ///< host clock times
};

} // namespace RecordCore
