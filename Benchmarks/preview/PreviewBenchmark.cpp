// Plays the film of each recording at the size of a view and seeks in it. Prints dropped frames, the CPU time
// of playing beside that of decoding the recording, and how long seeks take until something, and until the
// right frame, is shown.
//
//   ombrel-bench-preview [--width W] [--height H] [--seconds S] [--sound] [--plain] FOLDER ...
//
// --plain plays the recording as it is, nothing sped up or zoomed; --sound plays to the sound service.

#include "OmbrelRecord/Entry/Backends.h"
#include "RecordCore/Capture/PulseAudio/PulseOutput.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Preview/Player.h"
#include "RecordCore/Preview/Preview.h"

#include <fmt/format.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <random>
#include <string>
#include <vector>

using namespace RecordCore;

namespace {

using Clock = std::chrono::steady_clock;

double since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Waits for what the player's thread tells.
class Watcher {
public:
    Player::Handlers handlers() {
        Player::Handlers all;
        all.onFrame = [this](const PreviewFrame& frame) {
            const std::lock_guard lock(mutex);
            seek = frame.seek;
            if (firstOf != seek) {
                firstOf = seek;
                firstAt = Clock::now();
            }
            exact = frame.exact;
            changed.notify_all();
        };
        all.onPlaying = [this](bool plays) {
            const std::lock_guard lock(mutex);
            playing = plays;
            changed.notify_all();
        };
        all.onFailure = [](const std::string& problem) { fmt::print(stderr, "{}\n", problem); };
        return all;
    }
    /// When something was shown for the seek, after waiting for the right frame.
    Clock::time_point waitFor(std::uint64_t number) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return seek >= number && exact; });
        return firstAt;
    }
    void waitToStop(double seconds) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return playing; });
        changed.wait_for(lock, std::chrono::duration<double>(seconds), [&] { return !playing; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::uint64_t seek = 0;
    std::uint64_t firstOf = 0;
    Clock::time_point firstAt;
    bool exact = false;
    bool playing = false;
};

struct Latencies {
    std::vector<double> first;
    std::vector<double> right;

    void print(const char* what) {
        const auto at = [](std::vector<double>& values, double share) {
            std::sort(values.begin(), values.end());
            return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))] * 1000;
        };
        fmt::print(
            "  {:<22} a picture {:5.1f} / {:5.1f} / {:5.1f} ms, the frame {:5.1f} / {:5.1f} / {:5.1f} ms "
            "(median, 95 %, most)\n",
            what, at(first, 0.5), at(first, 0.95), at(first, 1), at(right, 0.5), at(right, 0.95),
            at(right, 1));
    }
};

struct Options {
    int width = 1280;
    int height = 720;
    double seconds = 1e9;
    bool sound = false;
    bool plain = false;
};

void measure(const MediaBackend& media, const std::filesystem::path& folder, const Options& options) {
    LoadedRecording recording = LoadedRecording::load(media, folder);
    if (options.plain) {
        recording.project.skipWaiting = false;
        recording.project.followAction = false;
    }
    const Plan plan = recording.plan();

    int frames = 0;
    auto start = Clock::now();
    double cpu = cpuSeconds();
    {
        const auto reader = media.openVideo(recording.files.video());
        while (reader->next())
            ++frames;
    }
    const double decodeCpu = cpuSeconds() - cpu;
    fmt::print("{}: {}x{}, {:.1f} s, {} frames; decoding all {:.2f} s, {:.2f} CPU s; film {:.1f} s\n",
               folder.filename().string(), recording.info.width, recording.info.height,
               recording.info.duration, frames, since(start), decodeCpu, plan.outputDuration());

    const double scale =
        Preview::fittingScale(recording.project.outputFormat(), options.width, options.height);
    start = Clock::now();
    const Preview::Built built = Preview::build(media, recording.files.video(), plan, recording.project,
                                                recording.log, recording.camera(), scale);
    Watcher watcher;
    Player player(media, built.item, options.sound ? std::make_unique<PulseOutput>() : nullptr,
                  watcher.handlers());
    watcher.waitFor(player.seek(0));
    fmt::print("  ready after {:.0f} ms, canvas {}x{}\n", since(start) * 1000,
               built.renderer->compositor()->width(), built.renderer->compositor()->height());

    const auto before = player.stats();
    cpu = cpuSeconds();
    start = Clock::now();
    player.play();
    watcher.waitToStop(options.seconds);
    player.pause();
    const double wall = since(start);
    const double playCpu = cpuSeconds() - cpu;
    const auto after = player.stats();
    const double shown = static_cast<double>(after.shown - before.shown);
    const double dropped = static_cast<double>(after.dropped - before.dropped);
    fmt::print("  played {:.1f} s: {} frames shown, {} dropped ({:.2f} %), {} not exact; {:.2f} CPU s, "
               "{:.0f} % of a core, {:.2f} of decoding\n",
               wall, shown, dropped, 100 * dropped / std::max(shown + dropped, 1.0),
               after.inexact - before.inexact, playCpu, 100 * playCpu / wall, playCpu / decodeCpu);

    std::mt19937 random(5);
    std::uniform_real_distribution<double> anywhere(0, plan.outputDuration());
    Latencies jumps;
    const auto seek = [&](double to, Latencies& into) {
        const auto asked = Clock::now();
        const auto first = watcher.waitFor(player.seek(to));
        into.right.push_back(since(asked));
        into.first.push_back(std::chrono::duration<double>(first - asked).count());
    };
    for (int i = 0; i < 100; ++i)
        seek(anywhere(random), jumps);
    jumps.print("seeks anywhere");

    Latencies back;
    const double middle = plan.outputDuration() / 2;
    for (int i = 0; i < 60; ++i)
        seek(middle - i / 60.0, back);
    back.print("frame by frame back");

    Latencies drag;
    for (int i = 0; i < 200; ++i)
        seek(plan.outputDuration() * (i < 100 ? i : 200 - i) / 100, drag);
    drag.print("dragged there and back");
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    Options options;
    std::vector<std::string> folders;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto number = [&] { return i + 1 < argc ? std::atof(argv[++i]) : 0; };
        if (argument == "--width")
            options.width = static_cast<int>(number());
        else if (argument == "--height")
            options.height = static_cast<int>(number());
        else if (argument == "--seconds")
            options.seconds = number();
        else if (argument == "--sound")
            options.sound = true;
        else if (argument == "--plain")
            options.plain = true;
        else
            folders.push_back(argument);
    }
    const auto media = OmbrelRecord::makeMediaBackend();
    try {
        for (const std::string& folder : folders)
            measure(*media, folder, options);
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return folders.empty() ? 2 : 0;
}
