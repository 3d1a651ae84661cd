#include "OmbrelRecord/Entry/RecordCommand.h"

#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Capture/WindowList.h"
#include "RecordCore/Model/Clock.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

namespace OmbrelRecord::Commands {

using namespace RecordCore;

namespace {

ScreenSource chooseSource(const Record& options, const ScreenBackend& screen) {
    if (options.window) {
        const auto windows = screen.windows();
        if (std::none_of(windows.begin(), windows.end(),
                         [&](const WindowInfo& window) { return window.id == *options.window; }))
            throw RecordingError(fmt::format("there is no window {}", *options.window));
        return WindowSource{*options.window};
    }
    const auto displays = screen.displays();
    if (displays.empty()) throw RecordingError("no display to record");
    if (!options.display) return DisplaySource{displays.front().id};
    for (const DisplayInfo& display : displays)
        if (display.id == *options.display) return DisplaySource{display.id};
    if (*options.display >= 1 && *options.display <= displays.size())
        return DisplaySource{displays[*options.display - 1].id};
    throw RecordingError(fmt::format("there is no display {}", *options.display));
}

/// What ends a recording, and why.
class Ending {
public:
    void byItself(const std::string& message) {
        const std::lock_guard lock(mutex);
        cause = message;
        changed.notify_all();
    }

    /// Waits for the end and returns the cause when the recording ended by itself.
    std::optional<std::string> wait(std::optional<double> seconds, const std::atomic<bool>& interrupted) {
        using namespace std::chrono;
        const bool terminal = isatty(STDERR_FILENO) != 0;
        const auto began = steady_clock::now();
        std::int64_t shown = -1;
        std::unique_lock lock(mutex);
        while (!cause && !interrupted) {
            const double elapsed = duration<double>(steady_clock::now() - began).count();
            if (seconds && elapsed >= *seconds) break;
            if (terminal && static_cast<std::int64_t>(elapsed) != shown) {
                shown = static_cast<std::int64_t>(elapsed);
                tellAsIs("\rrecording {}  (Ctrl-C ends it) ", clock(elapsed));
            }
            // A signal handler can wake nobody: it is asked for instead.
            const double nap = seconds ? std::clamp(*seconds - elapsed, 0.001, 0.1) : 0.1;
            changed.wait_for(lock, duration<double>(nap));
        }
        if (terminal) tellAsIs("\n");
        return cause;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::optional<std::string> cause; ///< guarded by the mutex
};

} // namespace

void run(const Record& options, const MediaBackend& media, const CaptureServices& services,
         const std::atomic<bool>& interrupted) {
    RecordingSession::Setup setup;
    setup.screen.source = chooseSource(options, *services.screen);
    setup.screen.systemAudio = options.systemSound;
    setup.screen.microphone = options.microphone;
    if (!options.microphoneID.empty()) setup.screen.microphoneID = options.microphoneID;
    setup.screen.fps = options.fps;
    setup.camera = options.camera;
    if (const auto* window = std::get_if<WindowSource>(&setup.screen.source))
        services.screen->activate(window->id);

    Ending ending;
    RecordingSession session(options.folder, setup,
                             services.session(media, [](const std::string& line) { tell("{}", line); }));
    session.onStop = [&ending](const std::string& message) { ending.byItself(message); };
    session.start();
    std::string told;
    const auto tellProblem = [&] {
        if (session.problem() != told) tell("{}", session.problem());
        told = session.problem();
    };
    tellProblem();
    const auto cause = ending.wait(options.seconds, interrupted);
    const InputLog log = session.stop();
    tellProblem();
    const auto report = session.screen().report();
    fmt::print("{}: {} x {}, {} frames, {} dropped, {} pointer samples, {} events\n",
               RecordingFiles{options.folder}.video().string(), session.screen().width(),
               session.screen().height(), report.frames, report.dropped, log.cursor.size(),
               log.events.size());
    if (cause) throw RecordingError(fmt::format("recording stopped: {}", *cause));
}

} // namespace OmbrelRecord::Commands
