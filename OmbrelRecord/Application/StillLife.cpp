#include "OmbrelRecord/Application/StillLife.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "RecordCore/Media/FrameCursor.h"
#include "RecordCore/Model/RecordingError.h"

#include <QtCore/QDateTime>
#include <QtCore/QPointer>
#include <QtGui/QPainter>
#include <QtQuick/QQuickItem>
#include <algorithm>
#include <cmath>
#include <map>
#include <system_error>

namespace OmbrelRecord {

namespace fs = std::filesystem;
using namespace RecordCore;

namespace {

/// Time that passes when it is told to.
class HeldClock : public FlowClock {
public:
    double now() override { return time; }
    void after(double seconds, QObject* context, std::function<void()> work) override {
        waiting.emplace(time + seconds, Entry{context, context != nullptr, std::move(work)});
    }
    void soon(std::function<void()> work) { waiting.emplace(time, Entry{nullptr, false, std::move(work)}); }
    void advance(double seconds) {
        const double until = time + seconds;
        while (!waiting.empty() && waiting.begin()->first <= until + 1e-9) {
            const auto [at, entry] = *waiting.begin();
            waiting.erase(waiting.begin());
            time = std::max(time, at);
            if (!entry.bound || entry.context) entry.work();
        }
        time = until;
    }

private:
    struct Entry {
        QPointer<QObject> context;
        bool bound = false;
        std::function<void()> work;
    };
    double time = 0;
    std::multimap<double, Entry> waiting;
};

class StillSources : public Sources {
public:
    explicit StillSources(HeldClock& clock) : clock(clock) {}
    bool accessGranted() override { return access; }
    void requestAccess(std::function<void(bool)> done) override {
        clock.soon([this, done] { done(access); });
    }
    bool openAccessSettings() override { return false; }
    void list(std::function<void(ShareableContent)> done) override {
        clock.soon([this, done] { done(content); });
    }
    void activate(std::uint32_t) override {}
    void still(const ScreenSource& source, QSize largest, std::function<void(QImage)> done) override {
        QImage shown = desktop;
        // Windows are parts of the desktop, each another one.
        if (const auto* window = std::get_if<WindowSource>(&source)) {
            const int column = static_cast<int>(window->id) % 3, row = static_cast<int>(window->id) / 3 % 2;
            shown = desktop.copy(desktop.width() * column / 6, desktop.height() * row / 4,
                                 desktop.width() * 2 / 3, desktop.height() * 3 / 4);
        }
        if (!shown.isNull()) shown = shown.scaled(largest, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        clock.soon([shown, done] { done(shown); });
    }
    bool seesKeys() override { return keys; }
    void requestKeys() override {}

    bool access = true;
    bool keys = true;
    ShareableContent content;
    QImage desktop;

private:
    HeldClock& clock;
};

/// A camera before which somebody sits.
class StillCamera : public Cameras {
public:
    void list(std::function<void(std::vector<Device>)> done) override {
        done({{"front", "Built-in camera"}});
    }
    void startPreview(const std::string&) override {
        if (onPicture) onPicture();
    }
    void stopPreview() override {}
    QImage picture() override {
        QImage image(480, 360, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        QLinearGradient wall(0, 0, 480, 360);
        wall.setColorAt(0, QColor(0x8FA3C8));
        wall.setColorAt(1, QColor(0x5B6C94));
        painter.fillRect(image.rect(), wall);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0x2E3550));
        painter.drawEllipse(QPointF(240, 400), 170, 150);
        painter.setBrush(QColor(0xE3B79A));
        painter.drawEllipse(QPointF(240, 190), 74, 88);
        painter.setBrush(QColor(0x3A2A22));
        painter.drawChord(QRectF(162, 88, 156, 150), 16 * 8, 16 * 164);
        return image;
    }
};

class EverythingAllowed : public Permissions {
public:
    void requestMicrophone(std::function<void(bool)> done) override { done(true); }
    void requestCamera(std::function<void(bool)> done) override { done(true); }
};

class NoWindows : public MainWindows {
public:
    void hide() override {}
    void show() override {}
};

class StillKeys : public HotKey {
public:
    void grab(std::function<void(std::string)> done) override { done(trouble); }
    std::string trouble;
};

class NoDesktop : public Desktop {
public:
    void reveal(const fs::path&) override {}
    void copyFile(const fs::path&) override {}
    void trash(const fs::path&) override {}
};

/// A microphone that hears an even voice.
class StillSound : public SoundBackend {
public:
    class Voice : public SoundStream {
    public:
        void start(Handlers handlers) override {
            std::vector<float> tone(960);
            for (std::size_t i = 0; i < tone.size(); ++i)
                tone[i] = static_cast<float>(0.16 * std::sin(static_cast<double>(i) * 0.1));
            handlers.onSound({tone, 0, true});
        }
        void stop() override {}
    };
    std::vector<SoundDevice> microphones() const override {
        return {{"desk", "Desk microphone"}, {"head", "Headset"}};
    }
    std::string defaultMicrophone() const override { return "desk"; }
    std::unique_ptr<SoundStream> openSystemSound() const override { return nullptr; }
    std::unique_ptr<SoundStream> openMicrophone(const std::string&) const override {
        return std::make_unique<Voice>();
    }
};

class StillRun : public RecordingRun {
public:
    void start(std::function<void(Started)> done) override { done({}); }
    void stop(std::function<void(Stopped)>) override {}
    double microphoneLevel() const override { return 0.6; }
};

WindowInfo window(std::uint32_t id, std::string application, std::string title, ScreenRect frame) {
    WindowInfo made;
    made.id = id;
    made.application = std::move(application);
    made.title = std::move(title);
    made.onScreen = true;
    made.frame = frame;
    return made;
}

/// The scene in the middle of a video.
QImage middle(const MediaBackend& media, const fs::path& video) {
    FrameCursor frames(media.openVideo(video, 1));
    const VideoFrame* frame = frames.at(frames.info().duration / 2);
    return frame ? imageOf(frame->picture) : QImage();
}

} // namespace

struct StillLife::Parts {
    QTemporaryDir folder;
    HeldClock clock;
    StillSources sources{clock};
    StillCamera camera;
    EverythingAllowed permissions;
    NoWindows windows;
    StillKeys keys;
    NoDesktop desktop;
    StillSound sound;
    std::unique_ptr<Thumbnails> thumbnails;
    std::function<void(double)> progress;
    std::unique_ptr<AppModel> model;
};

StillLife::StillLife(const MediaBackend& media, const fs::path& video, const State& state) :
    parts(std::make_unique<Parts>()) {
    StillSources& sources = parts->sources;
    sources.access = state.access;
    sources.keys = state.seesKeys;
    try {
        sources.desktop = middle(media, video);
    } catch (const RecordingError&) {
        // The pictures show then what they show where the source cannot be seen.
    }
    if (state.displays) {
        sources.content.displays = {{1, "Built-in display", {0, 0, 2560, 1600}, true},
                                    {2, "Studio 27", {2560, 0, 3840, 2160}, false}};
        sources.content.windows = {window(11, "Browser", "Pull request 214 · Review", {80, 60, 1400, 900}),
                                   window(12, "Code", "Timeline.cpp — ombrel", {200, 90, 1600, 1000}),
                                   window(13, "Terminal", "agents — 4 panes", {300, 200, 1200, 800})};
    }
    parts->keys.trouble = state.hotKeyTrouble;
    parts->thumbnails = std::make_unique<Thumbnails>(media, fs::path());

    AppParts made;
    made.sources = &sources;
    made.cameras = &parts->camera;
    made.permissions = &parts->permissions;
    made.windows = &parts->windows;
    made.hotKey = &parts->keys;
    made.clock = &parts->clock;
    made.desktop = &parts->desktop;
    made.sound = &parts->sound;
    made.thumbnails = parts->thumbnails.get();
    const fs::path root = parts->folder.path().toStdString();
    made.library = Library(root / "Videos");
    made.sample = video.parent_path();
    made.sampleHome = root;
    made.log = [](std::string_view) {};
    made.makeRun = [](const fs::path&, const RecordingRun::Setup&) { return std::make_unique<StillRun>(); };
    made.loadEditor = [this](const fs::path&, std::optional<InputLog>, const fs::path&,
                             std::function<void(double)> progress,
                             auto) { parts->progress = std::move(progress); };
    made.recover = [this](const fs::path&, std::function<void(std::string)> done) {
        parts->clock.soon([done] { done({}); });
    };
    parts->model = std::make_unique<AppModel>(std::move(made));
    parts->model->begin();
    if (state.microphone) parts->model->toggleMicrophone();
    parts->model->setSystemAudio(true);
    if (state.camera) parts->model->toggleCamera();
    settle();

    using namespace std::chrono_literals;
    constexpr std::chrono::minutes ages[] = {4min, 95min, 26h, 51h, 5 * 24h, 12 * 24h, 40 * 24h};
    std::vector<Recording> recordings;
    for (int i = 0; i < state.recordings; ++i) {
        // Every recording is the same one under another name.
        const fs::path folder = root / ("Recording " + std::to_string(i));
        std::error_code ignored;
        fs::create_directories(folder, ignored);
        fs::create_symlink(fs::absolute(video), folder / "recording.mp4", ignored);
        recordings.push_back({folder, std::chrono::system_clock::now() - ages[i % std::size(ages)]});
    }
    parts->model->recents()->setRecordings(std::move(recordings));
}

StillLife::~StillLife() = default;

AppModel& StillLife::model() {
    return *parts->model;
}

void StillLife::settle() {
    parts->model->startLivePreview();
    parts->clock.advance(0);
    parts->clock.advance(0);
}

void StillLife::countdown() {
    parts->model->startRecording();
    parts->clock.advance(0);
}

void StillLife::record() {
    countdown();
    parts->clock.advance(2.4);
    parts->clock.advance(0);
    parts->clock.advance(83);
}

void StillLife::work(double share) {
    parts->model->openSample();
    if (parts->progress) parts->progress(share);
}

} // namespace OmbrelRecord
