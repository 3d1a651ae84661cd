#include "OmbrelRecord/Entry/SelfTest.h"

#include "OmbrelRecord/Entry/Tell.h"
#include "RecordCore/Capture/InputRecorder.h"
#include "RecordCore/Capture/ScreenRecorder.h"
#include "RecordCore/Capture/WindowList.h"
#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

namespace OmbrelRecord::SelfTest {

using namespace RecordCore;

namespace {

constexpr std::chrono::seconds recordingTime{4};

class Report {
public:
    void add(const std::string& line) {
        if (!text.empty()) text += '\n';
        text += line;
    }
    void write(const std::filesystem::path& folder) const {
        try {
            std::filesystem::create_directories(folder);
            writeFileAtomically(folder / "report.txt", text);
        } catch (const std::exception& error) {
            tell("{}", error.what());
        }
    }

private:
    std::string text;
};

bool seesKeys(const ScreenBackend& screen) {
    try {
        return screen.openInput()->seesKeys();
    } catch (const RecordingError&) {
        return false;
    }
}

std::vector<DisplayInfo> displaysOf(const ScreenBackend& screen) {
    try {
        return screen.displays();
    } catch (const RecordingError&) {
        return {};
    }
}

struct Sound {
    std::vector<SoundDevice> microphones;
    bool present = false; ///< there is a sound service
};

Sound soundOf(const CaptureServices& services) {
    Sound sound;
    try {
        sound.microphones = services.sound->microphones();
        sound.present = true;
    } catch (const RecordingError&) {
        // A machine without sound can record all the same.
    }
    return sound;
}

std::string listed(const std::vector<SoundDevice>& devices) {
    std::string text;
    for (const SoundDevice& device : devices)
        text += fmt::format("{}\"{}\"", text.empty() ? "" : ", ", device.name);
    return "[" + text + "]";
}

double durationOf(const InputLog& log) {
    double end = 0;
    if (!log.cursor.empty()) end = log.cursor.back().t;
    if (!log.events.empty()) end = std::max(end, log.events.back().t);
    return end;
}

/// Steps 5 to 9: everything from choosing the source to the film.
void tryEverything(const std::filesystem::path& folder, bool window, const DisplayInfo& display,
                   const MediaBackend& media, const CaptureServices& services, Report& report) {
    std::filesystem::create_directories(folder);
    ScreenRecorder::Setup setup;
    setup.source = DisplaySource{display.id};
    if (window) {
        const auto windows = recordableWindows(services.screen->windows(), getpid());
        if (windows.empty()) throw RecordingError("no window");
        setup.source = WindowSource{windows.front().id};
        report.add("window: " + windowName(windows.front()));
    }
    const Sound sound = soundOf(services);
    report.add(fmt::format("microphones: {}, permission {}", listed(sound.microphones),
                           sound.present ? "granted" : "unknown, there is no sound service"));
    setup.systemAudio = sound.present;
    setup.microphone = !sound.microphones.empty();

    const RecordingFiles files{folder};
    const auto parts = services.session(media, [](const std::string& line) { tellAsIs("{}\n", line); });
    ScreenRecorder recorder(setup, parts.screen);
    recorder.start(files.video());
    InputRecorder input(
        InputRecorder::Region::of(*services.screen, setup.source, recorder.width(), recorder.height()),
        services.screen->openInput(), parts.screen.clock);
    input.start();
    std::this_thread::sleep_for(recordingTime);
    recorder.stop();
    InputLog log = input.stop(recorder.firstFrameTime().value_or(0));
    log.save(files.input());
    report.add(fmt::format("recorded for {:.1f} s, pointer samples {}, events {}", durationOf(log),
                           log.cursor.size(), log.events.size()));
    const std::vector<ActivitySample> live = recorder.activity().samples();
    double busiest = 0;
    for (const ActivitySample& sample : live)
        busiest = std::max(busiest, sample.energy);
    report.add(fmt::format("live analysis: {} samples, busiest {:.3f}", live.size(), busiest));

    LoadedRecording recording;
    recording.files = files;
    recording.info = media.sourceInfo(files.video());
    recording.samples = analyzeVideo(media, files.video());
    recording.log = std::move(log);
    // System sound comes first in the file; the microphone follows.
    std::string tracks;
    if (setup.systemAudio) tracks = "system audio";
    if (setup.microphone) tracks += tracks.empty() ? "microphone" : " + microphone";
    const std::size_t count = media.openSound(files.video()).size();
    report.add(
        fmt::format("sound tracks in the file: {}{}", count, tracks.empty() ? "" : " (" + tracks + ")"));
    if (count != (setup.systemAudio ? 1U : 0U) + (setup.microphone ? 1U : 0U))
        throw RecordingError("the file does not hold the sound tracks that were recorded");
    report.add(fmt::format("file: {:.2f} s, audio {}, {} KB, {} activity samples", recording.info.duration,
                           recording.info.hasAudio, std::filesystem::file_size(files.video()) / 1000,
                           recording.samples.size()));

    ExportOptions options;
    options.project = recording.project;
    options.log = recording.log;
    const ExportStats stats =
        Exporter::run(media, files.video(), recording.plan(), options, folder / "export.mp4");
    report.add(fmt::format("export: {} frames, {:.1f} s in {:.1f} s", stats.frames, stats.outputSeconds,
                           stats.wallSeconds));
    report.add("PASS");
}

} // namespace

void run(const std::filesystem::path& folder, bool window, const MediaBackend& media,
         const CaptureServices& services) {
    // What the screen showed is nobody else's business, in the film as little as in the recording.
    umask(S_IRWXG | S_IRWXO);
    Report report;
    report.add(
        fmt::format("Ombrel Record self-test {:%Y-%m-%d %H:%M:%S} +0000", fmt::gmtime(std::time(nullptr))));
    const bool access = services.screen->accessGranted();
    report.add(fmt::format("screen access: {}", access));
    report.add(fmt::format("accessibility (keys): {}", seesKeys(*services.screen)));
    if (!access) {
        report.add("NO ACCESS: Screen Recording is not on for Ombrel Record yet");
        report.write(folder);
        return;
    }
    const std::vector<DisplayInfo> displays = displaysOf(*services.screen);
    if (displays.empty()) {
        report.add("FAIL: no display");
        report.write(folder);
        return;
    }
    report.add(fmt::format("displays: {}", displays.size()));
    try {
        tryEverything(folder, window, displays.front(), media, services, report);
    } catch (const std::exception& error) {
        report.add(fmt::format("FAIL: {}", error.what()));
    }
    report.write(folder);
}

} // namespace OmbrelRecord::SelfTest
