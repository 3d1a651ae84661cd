#pragma once

#include "OmbrelRecord/AppModel/AppModel.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"

#include <QtCore/QPointer>
#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace ScriptedApp {

using namespace OmbrelRecord;
namespace fs = std::filesystem;
using RecordCore::DisplayInfo;
using RecordCore::RecordingError;
using RecordCore::WindowInfo;

/// Time that passes when the test says so.
class Clock : public FlowClock {
public:
    double now() override { return time; }
    void after(double seconds, QObject* context, std::function<void()> work) override {
        waiting.emplace(time + seconds, std::pair(QPointer<QObject>(context), std::move(work)));
    }
    /// What is asked for with this is answered later, as the real parts do.
    void soon(std::function<void()> work) { waiting.emplace(time, std::pair(nullptr, std::move(work))); }
    void advance(double seconds) {
        const double until = time + seconds + 1e-9;
        while (!waiting.empty() && waiting.begin()->first <= until) {
            auto [at, entry] = std::move(*waiting.begin());
            waiting.erase(waiting.begin());
            time = std::max(time, at);
            entry.second();
        }
        time = until - 1e-9;
    }

private:
    double time = 100;
    std::multimap<double, std::pair<QPointer<QObject>, std::function<void()>>> waiting;
};

using Trace = std::vector<std::string>;

class ScriptedSources : public Sources {
public:
    ScriptedSources(Clock& clock, Trace& trace) : clock(clock), trace(trace) {}
    bool accessGranted() override { return access; }
    void requestAccess(std::function<void(bool)> done) override {
        trace.push_back("ask for the screen");
        clock.soon([this, done] { done(access = grants); });
    }
    bool openAccessSettings() override { return settingsPage; }
    void list(std::function<void(ShareableContent)> done) override {
        clock.soon([this, done] { done(content); });
    }
    void activate(std::uint32_t window) override { trace.push_back("activate " + std::to_string(window)); }
    void still(const RecordCore::ScreenSource& source, QSize, std::function<void(QImage)> done) override {
        stills.push_back(source);
        clock.soon([done] { done(QImage(4, 4, QImage::Format_RGB32)); });
    }
    bool seesKeys() override {
        ++keyPolls;
        return keys;
    }
    void requestKeys() override {}

    bool access = true;
    bool grants = true;
    bool settingsPage = false;
    bool keys = true;
    int keyPolls = 0;
    ShareableContent content;
    std::vector<RecordCore::ScreenSource> stills;

private:
    Clock& clock;
    Trace& trace;
};

class ScriptedCameras : public Cameras {
public:
    explicit ScriptedCameras(Trace& trace) : trace(trace) {}
    void list(std::function<void(std::vector<Device>)> done) override { done({{"front", "Front"}}); }
    void startPreview(const std::string&) override { trace.push_back("camera preview on"); }
    void stopPreview() override { trace.push_back("camera preview off"); }
    QImage picture() override { return QImage(2, 2, QImage::Format_RGB32); }

private:
    Trace& trace;
};

class ScriptedPermissions : public Permissions {
public:
    void requestMicrophone(std::function<void(bool)> done) override { done(microphone); }
    void requestCamera(std::function<void(bool)> done) override { done(camera); }
    bool microphone = true;
    bool camera = true;
};

class ScriptedWindows : public MainWindows {
public:
    explicit ScriptedWindows(Trace& trace) : trace(trace) {}
    void hide() override { trace.push_back("hide"); }
    void show() override { trace.push_back("show"); }

private:
    Trace& trace;
};

class ScriptedHotKey : public HotKey {
public:
    void grab(std::function<void(std::string)> done) override { done(trouble); }
    std::string trouble;
};

class ScriptedTrash : public Desktop {
public:
    void reveal(const fs::path&) override {}
    void copyFile(const fs::path&) override {}
    void trash(const fs::path& file) override {
        if (full) throw RecordingError("the trash is full");
        fs::remove_all(file);
    }
    bool full = false;
};

class ScriptedMicrophones : public RecordCore::SoundBackend {
public:
    class Stream : public RecordCore::SoundStream {
    public:
        explicit Stream(Trace& trace) : trace(trace) {}
        void start(Handlers) override { trace.push_back("meter on"); }
        void stop() override { trace.push_back("meter off"); }

    private:
        Trace& trace;
    };
    explicit ScriptedMicrophones(Trace& trace) : trace(trace) {}
    std::vector<RecordCore::SoundDevice> microphones() const override { return devices; }
    std::string defaultMicrophone() const override { return "desk"; }
    std::unique_ptr<RecordCore::SoundStream> openSystemSound() const override { return nullptr; }
    std::unique_ptr<RecordCore::SoundStream> openMicrophone(const std::string&) const override {
        return std::make_unique<Stream>(trace);
    }
    std::vector<RecordCore::SoundDevice> devices{{"desk", "Desk"}, {"head", "Headset"}};

private:
    Trace& trace;
};

/// The whole application's model over scripted parts.
class Stage {
public:
    Stage() {
        sources.content.displays = {{7, "Left", {0, 0, 1920, 1080}, true},
                                    {9, "", {1920, 0, 1280, 1024}, false}};
        sources.content.windows = {window(50, "Editor", "notes.txt", {2000, 100, 640, 480})};
        parts.sources = &sources;
        parts.cameras = &cameras;
        parts.permissions = &permissions;
        parts.windows = &windows;
        parts.hotKey = &hotKey;
        parts.clock = &clock;
        parts.desktop = &desktop;
        parts.sound = &sound;
        parts.library = Library(folder / "Videos");
        parts.log = [this](std::string_view line) {
            lines.push_back(
                std::regex_replace(std::string(line), std::regex("Recording [-0-9]+ at [.0-9]+"), "F"));
        };
        parts.makeRun = [this](const fs::path& place, const RecordingRun::Setup& asked) {
            if (!makeFailure.empty()) throw RecordingError(makeFailure);
            setup = asked;
            runFolder = place;
            auto made = std::make_unique<Run>(*this);
            run = made.get();
            return made;
        };
        parts.loadEditor = [this](const fs::path& video, std::optional<RecordCore::InputLog> log,
                                  const fs::path& place, std::function<void(double)> progress, auto done) {
            loadedVideo = video;
            loadedLog = std::move(log);
            loadedFolder = place;
            loadProgress = std::move(progress);
            loadDone = std::move(done);
        };
        parts.recover = [this](const fs::path& place, std::function<void(std::string)> done) {
            recovered.push_back(place.filename().string());
            clock.soon([this, done] { done(recoverFailure); });
        };
    }

    static WindowInfo window(std::uint32_t id, std::string application, std::string title,
                             RecordCore::ScreenRect frame = {0, 0, 800, 600}) {
        WindowInfo window;
        window.id = id;
        window.application = std::move(application);
        window.title = std::move(title);
        window.onScreen = true;
        window.frame = frame;
        return window;
    }

    AppModel& open() {
        model = std::make_unique<AppModel>(parts);
        model->begin();
        clock.advance(0);
        trace.clear();
        return *model;
    }

    /// Up to the moment at which the recorders are asked to start.
    void count() {
        model->startRecording();
        clock.advance(2.4);
        clock.advance(0);
    }
    void record() {
        count();
        run->startDone({});
    }
    /// The files of a recording, as it was told to write them.
    void writeFiles() const { std::ofstream(runFolder / "recording.mp4") << "film"; }

    std::unique_ptr<EditorModel> editorOf(const fs::path& place) const {
        OpenedRecording recording;
        recording.files.folder = place;
        recording.video = recording.files.video();
        recording.info = {1920, 1080, 20, 60, false};
        EditorParts editorParts;
        editorParts.now = [] { return 0.0; };
        return std::make_unique<EditorModel>(recording, editorParts);
    }

    class Run : public RecordingRun {
    public:
        explicit Run(Stage& stage) : stage(stage) {}
        ~Run() override { stage.run = nullptr; }
        void start(std::function<void(Started)> done) override {
            stage.trace.push_back("start");
            startDone = std::move(done);
        }
        void stop(std::function<void(Stopped)> done) override {
            stage.trace.push_back("stop");
            stopDone = std::move(done);
        }
        double microphoneLevel() const override { return level; }
        double level = 0;
        void hold() override { shownWhenHeld = std::count(stage.trace.begin(), stage.trace.end(), "show"); }
        std::ptrdiff_t shownWhenHeld = -1; ///< how often the windows had been shown when the picture was held
        std::function<void(Started)> startDone;
        std::function<void(Stopped)> stopDone;

    private:
        Stage& stage;
    };

    TemporaryFolder folder;
    Clock clock;
    Trace trace;
    Trace lines; ///< of the log
    ScriptedSources sources{clock, trace};
    ScriptedCameras cameras{trace};
    ScriptedPermissions permissions;
    ScriptedWindows windows{trace};
    ScriptedHotKey hotKey;
    ScriptedTrash desktop;
    ScriptedMicrophones sound{trace};

    Run* run = nullptr; ///< the recording that there is
    RecordingRun::Setup setup;
    fs::path runFolder;
    std::string makeFailure;
    fs::path loadedVideo;
    std::optional<RecordCore::InputLog> loadedLog;
    fs::path loadedFolder;
    std::function<void(double)> loadProgress;
    std::function<void(std::unique_ptr<EditorModel>, const std::string&)> loadDone;
    std::vector<std::string> recovered;
    std::string recoverFailure;

    AppParts parts;
    std::unique_ptr<AppModel> model;
};

} // namespace ScriptedApp
